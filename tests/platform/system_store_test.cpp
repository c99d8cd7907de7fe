#include "locations.h"
#include "store.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace
{

/// Stands in for the place in /etc, which tests cannot write to.
std::string systemPlace;

} // namespace

namespace config_server
{

std::string processDefaultLocation()
{
    return {};
}

std::optional<std::string> masterLocation()
{
    return systemPlace;
}

const std::string& systemLocation()
{
    return systemPlace;
}

} // namespace config_server

namespace
{

class SystemStore : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = std::filesystem::temp_directory_path() / "kvx-system-store-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    static ViStatus loadFrom(const std::filesystem::path& place)
    {
        systemPlace = place;
        return config_server::Store().deserialize(systemPlace);
    }

    std::filesystem::path folder_;
};

TEST_F(SystemStore, MissingFileStandsForAnEmptyStore)
{
    EXPECT_EQ(loadFrom(folder_ / "store.xml"), VI_SUCCESS);
    EXPECT_EQ(loadFrom(folder_ / "no-such-folder" / "store.xml"), VI_SUCCESS);
}

TEST_F(SystemStore, FileThatCannotBeLookedAtIsAnError)
{
    // A link to itself: unlike missing rights, it stops the superuser as well.
    const std::filesystem::path loop = folder_ / "loop";
    std::filesystem::create_symlink(loop, loop);
    EXPECT_EQ(loadFrom(loop / "store.xml"), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(SystemStore, PlaceThatIsNoFileIsAnError)
{
    EXPECT_EQ(loadFrom(folder_), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

} // namespace
