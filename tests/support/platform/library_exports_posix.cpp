#include "tests/support/platform/library_exports.h"

#include <array>
#include <cstdio>
#include <memory>
#include <sstream>

namespace kvxtest
{

std::vector<std::string> exportsOf(const std::string& library)
{
    const std::string command = std::string(NM_PROGRAM) + " -D --defined-only --format=posix '" + library + "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> names;
    std::array<char, 1024> line{};
    while (output != nullptr && std::fgets(line.data(), line.size(), output.get()) != nullptr) {
        std::string name;
        std::istringstream(line.data()) >> name;
        names.push_back(name);
    }
    return names;
}

} // namespace kvxtest
