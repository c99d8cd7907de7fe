#include "tests/support/processes/virtual_instrument_process.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace
{

using namespace kvxtest;

/// SIGCHLD as a test runner may have left it.
class IgnoredChildSignals
{
public:
    IgnoredChildSignals() { static_cast<void>(std::signal(SIGCHLD, SIG_IGN)); }
    ~IgnoredChildSignals() { static_cast<void>(std::signal(SIGCHLD, SIG_DFL)); }

    IgnoredChildSignals(const IgnoredChildSignals&) = delete;
    IgnoredChildSignals& operator=(const IgnoredChildSignals&) = delete;
};

TEST(ChildProcess, KnowsItsExitCodeThoughChildSignalsWereIgnored)
{
    const IgnoredChildSignals ignored;
    ChildProcess program(virtualInstrumentPath(), {"--nonsense"});
    EXPECT_EQ(program.wait(), 2);
}

TEST(ChildProcess, IsDoneWithAProcessThatTheHostHasForgotten)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0", "--until-stdin-closes"});
    ASSERT_NE(program.readLine(), std::nullopt);
    const IgnoredChildSignals ignored;
    program.terminate();
    EXPECT_EQ(program.wait(), ChildProcess::kUnknownExitCode);
    EXPECT_EQ(program.wait(), ChildProcess::kUnknownExitCode);
}

bool isListening(unsigned short port)
{
    try {
        const LineClient client(port);
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

/// Starts a virtual instrument, tells its port and ends as a time-out of the test runner does, without any destructor.
[[noreturn]] void startAndGetKilled(int portReceiver)
{
    const VirtualInstrumentProcess program;
    const auto port = program.port();
    if (::write(portReceiver, &port, sizeof port) == static_cast<ssize_t>(sizeof port))
        static_cast<void>(std::raise(SIGKILL));
    std::abort();
}

TEST(VirtualInstrumentProcessDeathTest, TheProgramEndsWithATestProgramThatIsKilled)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    EXPECT_EXIT(startAndGetKilled(ends[1]), testing::KilledBySignal(SIGKILL), "");
    unsigned short port = 0;
    ASSERT_EQ(::read(ends[0], &port, sizeof port), static_cast<ssize_t>(sizeof port));
    ::close(ends[0]);
    ::close(ends[1]);

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (isListening(port) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_FALSE(isListening(port));
}

} // namespace
