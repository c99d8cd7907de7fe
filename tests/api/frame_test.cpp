#include "tests/support/driver/exported_calls.h"

#include <algorithm>
#include <thread>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;

std::vector<ExportedCall> framedCalls()
{
    std::vector<ExportedCall> framed;
    std::copy_if(kExportedCalls.begin(), kExportedCalls.end(), std::back_inserter(framed),
                 [](const ExportedCall& call) { return call.isFramed; });
    return framed;
}

class Frame : public ApiTest, public testing::WithParamInterface<ExportedCall>
{
public:
    Frame()
    {
        answerExportedCalls();
        open();
    }

    static ViStatus call(ViSession session) { return GetParam().call(session); }

    /// Whether the work is the driver session's: it is looked up once more.
    static bool needsSession()
    {
        const std::string name = GetParam().name;
        return name != "LockSession" && name != "UnlockSession" && name != "self_test";
    }

    /// Expects that a call has found no session under the lock, if it has looked for one.
    void expectRefusedUnderTheLock(ViStatus status) const
    {
        EXPECT_EQ(status, needsSession() ? kInvalidSession : GetParam().success);
        if (needsSession()) {
            EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)", "IviSession_Lock(1001, null)",
                                             "IviSession_GetDataPtr(1001)", "IviSession_Unlock(1001, null)"));
        }
        EXPECT_EQ(timesRecorded(), 0U);
        EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
        EXPECT_EQ(lockDepth(vi), 0U);
    }
};

TEST_P(Frame, LooksTheSessionUpLocksAndUnlocks)
{
    EXPECT_EQ(call(vi), GetParam().success);
    const std::vector<std::string> made = calls();
    ASSERT_GE(made.size(), 3U);
    EXPECT_EQ(made[0], "IviSession_GetDataPtr(1001)");
    EXPECT_EQ(made[1], "IviSession_Lock(1001, null)");
    EXPECT_EQ(made.back(), "IviSession_Unlock(1001, null)");
    EXPECT_EQ(calls("IviSession_Unlock(1001, null)").size(), 1U);
    EXPECT_EQ(lockDepth(vi), 0U);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_P(Frame, RefusesAnUnknownSessionWithoutARecord)
{
    EXPECT_EQ(call(kUnknownSession), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(4711)"));
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
}

TEST_P(Frame, RefusesAClosedSessionWithoutARecord)
{
    KVX2800T_close(vi);
    clearLog();
    EXPECT_EQ(call(vi), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)"));
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
    vi = VI_NULL;
}

TEST_P(Frame, RefusesAHandleWithoutADriverSession)
{
    ViSession empty = VI_NULL;
    IviSession_New(&empty);
    clearLog();
    EXPECT_EQ(call(empty), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1002)"));
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
}

TEST_P(Frame, MapsAnyFailureOfTheLookUpToAnInvalidSession)
{
    failNthCall(1, kInjected);
    EXPECT_EQ(call(vi), kInvalidSession);
    EXPECT_EQ(calls().size(), 1U);
}

TEST_P(Frame, MapsAnyFailureOfTheLookUpUnderTheLockToAnInvalidSession)
{
    failNthCallOf("IviSession_GetDataPtr", 2, kInjected);
    expectRefusedUnderTheLock(call(vi));
    EXPECT_EQ(failureHappened(), needsSession());
}

TEST_P(Frame, RefusesAHandleThatHasLostItsDriverSessionUnderTheLock)
{
    giveNullDataPtr(2);
    expectRefusedUnderTheLock(call(vi));
}

TEST_P(Frame, TakesAWarningOfTheSessionServiceForSuccess)
{
    failNthCallOf("IviSession_GetDataPtr", 1, 5);
    failNthCallOf("IviSession_GetDataPtr", 2, 5);
    failNthCallOf("IviSession_Lock", 1, 5);
    EXPECT_EQ(call(vi), GetParam().success);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_P(Frame, ReturnsALockFailureAndDoesNothingElse)
{
    failNthCall(2, kInjected);
    EXPECT_EQ(call(vi), kInjected);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)", "IviSession_Lock(1001, null)"));
    EXPECT_EQ(recorded(), ErrorEntry());
}

TEST_P(Frame, UnlocksWhateverFailsInside)
{
    call(vi);
    const std::size_t made = calls().size();
    for (std::size_t n = 3; n < made; ++n) {
        failNthCall(n, kInjected);
        call(vi);
        EXPECT_TRUE(failureHappened()) << n;
        EXPECT_EQ(lockDepth(vi), 0U) << n;
    }
}

TEST_P(Frame, RecordsNoFailureTwice)
{
    call(vi);
    const std::size_t made = calls().size();
    for (std::size_t n = 3; n < made; ++n) {
        clearLog();
        failNthCall(n, kInjected);
        const ViStatus status = call(vi);
        EXPECT_LE(timesRecorded(), status < 0 ? 1U : 0U) << n;
        if (timesRecorded() == 1) {
            EXPECT_EQ(recorded().code, status) << n;
        }
        IviSession_ClearError(vi);
    }
}

TEST_P(Frame, RunsUnderALockThatTheThreadHolds)
{
    IviSession_Lock(vi, VI_NULL);
    EXPECT_EQ(call(vi), GetParam().success);
    EXPECT_EQ(lockDepth(vi), 1U);
    IviSession_Unlock(vi, VI_NULL);
}

INSTANTIATE_TEST_SUITE_P(Functions, Frame, testing::ValuesIn(framedCalls()),
                         [](const auto& function) { return std::string(function.param.name); });

class Locking : public ApiTest
{
public:
    Locking() { open(); }
};

TEST_F(Locking, LockSessionLocksInsideTheFrame)
{
    EXPECT_EQ(KVX2800T_LockSession(vi, VI_NULL), VI_SUCCESS);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)", "IviSession_Lock(1001, null)",
                                     "IviSession_Lock(1001, null)", "IviSession_Unlock(1001, null)"));
    EXPECT_EQ(lockDepth(vi), 1U);
    EXPECT_EQ(KVX2800T_LockSession(vi, VI_NULL), VI_SUCCESS);
    EXPECT_EQ(lockDepth(vi), 2U);
    clearLog();
    EXPECT_EQ(KVX2800T_UnlockSession(vi, VI_NULL), VI_SUCCESS);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)", "IviSession_Lock(1001, null)",
                                     "IviSession_Unlock(1001, null)", "IviSession_Unlock(1001, null)"));
    EXPECT_EQ(lockDepth(vi), 1U);
    EXPECT_EQ(KVX2800T_UnlockSession(vi, VI_NULL), VI_SUCCESS);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(Locking, TheCallersFlagDecidesAndFollows)
{
    ViBoolean hasLock = VI_FALSE;
    EXPECT_EQ(KVX2800T_LockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(hasLock, VI_TRUE);
    EXPECT_EQ(KVX2800T_LockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(lockDepth(vi), 1U);
    EXPECT_EQ(KVX2800T_UnlockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(hasLock, VI_FALSE);
    EXPECT_EQ(KVX2800T_UnlockSession(vi, &hasLock), VI_SUCCESS);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(Locking, TheSessionServicesStatusIsReturned)
{
    ViBoolean hasLock = VI_FALSE;
    failNthCallOf("IviSession_Lock", 2, kInjected);
    EXPECT_EQ(KVX2800T_LockSession(vi, &hasLock), kInjected);
    EXPECT_EQ(hasLock, VI_FALSE);
    EXPECT_EQ(lockDepth(vi), 0U);
    failNthCallOf("IviSession_Unlock", 1, kInjected);
    EXPECT_EQ(KVX2800T_UnlockSession(vi, &hasLock), kInjected);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(Locking, CallsOfSeveralThreadsOnOneSessionDoNotMix)
{
    answer(":SOUR3:VOLT?", "3");
    answer(":SOUR4:VOLT?", "4");
    const auto readOften = [this](const char* channel, ViReal64 expected) {
        for (int i = 0; i < 200; ++i) {
            ViReal64 volts = 0;
            EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, channel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
            EXPECT_EQ(volts, expected);
        }
    };
    std::thread first(readOften, "OutputChannel3", 3.0);
    std::thread second(readOften, "OutputChannel4", 4.0);
    first.join();
    second.join();
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(Locking, ALockedSessionMakesOtherThreadsWait)
{
    EXPECT_EQ(KVX2800T_LockSession(vi, VI_NULL), VI_SUCCESS);
    std::vector<std::string> order;
    std::thread other([&] {
        EXPECT_EQ(KVX2800T_reset(vi), VI_SUCCESS);
        order.emplace_back("other");
    });
    // The other thread is on its way into the lock once it has logged the call.
    while (calls("IviSession_Lock").size() < 3)
        std::this_thread::yield();
    EXPECT_EQ(KVX2800T_Disable(vi), VI_SUCCESS);
    order.emplace_back("holder");
    EXPECT_EQ(KVX2800T_UnlockSession(vi, VI_NULL), VI_SUCCESS);
    other.join();
    EXPECT_THAT(order, ElementsAre("holder", "other"));
    EXPECT_THAT(written(), ElementsAre(":OUTPut:STATe ALL,OFF\n", "*RST\n"));
}

} // namespace
