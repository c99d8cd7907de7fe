#include "platform/config_server/locations.h"
#include "tests/support/store/program_fixture.h"

namespace
{

using namespace kvxtest;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(Program, SaysWhereNoFileCanBeMade)
{
    // A folder that refuses files even to the superuser.
    const Outcome outcome =
        runStoreTool({"add", "Rack", "--resource", "x", "--create", "--store", "/proc/self/new.xml"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, StartsWith("kvx2800t-store: cannot create a file in /proc/"));
}

TEST_F(Program, RefusesTextsThatAreNotUtf8)
{
    expectRefusal({"add", "Rack", "--resource", "\xFF"}, 2, "'\\xFF'");
}

TEST_F(Program, FindsTheUsersStore)
{
    std::filesystem::create_directory(folder_ / "ivi");
    const std::string user = folder_ / "ivi/IviConfigurationStore.xml";
    writeFile(user, exampleStore());
    const EnvironmentVariable config("XDG_CONFIG_HOME", folder_.path().c_str());
    EXPECT_THAT(runStoreTool({"list"}).output, StartsWith("store " + user + "\n"));
    const EnvironmentVariable master("IVI_MASTER_STORE", path_.c_str());
    EXPECT_THAT(runStoreTool({"list"}).output, StartsWith("store " + path_ + "\n"));
}

TEST_F(Program, CreatesTheUsersStoreWhereThereIsNone)
{
    if (std::filesystem::exists(config_server::systemLocation()))
        GTEST_SKIP() << "the host has a system's store, which comes first";
    const EnvironmentVariable config("XDG_CONFIG_HOME", (folder_ / "config").c_str());
    Outcome outcome = runStoreTool(kRackToCreate);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(
        runStoreTool({"list"}).output,
        StartsWith("store " + (folder_ / "config/ivi/IviConfigurationStore.xml") + "\ndriver sessions\n  Rack\n"));
    const EnvironmentVariable noConfig("XDG_CONFIG_HOME", nullptr);
    const EnvironmentVariable home("HOME", folder_.path().c_str());
    outcome = runStoreTool(kRackToCreate);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_TRUE(std::filesystem::exists(folder_ / ".config/ivi/IviConfigurationStore.xml"));
}

TEST_F(Program, CreatesNothingBesideTheUsersStore)
{
    std::filesystem::create_directory(folder_ / "ivi");
    const std::string user = folder_ / "ivi/IviConfigurationStore.xml";
    writeFile(user, exampleStore());
    const EnvironmentVariable config("XDG_CONFIG_HOME", folder_.path().c_str());
    const Outcome outcome = runStoreTool(kRackToCreate);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(readFile(user), HasSubstr("<Name>KVX2800T</Name>"));
    EXPECT_THAT(readFile(user), HasSubstr("<Name>Rack</Name>"));
}

} // namespace
