#include "tests/support/platform/host_places.h"
#include "tests/support/platform/store_fixture.h"

#include <filesystem>

namespace
{

using namespace kvxtest;

class UsersStore : public StoreTest
{
};

TEST_F(UsersStore, MasterLocationIsTheFirstThatExists)
{
    const std::string own = writeFile("own.xml", kBenchStore);
    const std::string user = writeFile("xdg/ivi/IviConfigurationStore.xml", kBenchStore);
    const std::string home = writeFile("home/.config/ivi/IviConfigurationStore.xml", kBenchStore);
    const EnvironmentVariable homeFolder("HOME", (folder_ / "home").c_str());
    {
        const EnvironmentVariable noConfig("XDG_CONFIG_HOME", nullptr);
        EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), home);
    }
    const EnvironmentVariable configFolder("XDG_CONFIG_HOME", (folder_ / "xdg").c_str());
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), user);
    const EnvironmentVariable registered("IVI_MASTER_STORE", own.c_str());
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), own);
}

TEST_F(UsersStore, EmptyVariablesAreAsIfUnset)
{
    const std::string home = writeFile("home/.config/ivi/IviConfigurationStore.xml", kBenchStore);
    const EnvironmentVariable noMaster("IVI_MASTER_STORE", "");
    const EnvironmentVariable noConfig("XDG_CONFIG_HOME", "");
    const EnvironmentVariable noDefault("IVICONFIGSERVERDEFAULT", "");
    const EnvironmentVariable homeFolder("HOME", (folder_ / "home").c_str());
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), home);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION), "");
    const EnvironmentVariable noHome("HOME", nullptr);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), usualMasterStore());
}

TEST_F(UsersStore, FolderInTheUsersPlaceIsNoStore)
{
    std::filesystem::create_directories(folder_ / "xdg/ivi/IviConfigurationStore.xml");
    const EnvironmentVariable configFolder("XDG_CONFIG_HOME", (folder_ / "xdg").c_str());
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION), usualMasterStore());
}

} // namespace
