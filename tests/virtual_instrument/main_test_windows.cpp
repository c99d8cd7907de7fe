#include "tests/support/processes/child_process.h"
#include "tests/support/processes/line_client.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

namespace
{

using namespace kvxtest;

/// The program, and the ports that it has told.
class WindowsProgram
{
public:
    explicit WindowsProgram(const std::vector<std::string>& arguments) : process_(KVX_VIRTUAL, arguments) {}

    ChildProcess& process() { return process_; }

    /// What follows `beginning` in its next line.
    std::string next(const std::string& beginning)
    {
        const std::string line = process_.readLine().value_or("the end of its output");
        EXPECT_TRUE(line.starts_with(beginning)) << line;
        return line.starts_with(beginning) ? line.substr(beginning.size()) : "";
    }

    unsigned short nextPort(const std::string& beginning)
    {
        return static_cast<unsigned short>(std::stoul(next(beginning)));
    }

private:
    ChildProcess process_;
};

constexpr auto kListening = "listening on 127.0.0.1:";

TEST(WindowsProgram, ServesClientsAndItsTestControl)
{
    WindowsProgram program({"--port", "0", "--control-port", "0"});
    const unsigned short port = program.nextPort(kListening);
    LineClient control(program.nextPort("test control on 127.0.0.1:"));
    std::vector<LineClient> clients;
    for (int i = 0; i < 20; ++i)
        clients.emplace_back(port);
    for (LineClient& client : clients)
        client.send("SOUR3:VOLT 4.5;VOLT?\n");
    for (LineClient& client : clients)
        EXPECT_EQ(client.readLine(), "4.500000");
    EXPECT_EQ(control.query("sync"), "ok");
}

TEST(WindowsProgram, EndsWithItsStandardInputWhenAsked)
{
    WindowsProgram program({"--port", "0", "--until-stdin-closes"});
    LineClient client(program.nextPort(kListening));
    EXPECT_EQ(client.query("*OPC?"), "1");
    program.process().closeInput();
    EXPECT_TRUE(client.waitForEnd());
    EXPECT_EQ(program.process().wait(), 0);
}

TEST(WindowsProgram, EndsCleanlyWhenTheConsoleAsksItTo)
{
    if (!ChildProcess::canInterrupt())
        GTEST_SKIP() << "there is no console";
    WindowsProgram program({"--port", "0"});
    program.next(kListening);
    program.process().interrupt();
    EXPECT_EQ(program.process().wait(), 0);
    EXPECT_EQ(program.process().errorOutput(), "");
}

TEST(WindowsProgram, SaysThatThereAreNoSerialLines)
{
    WindowsProgram program({"--port", "0", "--serial"});
    EXPECT_EQ(program.process().wait(), 1);
    EXPECT_EQ(program.process().errorOutput(),
              "kvx2800t-virtual: cannot offer a serial line: Windows has no pseudo terminals\n");
}

TEST(WindowsProgram, NeverSharesAPort)
{
    WindowsProgram first({"--port", "0"});
    const std::string port = first.next(kListening);
    WindowsProgram second({"--port", port});
    EXPECT_EQ(second.process().wait(), 1);
    EXPECT_EQ(second.process().errorOutput(),
              "kvx2800t-virtual: cannot listen on 127.0.0.1:" + port + ": Address already in use\n");
}

} // namespace
