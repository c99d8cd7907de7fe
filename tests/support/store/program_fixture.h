#pragma once

#include "tests/support/environment.h"
#include "tests/support/store/store_tool_fixture.h"
#include "tests/support/store/store_tool_process.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace kvxtest
{

/// A copy of the example store, and an environment that names no other.
class Program : public testing::Test
{
protected:
    void SetUp() override { writeFile(path_, exampleStore()); }

    /// Runs the program on the store.
    Outcome run(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"--store", path_});
        return runStoreTool(arguments);
    }

    /// Expects that a command fails, says so and leaves the store alone.
    void expectRefusal(const std::vector<std::string>& arguments, int exitCode, const std::string& errors) const
    {
        const std::string before = readFile(path_);
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, testing::HasSubstr(errors));
        EXPECT_EQ(readFile(path_), before);
    }

    TemporaryFolder folder_;
    std::string path_ = folder_ / "store.xml";

private:
    EnvironmentVariable noMaster_{"IVI_MASTER_STORE", nullptr};
    EnvironmentVariable noProcessDefault_{"IVICONFIGSERVERDEFAULT", nullptr};
    EnvironmentVariable noUserConfig_{"XDG_CONFIG_HOME", "/no-such-folder"};
};

/// Commands that add a session.
inline const std::vector<std::string> kRack{
    "add",       "Rack",       "--resource",      "TCPIP0::10.0.0.5::5025::SOCKET",
    "--logical", "RackSupply", "--virtual-range", "Rail=OutputChannel:1-3@2"};

inline const std::vector<std::string> kRackToCreate{"add", "Rack", "--create", "--resource", "x"};

} // namespace kvxtest
