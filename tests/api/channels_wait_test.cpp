#include "tests/support/driver/channel_settings.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

// The second that a change of the source mode takes, on the clock of the system. All calls take it side by side.

namespace
{

using namespace kvxtest;
using testing::ElementsAreArray;

/// In ticks of 100 ns.
std::int64_t now()
{
    using Tick = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    return std::chrono::floor<Tick>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// How the log shows lines that are written to a VISA session.
std::vector<std::string> writes(const std::string& visaSession, std::vector<std::string> lines)
{
    for (std::string& line : lines) {
        line.pop_back();
        line = "viWrite(" + visaSession + ", \"" + line + "\\n\")";
    }
    return lines;
}

class ModeChangeOnTheSystemsClock : public ApiTest
{
public:
    ModeChangeOnTheSystemsClock()
    {
        for (ViSession& session : sessions)
            EXPECT_EQ(init("", &session), VI_SUCCESS);
        clearLog();
    }

    void TearDown() override
    {
        for (const ViSession session : sessions)
            EXPECT_EQ(KVX2800T_close(session), VI_SUCCESS);
        ApiTest::TearDown();
    }

    void callInTime(std::size_t index)
    {
        const std::int64_t start = now();
        EXPECT_EQ(changing[index].set(sessions[index], "OutputChannel5"), changing[index].status);
        EXPECT_GE(now() - start, 10'000'000) << changing[index].name;
        ++callsMade;
    }

    std::size_t modesChanged() const
    {
        const std::vector<std::string> lines = written();
        return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), ":SOUR:Mode SER\n"));
    }

    /// Expects that whoever gets the lock during a call gets it when everything has been sent.
    void expectAllSentUnderTheLock(std::size_t index) const
    {
        // Each session has a resource manager's session and its own.
        const std::string visaSession = std::to_string(2 * (index + 1));
        EXPECT_EQ(KVX2800T_LockSession(sessions[index], VI_NULL), VI_SUCCESS);
        EXPECT_THAT(calls("viWrite(" + visaSession + ","),
                    ElementsAreArray(writes(visaSession, linesOfSeriesChannel(changing[index]))));
        EXPECT_EQ(KVX2800T_UnlockSession(sessions[index], VI_NULL), VI_SUCCESS);
    }

    const std::vector<SettingCall> changing = callsThatChangeTheMode();
    std::vector<ViSession> sessions = std::vector<ViSession>(changing.size());
    std::atomic<std::size_t> callsMade = 0;
};

TEST_F(ModeChangeOnTheSystemsClock, TakesASecondUnderTheLock)
{
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < changing.size(); ++index)
        threads.emplace_back([this, index] { callInTime(index); });
    while (modesChanged() < changing.size() && callsMade < changing.size())
        std::this_thread::yield();
    for (std::size_t index = 0; index < changing.size(); ++index)
        expectAllSentUnderTheLock(index);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
