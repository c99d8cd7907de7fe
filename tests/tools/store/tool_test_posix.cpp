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

TEST_F(Program, AChangeThatIsMadeIsNoFailureWhenItCannotBeTold)
{
    for (const std::string output : {">/dev/full", ">&-", "| true"}) {
        writeFile(path_, exampleStore());
        const Outcome outcome = runStoreToolInShell({"--store", path_, "add", "Rack", "--resource", "x"}, output);
        EXPECT_EQ(outcome.exitCode, 0) << output;
        EXPECT_THAT(readFile(path_), HasSubstr("<Name>Rack</Name>")) << output;
        if (output != "| true") {
            EXPECT_EQ(outcome.errors,
                      "kvx2800t-store: warning: " + path_ + " is changed, but the output cannot be written\n");
        }
    }
}

TEST_F(Program, ReportsThatItsOutputCannotBeWritten)
{
    for (const std::string command : {"list", "check", "--help"}) {
        const Outcome outcome = runStoreToolInShell({"--store", path_, command}, ">/dev/full");
        EXPECT_EQ(outcome.exitCode, 1) << command;
        EXPECT_EQ(outcome.errors, "kvx2800t-store: cannot write the output\n") << command;
    }
}

TEST_F(Program, FilesNeverTakeThePlaceOfClosedOutputs)
{
    const Outcome outcome = runStoreToolInShell({"--store", path_, "add", "Rack", "--resource", "x"}, ">&- 2>&- <&-");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(run({"check"}).output, path_ + ": no findings\n");
}

TEST_F(Program, WarnsThatOtherNamesOfTheStoreKeepTheOldContent)
{
    std::filesystem::create_hard_link(path_, folder_ / "other.xml");
    const Outcome outcome = run({"remove", "KVX2800T"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "kvx2800t-store: warning: " + path_ +
                                  " had 2 names (hard links); the others still lead to the old content\n");
    EXPECT_EQ(readFile(folder_ / "other.xml"), exampleStore());
}

TEST_F(Program, ChecksTheLengthOfThePath)
{
    const auto pathOfSize = [this](std::size_t size) {
        const std::string folder = folder_ / std::string(200, 'd');
        std::filesystem::create_directory(folder);
        return folder + '/' + std::string(size - folder.size() - 1, 's');
    };
    const std::string path = pathOfSize(259);
    writeFile(path, exampleStore());
    EXPECT_EQ(runStoreTool({"--store", path, "check"}).output, path + ": no findings\n");
    const std::string longer = pathOfSize(260);
    writeFile(longer, exampleStore());
    const Outcome outcome = runStoreTool({"--store", longer, "check"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, longer + ": the path has 260 characters, of which many drivers read 259\n");
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
