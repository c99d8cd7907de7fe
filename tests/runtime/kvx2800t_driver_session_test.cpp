#include "tests/support/driver/mock_instrument.h"
#include "tests/support/driver/runtime_fixture.h"

#include "simulator/kvx2800t_simulator.h"

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::DoAll;
using testing::InSequence;
using testing::IsEmpty;
using testing::Return;
using testing::SetArgReferee;

constexpr const char* kResource = "TCPIP0::host::1::SOCKET";

/// A KVX2800T session whose instrument a test scripts.
class KVX2800TSessionTest : public RuntimeTest
{
public:
    KVX2800TSessionTest() { session.setInstrument(instrument, false); }

    void instrumentHasStatus(ViInt32 events, ViStatus status = VI_SUCCESS)
    {
        EXPECT_CALL(*instrument, eventStatus).WillOnce(DoAll(SetArgReferee<0>(events), Return(status)));
    }

    std::shared_ptr<StrictInstrument> instrument = std::make_shared<StrictInstrument>();
    TestSession session{vi};
};

TEST_F(KVX2800TSessionTest, StatusCheckingIsSilentWhenItIsOff)
{
    EXPECT_EQ(session.CheckStatus(), VI_SUCCESS);
}

TEST_F(KVX2800TSessionTest, StatusCheckingIsSilentWhenSimulating)
{
    session.setQueryInstrumentStatus(true);
    session.setSimulate(true);
    EXPECT_EQ(session.CheckStatus(), VI_SUCCESS);
    EXPECT_EQ(session.InitializeStatus(), VI_SUCCESS);
}

TEST_F(KVX2800TSessionTest, OnlyTheErrorBitsOfTheEventStatusAreAnError)
{
    session.setQueryInstrumentStatus(true);
    for (ViInt32 events = 0; events < 256; ++events) {
        instrumentHasStatus(events);
        const bool error = (events & (4 | 8 | 16 | 32)) != 0;
        EXPECT_EQ(session.CheckStatus(), error ? code(0xBFFA0001) : VI_SUCCESS) << events;
        const ErrorEntry expected =
            error ? ErrorEntry{code(0xBFFA0001),
                               "Instrument error detected.  Use ErrorQuery() to determine the error(s)."}
                  : ErrorEntry();
        EXPECT_EQ(recorded(), expected) << events;
        IviSession_ClearError(vi);
    }
}

TEST_F(KVX2800TSessionTest, AFailedStatusReadIsRecordedOnceAndReturned)
{
    session.setQueryInstrumentStatus(true);
    instrumentHasStatus(0x3C, code(0xBFFA4214));
    EXPECT_EQ(session.CheckStatus(), code(0xBFFA4214));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4214), "I/O error."}));
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(KVX2800TSessionTest, APositiveStatusOfTheStatusReadIsReturnedUnlessThereIsAnError)
{
    session.setQueryInstrumentStatus(true);
    instrumentHasStatus(0xC3, 5);
    EXPECT_EQ(session.CheckStatus(), 5);
    EXPECT_EQ(timesRecorded(), 0U);
    instrumentHasStatus(4, 5);
    EXPECT_EQ(session.CheckStatus(), code(0xBFFA0001));
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(KVX2800TSessionTest, InitializeStatusClearsAndChecks)
{
    session.setQueryInstrumentStatus(true);
    const InSequence order;
    EXPECT_CALL(*instrument, clearStatus).WillOnce(Return(VI_SUCCESS));
    instrumentHasStatus(32);
    EXPECT_EQ(session.InitializeStatus(), code(0xBFFA0001));
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(KVX2800TSessionTest, AFailedClearEndsInitializeStatus)
{
    session.setQueryInstrumentStatus(true);
    EXPECT_CALL(*instrument, clearStatus).WillOnce(Return(code(0xBFFA4214)));
    EXPECT_EQ(session.InitializeStatus(), code(0xBFFA4214));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4214), "I/O error."}));
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(KVX2800TSessionTest, InitializeStatusClearsEvenWhenCheckingIsOff)
{
    EXPECT_CALL(*instrument, clearStatus).WillOnce(Return(VI_SUCCESS));
    EXPECT_EQ(session.InitializeStatus(), VI_SUCCESS);
}

TEST_F(KVX2800TSessionTest, AFailedCloseIsRecordedAndReturned)
{
    EXPECT_CALL(*instrument, close).WillOnce(Return(VI_ERROR_INV_OBJECT)).WillOnce(Return(VI_SUCCESS));
    EXPECT_EQ(session.CloseInstrument(), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(recorded(), (ErrorEntry{VI_ERROR_INV_OBJECT, ""}));
    EXPECT_EQ(session.CloseInstrument(), VI_SUCCESS);
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(KVX2800TSessionTest, APositiveStatusOfACloseIsReturned)
{
    EXPECT_CALL(*instrument, close).WillOnce(Return(5));
    EXPECT_EQ(session.CloseInstrument(), 5);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(KVX2800TSessionTest, ClosingBeforeThereIsAnInstrumentDoesNothing)
{
    TestSession unopened(vi);
    EXPECT_EQ(unopened.CloseInstrument(), VI_SUCCESS);
    EXPECT_EQ(unopened.Close(), VI_SUCCESS);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(KVX2800TSessionTest, AnInstrumentThatTakesThePlaceOfAnotherClosesItWhateverItSays)
{
    EXPECT_CALL(*instrument, close).WillOnce(Return(VI_ERROR_INV_OBJECT));
    const auto next = std::make_shared<StrictInstrument>();
    session.setInstrument(next, true);
    EXPECT_EQ(session.instrument(), next);
    EXPECT_TRUE(session.runsSimulated());
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_CALL(*next, close);
    session.setInstrument(nullptr, false);
    EXPECT_EQ(session.instrument(), nullptr);
    EXPECT_FALSE(session.runsSimulated());
}

TEST_F(KVX2800TSessionTest, ASimulationTakesThePlaceOfTheInstrumentWhateverTheOptionSays)
{
    EXPECT_CALL(*instrument, close);
    EXPECT_EQ(session.StartSimulation(), VI_SUCCESS);
    EXPECT_NE(dynamic_cast<TSRO::KVX2800TSimulator*>(session.instrument().get()), nullptr);
    EXPECT_TRUE(session.instrument()->isOpen());
    EXPECT_TRUE(session.runsSimulated());
    EXPECT_FALSE(session.simulate());
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(KVX2800TSessionTest, ReadIdentityCopiesTheInstrumentsRecord)
{
    EXPECT_CALL(*instrument, close);
    session.setInstrument(std::make_shared<StrictInstrument>(TSRO::Identity{"maker", "model", "serial", "firmware"}),
                          false);
    std::string manufacturer;
    std::string model;
    std::string serialNumber;
    std::string firmwareRevision;
    EXPECT_EQ(session.ReadIdentity(manufacturer, model, serialNumber, firmwareRevision), VI_SUCCESS);
    EXPECT_EQ(manufacturer, "maker");
    EXPECT_EQ(model, "model");
    EXPECT_EQ(serialNumber, "serial");
    EXPECT_EQ(firmwareRevision, "firmware");
}

/// A KVX2800T session with the real instrument object on the fake platform.
class KVX2800TInitializeTest : public RuntimeTest
{
public:
    KVX2800TInitializeTest() { answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34"); }

    TestSession session{vi};
};

TEST_F(KVX2800TInitializeTest, OpensTheResourceAndKeepsTheIdentity)
{
    EXPECT_EQ(session.Initialize(kResource, true, false, ""), VI_SUCCESS);
    EXPECT_THAT(calls("viOpen("), testing::ElementsAre("viOpen(1, \"TCPIP0::host::1::SOCKET\", 0, 2000)"));
    EXPECT_THAT(written(), testing::ElementsAre("*IDN?\n"));
    EXPECT_EQ(session.manufacturer(), "Tessaro Instruments");
    EXPECT_EQ(session.model(), "KVX2833T");
    EXPECT_EQ(session.serialNumber(), "SN1");
    EXPECT_EQ(session.firmwareRevision(), "V2.34");
    EXPECT_FALSE(session.runsSimulated());
    EXPECT_EQ(session.Close(), VI_SUCCESS);
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(openConfigHandles(), 0U);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(KVX2800TInitializeTest, ClearsAndChecksTheStatusAfterTheIdentification)
{
    answer("*ESR?", "0");
    EXPECT_EQ(session.Initialize(kResource, false, false, "QueryInstrStatus=1"), VI_SUCCESS);
    EXPECT_THAT(written(), testing::ElementsAre("*IDN?\n", "*CLS\n", "*ESR?\n"));
}

TEST_F(KVX2800TInitializeTest, AnErrorInTheStatusClosesTheInstrument)
{
    answer("*ESR?", "16");
    EXPECT_EQ(session.Initialize(kResource, false, false, "QueryInstrStatus=1"), code(0xBFFA0001));
    EXPECT_EQ(openVisaSessions(), 0U);
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(KVX2800TInitializeTest, AnUnreachableInstrumentIsAnIoErrorWithItsReason)
{
    for (const char* function : {"viOpenDefaultRM", "viOpen", "viSetAttribute", "viSetBuf", "viWrite", "viRead"}) {
        TestSession fresh(vi);
        failCall(function, VI_ERROR_RSRC_NFOUND);
        EXPECT_EQ(fresh.Initialize(kResource, false, false, ""), code(0xBFFA4214)) << function;
        EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4214), "I/O error.  Insufficient location information or resource "
                                                            "not present in the system"}))
            << function;
        EXPECT_EQ(openVisaSessions(), 0U) << function;
        clearFailures();
        IviSession_ClearError(vi);
    }
}

TEST_F(KVX2800TInitializeTest, InterchangeCheckingIsRefusedWithoutIo)
{
    EXPECT_EQ(session.Initialize(kResource, false, false, "InterchangeCheck=true"), code(0xBFFA004C));
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA004C), "The 'True' value in the option string is unknown.  "
                                                        "Interchange checking is not supported by the driver."}));
}

TEST_F(KVX2800TInitializeTest, AnUnsupportedModelClosesTheInstrument)
{
    answer("*IDN?", "Tessaro Instruments,KVX2803T,SN1,V2.34");
    EXPECT_EQ(session.Initialize(kResource, true, false, ""), code(0xBFFA005E));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA005E), "Instrument ID query failed."}));
    EXPECT_EQ(openVisaSessions(), 0U);
}

TEST_F(KVX2800TInitializeTest, AReplyThatIsNoIdentityLeavesTheIdentityEmpty)
{
    answer("*IDN?", "a,b,c");
    EXPECT_EQ(session.Initialize(kResource, false, false, ""), VI_SUCCESS);
    EXPECT_EQ(session.model(), "");
    EXPECT_EQ(session.Initialize(kResource, true, false, ""), code(0xBFFA005E));
}

TEST_F(KVX2800TInitializeTest, SimulatingNeedsNoVisaAndChecksNoStatus)
{
    EXPECT_EQ(session.Initialize("", false, false, "Simulate=1, QueryInstrStatus=1"), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_NE(dynamic_cast<TSRO::KVX2800TSimulator*>(session.instrument().get()), nullptr);
    EXPECT_TRUE(session.instrument()->isOpen());
    EXPECT_TRUE(session.runsSimulated());
    EXPECT_EQ(session.Close(), VI_SUCCESS);
    EXPECT_FALSE(session.instrument()->isOpen());
}

TEST_F(KVX2800TInitializeTest, AnInstrumentThatTakesThePlaceOfAnotherLeavesNoVisaSessionBehind)
{
    ASSERT_EQ(session.Initialize(kResource, false, false, ""), VI_SUCCESS);
    const std::size_t sessionsOfOne = openVisaSessions();
    EXPECT_EQ(session.OpenInstrument(), VI_SUCCESS);
    EXPECT_EQ(openVisaSessions(), sessionsOfOne);
    EXPECT_EQ(session.Close(), VI_SUCCESS);
    EXPECT_EQ(openVisaSessions(), 0U);
}

TEST_F(KVX2800TInitializeTest, TheInstrumentReadsTheOptionsItself)
{
    EXPECT_EQ(session.Initialize(kResource, false, false, "Cache=0, RecordCoercions=1"), VI_SUCCESS);
    EXPECT_FALSE(session.instrument()->options().cache);
    EXPECT_TRUE(session.instrument()->options().recordCoercions);
    EXPECT_TRUE(session.instrument()->options().rangeCheck);
}

TEST_F(KVX2800TInitializeTest, TheFirstErrorOfAFailedInitialisationStaysReadable)
{
    failCall("viOpen", VI_ERROR_RSRC_NFOUND);
    session.Initialize(kResource, false, false, "");
    EXPECT_EQ(errorOf(VI_NULL), recorded());
    EXPECT_EQ(recorded().code, code(0xBFFA4214));
    // Closing what never was open is reported, too; the session service keeps the first error.
    EXPECT_THAT(calls(), Contains("IviSession_SetError(1001, 0xBFFF000E, \"\")"));
}

} // namespace
