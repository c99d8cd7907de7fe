#pragma once

#include "tests/support/environment.h"
#include "tests/support/shared_library.h"
#include "tests/support/temporary_folder.h"
#include "tests/tools/visatrace/recording_visa.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace kvxtest
{

/// The tracing library, loaded anew: a copy of its file, which reads its environment for itself.
class LoadedTrace
{
public:
    /// `behind` is what KVX_VISATRACE_LIBRARY names, `file` what KVX_VISATRACE_FILE does; by default a file of its own.
    explicit LoadedTrace(const char* behind, const std::string& file = {})
        : file_(file.empty() ? folder_ / "trace" : file), library_(load(behind))
    {
    }

    template <class Function>
    Function* find(const char* name) const
    {
        return library_->find<Function>(name);
    }

    std::string text() const { return textOf(file_); }

    static std::string textOf(const std::string& file)
    {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// The lines so far, without what differs from run to run: "viClose(vi=1) = 0x00000000 VI_SUCCESS".
    std::vector<std::string> lines() const
    {
        std::istringstream text(this->text());
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            lines.push_back(masked(line));
        return lines;
    }

private:
    /// A line that does not look like one stays as it is.
    static std::string masked(const std::string& line)
    {
        static const std::regex pattern(R"(\d+\.\d{6} \[\d+\] (.*) <\d+\.\d{6}>)");
        return std::regex_replace(line, pattern, "$1");
    }

    std::unique_ptr<SharedLibrary> load(const char* behind) const
    {
        const EnvironmentVariable library("KVX_VISATRACE_LIBRARY", behind);
        const EnvironmentVariable file("KVX_VISATRACE_FILE", file_.c_str());
        const std::string copy = folder_ / "copy.so";
        std::filesystem::copy_file(KVX_VISATRACE, copy);
        return std::make_unique<SharedLibrary>(copy);
    }

    TemporaryFolder folder_;
    std::string file_;
    std::unique_ptr<SharedLibrary> library_;
};

} // namespace kvxtest
