#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace kvxtest
{

/// A folder of the test's own, removed with all that is in it.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// The path of something in it; both texts are in UTF-8.
    std::string operator/(const std::string& name) const;

    /// How many files and folders are in it.
    std::size_t count() const;

private:
    std::filesystem::path path_;
};

} // namespace kvxtest
