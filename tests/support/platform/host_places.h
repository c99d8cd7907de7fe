#pragma once

#include "tests/support/temporary_folder.h"

#include <string>

namespace kvxtest
{

/// Where this host has the master store unless something else is registered.
std::string usualMasterStore();

/// A path of which nobody, the superuser included, can be told whether there is a file.
std::string placeThatCannotBeLookedAt(const TemporaryFolder& folder);

} // namespace kvxtest
