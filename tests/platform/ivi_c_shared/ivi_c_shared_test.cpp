#include "tests/support/platform/session_service_fixture.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace
{

using kvxtest::Record;
using kvxtest::SessionService;
using kvxtest::take;

constexpr ViSession kUnknown = 0xFFFFFFF0;

/// Whether another thread can take the lock now; it gives it back at once.
bool isFree(ViSession session)
{
    std::atomic<bool> taken{false};
    std::thread other([&] {
        taken = IviSession_Lock(session, nullptr) == IVI_SUCCESS;
        IviSession_Unlock(session, nullptr);
    });
    other.join();
    return taken;
}

/// Gives threads that are about to wait a moment to do so; nothing is wrong when one comes later.
void letOthersRun()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

/// Unlocks, and expects that another thread gets the lock then and not before.
void expectHeldUntilUnlocked(ViSession session)
{
    std::atomic<bool> entered{false};
    std::thread other([&] {
        EXPECT_EQ(IviSession_Lock(session, nullptr), IVI_SUCCESS);
        entered = true;
        EXPECT_EQ(IviSession_Unlock(session, nullptr), IVI_SUCCESS);
    });
    letOthersRun();
    EXPECT_FALSE(entered);
    EXPECT_EQ(IviSession_Unlock(session, nullptr), IVI_SUCCESS);
    other.join();
    EXPECT_TRUE(entered);
}

TEST_F(SessionService, NewSessionHasNoDataNoErrorAndIsUnlocked)
{
    int dummy = 0;
    ViAddr data = &dummy;
    EXPECT_EQ(IviSession_GetDataPtr(session_, &data), IVI_SUCCESS);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(take(session_), (Record{IVI_SUCCESS, ""}));
    EXPECT_TRUE(isFree(session_));
}

TEST_F(SessionService, HandlesCountUpAndAreNotReused)
{
    ViSession second = 0;
    ViSession third = 0;
    ASSERT_EQ(IviSession_New(&second), IVI_SUCCESS);
    EXPECT_EQ(second, session_ + 1);
    EXPECT_EQ(IviSession_Dispose(second), IVI_SUCCESS);
    ASSERT_EQ(IviSession_New(&third), IVI_SUCCESS);
    EXPECT_EQ(third, session_ + 2);
    EXPECT_EQ(IviSession_Dispose(third), IVI_SUCCESS);
}

TEST_F(SessionService, DataPointerIsKeptAndReplaced)
{
    int first = 0;
    int second = 0;
    ViAddr data = nullptr;
    EXPECT_EQ(IviSession_SetDataPtr(session_, &first), IVI_SUCCESS);
    EXPECT_EQ(IviSession_SetDataPtr(session_, &second), IVI_SUCCESS);
    EXPECT_EQ(IviSession_GetDataPtr(session_, &data), IVI_SUCCESS);
    EXPECT_EQ(data, &second);
    EXPECT_EQ(IviSession_SetDataPtr(session_, nullptr), IVI_SUCCESS);
    EXPECT_EQ(IviSession_GetDataPtr(session_, &data), IVI_SUCCESS);
    EXPECT_EQ(data, nullptr);
}

/// A data pointer that tells whose it is.
ViAddr dataOf(ViSession session)
{
    return reinterpret_cast<ViAddr>(static_cast<std::uintptr_t>(session));
}

ViAddr readData(ViSession session)
{
    ViAddr data = nullptr;
    EXPECT_EQ(IviSession_GetDataPtr(session, &data), IVI_SUCCESS);
    return data;
}

TEST_F(SessionService, ThousandsOfSessionsHaveADataPointerEach)
{
    std::vector<ViSession> sessions(5000);
    for (ViSession& session : sessions) {
        ASSERT_EQ(IviSession_New(&session), IVI_SUCCESS);
        EXPECT_EQ(readData(session), nullptr);
        ASSERT_EQ(IviSession_SetDataPtr(session, dataOf(session)), IVI_SUCCESS);
    }
    for (std::size_t i = 0; i < sessions.size(); i += 2)
        EXPECT_EQ(IviSession_Dispose(sessions[i]), IVI_SUCCESS);
    for (std::size_t i = 0; i < sessions.size(); i += 2) {
        ViAddr data = nullptr;
        EXPECT_EQ(IviSession_GetDataPtr(sessions[i], &data), IVI_ERROR_INVALID_SESSION_HANDLE);
    }
    for (std::size_t i = 1; i < sessions.size(); i += 2) {
        EXPECT_EQ(readData(sessions[i]), dataOf(sessions[i]));
        EXPECT_EQ(IviSession_SetDataPtr(sessions[i], nullptr), IVI_SUCCESS);
        EXPECT_EQ(readData(sessions[i]), nullptr);
        EXPECT_EQ(IviSession_Dispose(sessions[i]), IVI_SUCCESS);
    }
}

TEST_F(SessionService, ADataPointerIsNeverThatOfAnotherSession)
{
    constexpr int kRounds = 20'000;
    std::atomic<ViSession> current{session_};
    std::atomic<bool> isDone{false};
    std::thread other([&] {
        for (int round = 0; round < kRounds; ++round) {
            ViSession session = VI_NULL;
            EXPECT_EQ(IviSession_New(&session), IVI_SUCCESS);
            current = session;
            EXPECT_EQ(IviSession_SetDataPtr(session, dataOf(session)), IVI_SUCCESS);
            EXPECT_EQ(IviSession_Dispose(session), IVI_SUCCESS);
        }
        isDone = true;
    });
    while (!isDone) {
        const ViSession session = current;
        ViAddr data = nullptr;
        const bool isKnown = IviSession_GetDataPtr(session, &data) == IVI_SUCCESS;
        EXPECT_TRUE(!isKnown || data == nullptr || data == dataOf(session));
    }
    other.join();
}

TEST_F(SessionService, NullOutputPointersAreRefused)
{
    EXPECT_EQ(IviSession_New(nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviSession_GetDataPtr(session_, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviSession_GetError(session_, 10, nullptr, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviSession_GetError(session_, -1, nullptr, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(static_cast<ViUInt32>(IVI_ERROR_NULL_POINTER), 0xBFFA0058U);
}

TEST_F(SessionService, EveryFunctionRefusesUnknownAndDisposedHandles)
{
    ViSession disposed = 0;
    ASSERT_EQ(IviSession_New(&disposed), IVI_SUCCESS);
    ASSERT_EQ(IviSession_Dispose(disposed), IVI_SUCCESS);
    for (const ViSession handle : {kUnknown, disposed}) {
        int dummy = 0;
        ViAddr data = &dummy;
        ViBoolean hasLock = VI_TRUE;
        std::array<ViChar, 8> text{"before"};
        ViStatus code = 17;
        EXPECT_EQ(IviSession_Dispose(handle), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_SetDataPtr(handle, &dummy), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_GetDataPtr(handle, &data), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_Lock(handle, nullptr), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_Lock(handle, &hasLock), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_Unlock(handle, nullptr), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_Unlock(handle, &hasLock), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_GetError(handle, text.size(), &code, text.data()), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(IviSession_ClearError(handle), IVI_ERROR_INVALID_SESSION_HANDLE);
        EXPECT_EQ(data, &dummy);
        EXPECT_EQ(hasLock, VI_TRUE);
        EXPECT_EQ(code, 17);
        EXPECT_STREQ(text.data(), "before");
    }
    EXPECT_EQ(static_cast<ViUInt32>(IVI_ERROR_INVALID_SESSION_HANDLE), 0xBFFA1190U);
}

TEST_F(SessionService, ZeroIsNoSession)
{
    ViAddr data = nullptr;
    EXPECT_EQ(IviSession_GetDataPtr(VI_NULL, &data), IVI_ERROR_INVALID_SESSION_HANDLE);
    EXPECT_EQ(IviSession_Lock(VI_NULL, nullptr), IVI_ERROR_INVALID_SESSION_HANDLE);
    EXPECT_EQ(IviSession_Dispose(VI_NULL), IVI_ERROR_INVALID_SESSION_HANDLE);
}

TEST_F(SessionService, LockKeepsOtherThreadsOutUntilItIsUnlocked)
{
    ASSERT_EQ(IviSession_Lock(session_, nullptr), IVI_SUCCESS);
    expectHeldUntilUnlocked(session_);
}

TEST_F(SessionService, EachLockNeedsItsOwnUnlock)
{
    ASSERT_EQ(IviSession_Lock(session_, nullptr), IVI_SUCCESS);
    ASSERT_EQ(IviSession_Lock(session_, nullptr), IVI_SUCCESS);
    EXPECT_EQ(IviSession_Unlock(session_, nullptr), IVI_SUCCESS);
    expectHeldUntilUnlocked(session_);
}

TEST_F(SessionService, HasLockLetsOneFunctionLockOnSeveralPathsAndUnlockOnce)
{
    ViBoolean hasLock = VI_FALSE;
    EXPECT_EQ(IviSession_Lock(session_, &hasLock), IVI_SUCCESS);
    EXPECT_EQ(hasLock, VI_TRUE);
    EXPECT_EQ(IviSession_Lock(session_, &hasLock), IVI_SUCCESS);
    EXPECT_EQ(hasLock, VI_TRUE);
    EXPECT_EQ(IviSession_Unlock(session_, &hasLock), IVI_SUCCESS);
    EXPECT_EQ(hasLock, VI_FALSE);
    EXPECT_TRUE(isFree(session_));
}

TEST_F(SessionService, UnlockWithoutHasLockLeavesTheLockAlone)
{
    ASSERT_EQ(IviSession_Lock(session_, nullptr), IVI_SUCCESS);
    ViBoolean hasLock = VI_FALSE;
    EXPECT_EQ(IviSession_Unlock(session_, &hasLock), IVI_SUCCESS);
    EXPECT_EQ(hasLock, VI_FALSE);
    expectHeldUntilUnlocked(session_);
}

TEST_F(SessionService, UnlockByAnotherThreadLeavesTheLockAlone)
{
    ASSERT_EQ(IviSession_Lock(session_, nullptr), IVI_SUCCESS);
    std::thread stranger([&] { EXPECT_EQ(IviSession_Unlock(session_, nullptr), IVI_SUCCESS); });
    stranger.join();
    expectHeldUntilUnlocked(session_);
}

TEST_F(SessionService, UnlockOfAnUnlockedSessionSucceeds)
{
    EXPECT_EQ(IviSession_Unlock(session_, nullptr), IVI_SUCCESS);
    EXPECT_TRUE(isFree(session_));
}

TEST_F(SessionService, LocksOfDifferentSessionsAreIndependent)
{
    ViSession second = 0;
    ASSERT_EQ(IviSession_New(&second), IVI_SUCCESS);
    ASSERT_EQ(IviSession_Lock(session_, nullptr), IVI_SUCCESS);
    EXPECT_TRUE(isFree(second));
    EXPECT_EQ(IviSession_Unlock(session_, nullptr), IVI_SUCCESS);
    EXPECT_EQ(IviSession_Dispose(second), IVI_SUCCESS);
}

TEST_F(SessionService, DataAndErrorsCanBeReachedWhileAnotherThreadHoldsTheLock)
{
    ASSERT_EQ(IviSession_Lock(session_, nullptr), IVI_SUCCESS);
    std::thread other([&] {
        ViAddr data = nullptr;
        EXPECT_EQ(IviSession_SetDataPtr(session_, &data), IVI_SUCCESS);
        EXPECT_EQ(IviSession_GetDataPtr(session_, &data), IVI_SUCCESS);
        EXPECT_EQ(IviSession_SetError(session_, -1, "e"), IVI_SUCCESS);
        EXPECT_EQ(take(session_), (Record{-1, "e"}));
    });
    other.join();
    EXPECT_EQ(IviSession_Unlock(session_, nullptr), IVI_SUCCESS);
}

TEST_F(SessionService, DisposeByTheHolderEndsTheSession)
{
    ViSession session = 0;
    ASSERT_EQ(IviSession_New(&session), IVI_SUCCESS);
    ViBoolean hasLock = VI_FALSE;
    ASSERT_EQ(IviSession_Lock(session, &hasLock), IVI_SUCCESS);
    EXPECT_EQ(IviSession_Dispose(session), IVI_SUCCESS);
    EXPECT_EQ(IviSession_Unlock(session, &hasLock), IVI_ERROR_INVALID_SESSION_HANDLE);
}

TEST_F(SessionService, DisposeWakesEveryThreadThatWaitsForTheLock)
{
    ViSession session = 0;
    ASSERT_EQ(IviSession_New(&session), IVI_SUCCESS);
    ASSERT_EQ(IviSession_Lock(session, nullptr), IVI_SUCCESS);
    std::array<ViStatus, 4> results{};
    std::vector<std::thread> waiting;
    waiting.reserve(results.size());
    for (ViStatus& result : results)
        waiting.emplace_back([&result, session] { result = IviSession_Lock(session, nullptr); });
    letOthersRun();
    EXPECT_EQ(IviSession_Dispose(session), IVI_SUCCESS);
    for (std::thread& thread : waiting)
        thread.join();
    for (const ViStatus result : results)
        EXPECT_EQ(result, IVI_ERROR_INVALID_SESSION_HANDLE);
}

TEST_F(SessionService, LockSerialisesManyThreads)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 2000;
    long counter = 0;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                ViBoolean hasLock = VI_FALSE;
                IviSession_Lock(session_, &hasLock);
                ++counter;
                IviSession_Unlock(session_, &hasLock);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, kThreads * kRounds);
}

TEST_F(SessionService, SessionsComeAndGoInParallel)
{
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 500; ++round) {
                ViSession session = 0;
                int mine = 0;
                ViAddr data = nullptr;
                ASSERT_EQ(IviSession_New(&session), IVI_SUCCESS);
                ASSERT_EQ(IviSession_SetDataPtr(session, &mine), IVI_SUCCESS);
                ASSERT_EQ(IviSession_GetDataPtr(session, &data), IVI_SUCCESS);
                ASSERT_EQ(data, &mine);
                ASSERT_EQ(IviSession_Dispose(session), IVI_SUCCESS);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

struct ErrorCase
{
    const char* name;
    Record first;
    Record second;
    Record kept;
};

class SessionServiceErrors : public SessionService, public testing::WithParamInterface<ErrorCase>
{
};

TEST_P(SessionServiceErrors, KeepsTheMoreSevereAndEarlierOfTwo)
{
    const ErrorCase& param = GetParam();
    for (const ViSession handle : {session_, ViSession{VI_NULL}}) {
        IviSession_ClearError(VI_NULL);
        EXPECT_EQ(IviSession_SetError(handle, param.first.code, param.first.text.c_str()), IVI_SUCCESS);
        EXPECT_EQ(IviSession_SetError(handle, param.second.code, param.second.text.c_str()), IVI_SUCCESS);
        EXPECT_EQ(take(handle), param.kept);
    }
}

INSTANTIATE_TEST_SUITE_P(Rules, SessionServiceErrors,
                         testing::Values(ErrorCase{"ErrorReplacesWarning", {5, "w"}, {-3, "e"}, {-3, "e"}},
                                         ErrorCase{"ErrorReplacesSuccess", {0, ""}, {-3, "e"}, {-3, "e"}},
                                         ErrorCase{"WarningReplacesSuccess", {0, ""}, {5, "w"}, {5, "w"}},
                                         ErrorCase{"FirstErrorWins", {-3, "e"}, {-4, "f"}, {-3, "e"}},
                                         ErrorCase{"FirstWarningWins", {5, "w"}, {6, "v"}, {5, "w"}},
                                         ErrorCase{"WarningDoesNotReplaceError", {-3, "e"}, {5, "w"}, {-3, "e"}},
                                         ErrorCase{"SuccessDoesNotReplaceError", {-3, "e"}, {0, "s"}, {-3, "e"}},
                                         ErrorCase{"SuccessDoesNotReplaceWarning", {5, "w"}, {0, "s"}, {5, "w"}},
                                         ErrorCase{"SameCodeFillsAnEmptyText", {-3, ""}, {-3, "e"}, {-3, "e"}},
                                         ErrorCase{"SameCodeKeepsItsText", {-3, "e"}, {-3, "f"}, {-3, "e"}},
                                         ErrorCase{"OtherErrorDoesNotFillTheText", {-3, ""}, {-4, "f"}, {-3, ""}},
                                         ErrorCase{
                                             "ErrorWithoutTextDropsTheWarningsText", {5, "w"}, {-3, ""}, {-3, ""}}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(SessionService, NullTextIsNoText)
{
    EXPECT_EQ(IviSession_SetError(session_, -3, nullptr), IVI_SUCCESS);
    EXPECT_EQ(take(session_), (Record{-3, ""}));
}

TEST_F(SessionService, SessionErrorIsMirroredInTheThreadRecord)
{
    EXPECT_EQ(IviSession_SetError(session_, -3, "e"), IVI_SUCCESS);
    EXPECT_EQ(take(session_), (Record{-3, "e"}));
    EXPECT_EQ(take(session_), (Record{IVI_SUCCESS, ""}));
    EXPECT_EQ(take(VI_NULL), (Record{-3, "e"}));
    EXPECT_EQ(take(VI_NULL), (Record{IVI_SUCCESS, ""}));
}

TEST_F(SessionService, ThreadErrorIsNotMirroredInASession)
{
    EXPECT_EQ(IviSession_SetError(VI_NULL, -3, "e"), IVI_SUCCESS);
    EXPECT_EQ(take(session_), (Record{IVI_SUCCESS, ""}));
    EXPECT_EQ(take(VI_NULL), (Record{-3, "e"}));
}

TEST_F(SessionService, MirrorKeepsTheFirstErrorOfTheThread)
{
    ViSession second = 0;
    ASSERT_EQ(IviSession_New(&second), IVI_SUCCESS);
    IviSession_SetError(session_, -3, "first");
    IviSession_SetError(second, -4, "second");
    EXPECT_EQ(take(second), (Record{-4, "second"}));
    EXPECT_EQ(take(VI_NULL), (Record{-3, "first"}));
    IviSession_Dispose(second);
}

TEST_F(SessionService, SetErrorWithAnUnknownHandleStillReachesTheThreadRecord)
{
    EXPECT_EQ(IviSession_SetError(kUnknown, -3, "e"), IVI_ERROR_INVALID_SESSION_HANDLE);
    EXPECT_EQ(take(VI_NULL), (Record{-3, "e"}));
}

TEST_F(SessionService, EachThreadHasARecordOfItsOwn)
{
    IviSession_SetError(VI_NULL, -3, "mine");
    std::thread other([] {
        EXPECT_EQ(take(VI_NULL), (Record{IVI_SUCCESS, ""}));
        IviSession_SetError(VI_NULL, -4, "theirs");
    });
    other.join();
    EXPECT_EQ(take(VI_NULL), (Record{-3, "mine"}));
}

TEST_F(SessionService, ClearErrorClearsOnlyTheRecordNamed)
{
    IviSession_SetError(session_, -3, "e");
    EXPECT_EQ(IviSession_ClearError(session_), IVI_SUCCESS);
    EXPECT_EQ(take(session_), (Record{IVI_SUCCESS, ""}));
    EXPECT_EQ(take(VI_NULL), (Record{-3, "e"}));
    IviSession_SetError(session_, -3, "e");
    EXPECT_EQ(IviSession_ClearError(VI_NULL), IVI_SUCCESS);
    EXPECT_EQ(take(VI_NULL), (Record{IVI_SUCCESS, ""}));
    EXPECT_EQ(take(session_), (Record{-3, "e"}));
}

TEST_F(SessionService, GetErrorWithSizeZeroTellsTheSizeAndKeepsTheRecord)
{
    IviSession_SetError(session_, -3, "text");
    ViStatus code = 0;
    EXPECT_EQ(IviSession_GetError(session_, 0, &code, nullptr), 5);
    EXPECT_EQ(code, -3);
    EXPECT_EQ(take(session_), (Record{-3, "text"}));
    EXPECT_EQ(IviSession_GetError(session_, 0, nullptr, nullptr), 1);
}

TEST_F(SessionService, GetErrorCutsTheTextToTheBufferAndClearsTheRecord)
{
    IviSession_SetError(session_, -3, "abcdef");
    std::array<ViChar, 5> text{'#', '#', '#', '#', '#'};
    EXPECT_EQ(IviSession_GetError(session_, 4, nullptr, text.data()), 7);
    EXPECT_STREQ(text.data(), "abc");
    EXPECT_EQ(text[4], '#');
    EXPECT_EQ(take(session_), (Record{IVI_SUCCESS, ""}));
}

TEST_F(SessionService, GetErrorFillsABufferOfExactlyTheSizeNeeded)
{
    IviSession_SetError(session_, -3, "abc");
    std::array<ViChar, 5> text{'#', '#', '#', '#', '#'};
    EXPECT_EQ(IviSession_GetError(session_, 4, nullptr, text.data()), IVI_SUCCESS);
    EXPECT_STREQ(text.data(), "abc");
    EXPECT_EQ(text[4], '#');
}

TEST_F(SessionService, GetErrorWithANegativeSizeWritesTheWholeText)
{
    IviSession_SetError(session_, -3, "abcdef");
    std::array<ViChar, 16> text{};
    EXPECT_EQ(IviSession_GetError(session_, -1, nullptr, text.data()), IVI_SUCCESS);
    EXPECT_STREQ(text.data(), "abcdef");
    EXPECT_EQ(take(session_), (Record{IVI_SUCCESS, ""}));
}

TEST_F(SessionService, RefusedGetErrorKeepsTheRecord)
{
    IviSession_SetError(session_, -3, "abc");
    ViStatus code = 17;
    EXPECT_EQ(IviSession_GetError(session_, 8, &code, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(code, 17);
    EXPECT_EQ(take(session_), (Record{-3, "abc"}));
}

TEST_F(SessionService, LongTextsAreKeptWhole)
{
    const std::string longText(100000, 'x');
    IviSession_SetError(session_, -3, longText.c_str());
    std::vector<ViChar> text(longText.size() + 1);
    EXPECT_EQ(IviSession_GetError(session_, static_cast<ViInt32>(text.size()), nullptr, text.data()), IVI_SUCCESS);
    EXPECT_EQ(text.data(), longText);
}

} // namespace
