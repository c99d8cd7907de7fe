#include "tests/support/driver/driver_end_to_end.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace kvxtest
{
namespace
{

class Threads : public DriverEndToEnd
{
};

constexpr int kRounds = 50;

/// A level that only one thread of a test uses.
void expectOwnLevel(ViSession vi, const char* channel, double level)
{
    for (int round = 0; round < kRounds; ++round) {
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, channel, level), VI_SUCCESS);
        ViReal64 volts = 0.0;
        EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
        EXPECT_EQ(volts, level);
    }
}

TEST_F(Threads, CallsOnOneSessionNeverMix)
{
    open();
    std::thread other([this] { expectOwnLevel(vi, "OutputChannel4", 4.0); });
    expectOwnLevel(vi, "OutputChannel3", 3.0);
    other.join();
    EXPECT_EQ(newLines().size(), 1U + 2U * 2U * kRounds);
}

TEST_F(Threads, TwoSessionsWorkSideBySide)
{
    open();
    std::thread other([this] {
        std::string resource = instrument.resource();
        ViSession second = VI_NULL;
        ASSERT_EQ(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &second), VI_SUCCESS);
        expectOwnLevel(second, "OutputChannel4", 4.0);
        EXPECT_EQ(KVX2800T_close(second), VI_SUCCESS);
    });
    expectOwnLevel(vi, "OutputChannel3", 3.0);
    other.join();
}

TEST_F(Threads, LockSessionKeepsOtherThreadsOutAcrossCalls)
{
    open();
    newLines();
    ASSERT_EQ(KVX2800T_LockSession(vi, nullptr), VI_SUCCESS);
    std::atomic<bool> isThere = false;
    std::thread other([&] {
        isThere = true;
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel4", 1.0), VI_SUCCESS);
    });
    while (!isThere)
        std::this_thread::yield();
    for (int round = 0; round < kRounds; ++round)
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 2.0), VI_SUCCESS);
    const Lines whileLocked = newLines();
    EXPECT_EQ(KVX2800T_UnlockSession(vi, nullptr), VI_SUCCESS);
    other.join();
    EXPECT_EQ(std::count(whileLocked.begin(), whileLocked.end(), ":SOUR3:VOLT 2.000000"), kRounds);
    EXPECT_EQ(whileLocked.size(), static_cast<std::size_t>(kRounds));
    EXPECT_EQ(newLines(), Lines{":SOUR4:VOLT 1.000000"});
}

TEST_F(Threads, HasLockVariableLetsOneUnlockMatchSeveralLocks)
{
    open();
    ViBoolean hasLock = VI_FALSE;
    EXPECT_EQ(KVX2800T_LockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(hasLock, VI_TRUE);
    EXPECT_EQ(KVX2800T_LockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_UnlockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(hasLock, VI_FALSE);
    // Nothing is left locked: another thread gets through.
    std::thread other([this] { EXPECT_EQ(KVX2800T_InvalidateAllAttributes(vi), VI_SUCCESS); });
    other.join();
}

/// The lines of one call that sets a level of three channels, with status checking on.
Lines linesOfOneCall(const std::string& level)
{
    return {":SOUR3:VOLT " + level, ":SOUR4:VOLT " + level, ":SOUR:Mode?", ":SOUR2:VOLT " + level, "*ESR?"};
}

TEST_F(Threads, ACallOnSeveralChannelsIsNotInterruptedByOneOfAnotherThread)
{
    open("QueryInstrStatus=1");
    newLines();
    const auto configureOften = [this](ViReal64 level) {
        for (int round = 0; round < kRounds; ++round)
            EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3-4,OutputChannel2", level), VI_SUCCESS);
    };
    std::thread other(configureOften, 2.0);
    configureOften(1.0);
    other.join();

    const Lines lines = newLines();
    const Lines ofFirst = linesOfOneCall("1.000000");
    const Lines ofOther = linesOfOneCall("2.000000");
    ASSERT_EQ(lines.size(), ofFirst.size() * 2 * kRounds);
    int ofFirstCount = 0;
    for (auto at = lines.begin(); at != lines.end(); at += static_cast<std::ptrdiff_t>(ofFirst.size())) {
        const Lines ofCall(at, at + static_cast<std::ptrdiff_t>(ofFirst.size()));
        ofFirstCount += ofCall == ofFirst ? 1 : 0;
        EXPECT_TRUE(ofCall == ofFirst || ofCall == ofOther) << testing::PrintToString(ofCall);
    }
    EXPECT_EQ(ofFirstCount, kRounds);
}

TEST_F(Threads, ALockedSessionDoesNotKeepOthersFromWorking)
{
    open();
    ViSession second = VI_NULL;
    std::string resource = instrument.resource();
    ASSERT_EQ(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &second), VI_SUCCESS);
    ASSERT_EQ(KVX2800T_LockSession(vi, nullptr), VI_SUCCESS);
    // Would never end if the sessions shared a lock.
    std::thread other([second] { expectOwnLevel(second, "OutputChannel4", 4.0); });
    other.join();
    EXPECT_EQ(KVX2800T_UnlockSession(vi, nullptr), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_close(second), VI_SUCCESS);
}

TEST_F(Threads, LocksNestAndTheLastUnlockLetsOthersIn)
{
    open();
    ASSERT_EQ(KVX2800T_LockSession(vi, nullptr), VI_SUCCESS);
    ASSERT_EQ(KVX2800T_LockSession(vi, nullptr), VI_SUCCESS);
    newLines();
    std::thread other([this] { EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel4", 1.0), VI_SUCCESS); });
    EXPECT_EQ(KVX2800T_UnlockSession(vi, nullptr), VI_SUCCESS);
    for (int round = 0; round < kRounds; ++round)
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 2.0), VI_SUCCESS);
    EXPECT_EQ(newLines(), Lines(kRounds, ":SOUR3:VOLT 2.000000"));
    EXPECT_EQ(KVX2800T_UnlockSession(vi, nullptr), VI_SUCCESS);
    other.join();
    EXPECT_EQ(newLines(), Lines{":SOUR4:VOLT 1.000000"});
}

TEST(SessionThreads, SessionsComeAndGoInOneThreadWhileOthersWork)
{
    const VirtualInstrumentProcess instrument;
    std::atomic<bool> isDone = false;
    const auto work = [&](const char* channel, ViReal64 level) {
        std::string resource = instrument.resource();
        ViSession vi = VI_NULL;
        ASSERT_EQ(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &vi), VI_SUCCESS);
        do {
            ViReal64 volts = 0.0;
            EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, channel, level), VI_SUCCESS);
            EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
            EXPECT_EQ(volts, level);
        } while (!isDone);
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    };
    std::thread first(work, "OutputChannel3", 3.0);
    std::thread second(work, "OutputChannel4", 4.0);
    for (int i = 0; i < 50; ++i) {
        std::string resource = instrument.resource();
        ViSession vi = VI_NULL;
        EXPECT_EQ(KVX2800T_InitWithOptions(resource.data(), VI_FALSE, VI_FALSE, i % 2 == 0 ? "" : "Simulate=1", &vi),
                  VI_SUCCESS);
        EXPECT_EQ(KVX2800T_InvalidateAllAttributes(vi), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_InvalidateAllAttributes(vi), KVX2800T_ERROR_INVALID_SESSION_HANDLE);
    }
    isDone = true;
    first.join();
    second.join();
}

} // namespace
} // namespace kvxtest
