#pragma once

#include <filesystem>
#include <string>

namespace kvxtest
{

/// The example of a configuration store in a temporary folder, with another instrument in place of its own.
class StoreFile
{
public:
    /// Throws std::runtime_error when the example does not name the virtual instrument's usual port.
    explicit StoreFile(const std::string& resource);
    ~StoreFile();

    StoreFile(const StoreFile&) = delete;
    StoreFile(StoreFile&&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;
    StoreFile& operator=(StoreFile&&) = delete;

    /// The variable that makes it the store of a program.
    std::string variable() const { return "IVI_MASTER_STORE=" + (folder_ / "IviConfigurationStore.xml").string(); }

private:
    std::filesystem::path folder_;
};

} // namespace kvxtest
