#include "tests/support/platform/host_places.h"

#include <cstdlib>

namespace kvxtest
{

std::string usualMasterStore()
{
    return std::string(std::getenv("ProgramData")) + R"(\IVI Foundation\IVI\IviConfigurationStore.xml)";
}

std::string placeThatCannotBeLookedAt(const TemporaryFolder& folder)
{
    // No file can have a pattern for a name.
    return folder / "store*.xml";
}

} // namespace kvxtest
