#include "tests/support/platform/host_places.h"

#include <filesystem>

namespace kvxtest
{

std::string usualMasterStore()
{
    return "/etc/ivi/IviConfigurationStore.xml";
}

std::string placeThatCannotBeLookedAt(const TemporaryFolder& folder)
{
    const std::string loop = folder / "loop";
    std::filesystem::create_symlink(loop, loop);
    return loop + "/store.xml";
}

} // namespace kvxtest
