#include "platform/config_server/locations.h"
#include "platform/config_server/store.h"
#include "tests/support/platform/host_places.h"
#include "tests/support/utf8_path.h"

#include <gtest/gtest.h>

namespace
{

/// Stands in for the system's own place, which tests cannot write to.
std::string systemPlace;

} // namespace

namespace config_server
{

std::string processDefaultLocation()
{
    return {};
}

MasterLocation masterLocation()
{
    return {systemPlace};
}

std::string systemLocation()
{
    return systemPlace;
}

} // namespace config_server

namespace
{

class SystemStore : public testing::Test
{
protected:
    static ViStatus loadFrom(const std::string& place)
    {
        systemPlace = place;
        return config_server::Store().deserialize(systemPlace);
    }

    kvxtest::TemporaryFolder folder_;
};

TEST_F(SystemStore, MissingFileStandsForAnEmptyStore)
{
    EXPECT_EQ(loadFrom(folder_ / "store.xml"), VI_SUCCESS);
    EXPECT_EQ(loadFrom(folder_ / "no-such-folder/store.xml"), VI_SUCCESS);
}

TEST_F(SystemStore, FileThatCannotBeLookedAtIsAnError)
{
    EXPECT_EQ(loadFrom(kvxtest::placeThatCannotBeLookedAt(folder_)), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(SystemStore, PathThatNoFileCanHaveIsAnError)
{
    EXPECT_EQ(loadFrom(std::string(100'000, 'x')), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(SystemStore, PlaceThatIsNoFileIsAnError)
{
    EXPECT_EQ(loadFrom(kvxtest::toUtf8(folder_.path())), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

} // namespace
