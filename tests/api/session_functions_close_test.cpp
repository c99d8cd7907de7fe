#include "tests/support/driver/session_fixture.h"

#include "runtime/close_listeners.h"

#include <functional>
#include <memory>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;

/// What a listener does when a session is closed; listeners stay for the rest of the process, this changes with the
/// test.
std::function<void(ViSession)>& onClose()
{
    static std::function<void(ViSession)> instance;
    return instance;
}

class Close : public SessionTest
{
public:
    Close()
    {
        static const bool added = (drivekit::addCloseListener([](ViSession session) {
                                       if (onClose())
                                           onClose()(session);
                                   }),
                                   true);
        EXPECT_TRUE(added);
        onClose() = nullptr;
        open();
    }

    void TearDown() override
    {
        onClose() = nullptr;
        SessionTest::TearDown();
    }
};

TEST_F(Close, ClosesTheConnectionAndDisposesOfTheHandleWithoutALock)
{
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)", "IviSession_GetDataPtr(1001)", "viClose(1)",
                                     "IviSession_Dispose(1001)"));
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

TEST_F(Close, OfASessionWithoutAnInstrumentDisposesOfTheHandle)
{
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    IviSession_New(&vi);
    IviSession_SetDataPtr(vi, static_cast<drivekit::DriverSession*>(new TestSession(vi)));
    clearLog();
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_THAT(calls(),
                ElementsAre("IviSession_GetDataPtr(1002)", "IviSession_GetDataPtr(1002)", "IviSession_Dispose(1002)"));
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

TEST_F(Close, ASecondTimeTheSessionIsUnknown)
{
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    clearLog();
    EXPECT_EQ(KVX2800T_close(vi), kInvalidSession);
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)"));
    EXPECT_EQ(errorOf(VI_NULL), ErrorEntry());
    vi = VI_NULL;
}

TEST_F(Close, ThatCannotDisposeOfTheHandleLeavesItWithoutASession)
{
    for (const ViStatus ignored : {VI_SUCCESS, code(0xBFFA1778)}) {
        failCall("IviSession_Dispose", kInjected);
        failNthCallOf("IviSession_SetDataPtr", 1, ignored);
        EXPECT_EQ(KVX2800T_close(vi), kInjected);
        EXPECT_THAT(calls(),
                    ElementsAre(testing::_, testing::_, "viClose(1)", testing::StartsWith("IviSession_Dispose("),
                                testing::StartsWith("IviSession_SetDataPtr(")));
        EXPECT_EQ(openVisaSessions(), 0U);
        clearFailures();
        if (ignored == VI_SUCCESS) {
            EXPECT_EQ(KVX2800T_reset(vi), kInvalidSession);
            clearLog();
            EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
            EXPECT_EQ(calls("IviSession_Dispose").size(), 0U);
        }
        reset();
        startOver();
        open();
    }
}

TEST_F(Close, ThatDisposesOfTheHandleWithAWarningLeavesItAlone)
{
    constexpr ViStatus kWarning = 5;
    failCall("IviSession_Dispose", kWarning);
    EXPECT_EQ(KVX2800T_close(vi), kWarning);
    EXPECT_THAT(calls(), ElementsAre(testing::_, testing::_, "viClose(1)", testing::StartsWith("IviSession_Dispose(")));
    vi = VI_NULL;
}

TEST_F(Close, AnUnknownSessionIsRefusedAndNobodyIsTold)
{
    bool told = false;
    onClose() = [&told](ViSession) { told = true; };
    EXPECT_EQ(KVX2800T_close(kUnknownSession), kInvalidSession);
    EXPECT_EQ(KVX2800T_close(VI_NULL), kInvalidSession);
    EXPECT_FALSE(told);
}

TEST_F(Close, ListenersAreToldWhileTheSessionIsStillThere)
{
    std::vector<ViSession> told;
    onClose() = [&told](ViSession session) {
        told.push_back(session);
        EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1001)"));
        EXPECT_EQ(openVisaSessions(), 2U);
    };
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_THAT(told, ElementsAre(kFirstSession));
    vi = VI_NULL;
}

TEST_F(Close, WithoutItsObjectTheHandleIsNotDisposed)
{
    const std::unique_ptr<drivekit::DriverSession> taken(&session());
    onClose() = [](ViSession closing) { IviSession_SetDataPtr(closing, nullptr); };
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_EQ(openIviSessions(), 1U);
    EXPECT_EQ(calls("IviSession_Dispose").size(), 0U);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    taken->Close();
    vi = VI_NULL;
}

TEST_F(Close, OfAHandleWithoutASessionTellsTheListenersAndDisposesOfNothing)
{
    ViSession empty = VI_NULL;
    IviSession_New(&empty);
    clearLog();
    std::vector<ViSession> told;
    onClose() = [&told](ViSession session) { told.push_back(session); };
    EXPECT_EQ(KVX2800T_close(empty), VI_SUCCESS);
    EXPECT_THAT(told, ElementsAre(empty));
    EXPECT_THAT(calls(), ElementsAre("IviSession_GetDataPtr(1002)", "IviSession_GetDataPtr(1002)"));
    EXPECT_EQ(openIviSessions(), 2U);
}

TEST_F(Close, OfAHandleWhoseSessionTheFirstLookUpMissesClosesItAllTheSame)
{
    std::vector<ViSession> told;
    onClose() = [&told](ViSession session) { told.push_back(session); };
    giveNullDataPtr(1);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_THAT(told, ElementsAre(kFirstSession));
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

TEST_F(Close, GoesOnAfterAWarningOfTheSessionService)
{
    failNthCallOf("IviSession_GetDataPtr", 1, 5);
    failNthCallOf("IviSession_GetDataPtr", 2, 5);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_TRUE(failureHappened());
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

TEST_F(Close, AFailedFirstLookUpIsAnInvalidSession)
{
    failNthCall(1, kInjected);
    EXPECT_EQ(KVX2800T_close(vi), kInvalidSession);
    EXPECT_EQ(openIviSessions(), 1U);
    EXPECT_EQ(openVisaSessions(), 2U);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(Close, AFailedSecondLookUpIsReturnedAndTheSessionStays)
{
    failNthCall(2, kInjected);
    EXPECT_EQ(KVX2800T_close(vi), kInjected);
    EXPECT_EQ(openIviSessions(), 1U);
    EXPECT_EQ(openVisaSessions(), 2U);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(Close, AConnectionThatRefusesToCloseIsRecordedAndTheHandleDisposed)
{
    failNthCall(3, VI_ERROR_CLOSING_FAILED);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_TRUE(failureHappened());
    EXPECT_EQ(threadError(), (ErrorEntry{VI_ERROR_CLOSING_FAILED, ""}));
    EXPECT_EQ(openIviSessions(), 0U);
    vi = VI_NULL;
}

TEST_F(Close, AFailureToDisposeIsReturned)
{
    failNthCall(4, kInjected);
    EXPECT_EQ(KVX2800T_close(vi), kInjected);
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(timesRecorded(), 0U);
    vi = VI_NULL;
}

TEST_F(Close, HasNoOtherCallThatCouldFail)
{
    failNthCall(5, kInjected);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    EXPECT_FALSE(failureHappened());
    vi = VI_NULL;
}

} // namespace
