#pragma once

#include "tests/support/temporary_folder.h"

#include <string>

namespace kvxtest
{

/// The example of a configuration store in a temporary folder, with another instrument in place of its own.
class StoreFile
{
public:
    /// Throws std::runtime_error when the example does not name the virtual instrument's usual port.
    explicit StoreFile(const std::string& resource);

    std::string path() const { return folder_ / "IviConfigurationStore.xml"; }

private:
    TemporaryFolder folder_;
};

} // namespace kvxtest
