#include "tests/support/driver/session_fixture.h"

namespace
{

using namespace kvxtest;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> callsBesideTheStore()
{
    std::vector<std::string> found = calls();
    std::erase_if(found, [](const std::string& call) { return call.starts_with("IviConfig_"); });
    return found;
}

class Init : public SessionTest
{
public:
    ViStatus initFully(ViBoolean idQuery, ViBoolean resetInstrument)
    {
        std::string resource = "TCPIP0::host::1::SOCKET";
        return KVX2800T_init(resource.data(), idQuery, resetInstrument, &vi);
    }
};

TEST_F(Init, ANullSessionIsRefusedBeforeAnything)
{
    EXPECT_EQ(KVX2800T_init(nullptr, VI_TRUE, VI_TRUE, nullptr), kNullPointer);
    EXPECT_EQ(KVX2800T_InitWithOptions(nullptr, VI_TRUE, VI_TRUE, "Simulate=1", nullptr), kNullPointer);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Init, CallsThePlatformInThisOrder)
{
    EXPECT_EQ(initFully(VI_TRUE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(vi, kFirstSession);
    EXPECT_THAT(callsBesideTheStore(),
                ElementsAre("IviSession_New()", "IviSession_SetDataPtr(1001)", "viOpenDefaultRM()",
                            "viOpen(1, \"TCPIP0::host::1::SOCKET\", 0, 2000)",
                            "viSetAttribute(2, VI_ATTR_TMO_VALUE, 2000)", "viSetBuf(2, VI_READ_BUF, 1024)",
                            "viSetBuf(2, VI_WRITE_BUF, 1024)", "viSetAttribute(2, VI_ATTR_TERMCHAR, 10)",
                            "viSetAttribute(2, VI_ATTR_TERMCHAR_EN, 1)", "viSetBuf(2, VI_IO_IN_BUF, 1024)",
                            "viSetBuf(2, VI_IO_OUT_BUF, 1024)", R"(viWrite(2, "*IDN?\n"))", "viRead(2, 1024)",
                            "IviSession_GetDataPtr(1001)", R"(viWrite(2, "*RST\n"))"));
}

TEST_F(Init, WithoutResetNothingIsReset)
{
    EXPECT_EQ(initFully(VI_FALSE, VI_FALSE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("*IDN?\n"));
    EXPECT_FALSE(session().reset());
    EXPECT_FALSE(session().idQuery());
}

TEST_F(Init, AnyResetButFalseResetsButOnlyTrueSetsTheSessionsFlag)
{
    EXPECT_EQ(initFully(VI_FALSE, 2), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre("*IDN?\n", "*RST\n"));
    EXPECT_FALSE(session().reset());
    KVX2800T_close(vi);
    EXPECT_EQ(initFully(VI_FALSE, VI_TRUE), VI_SUCCESS);
    EXPECT_TRUE(session().reset());
}

TEST_F(Init, AFailedResetIsNoFailureOfInit)
{
    failNthCallOf("viWrite", 2, VI_ERROR_TMO);
    EXPECT_EQ(initFully(VI_FALSE, VI_TRUE), VI_SUCCESS);
    EXPECT_TRUE(failureHappened());
    EXPECT_EQ(vi, kFirstSession);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(Init, OnlyExactlyTrueQueriesTheId)
{
    answer("*IDN?", "Tessaro Instruments,KVX2803T,SN1,V2.34");
    EXPECT_EQ(initFully(2, VI_FALSE), VI_SUCCESS);
    KVX2800T_close(vi);
    EXPECT_EQ(initFully(VI_TRUE, VI_FALSE), code(0xBFFA005E));
    EXPECT_EQ(vi, ViSession{VI_NULL});
    EXPECT_EQ(threadError(), (ErrorEntry{code(0xBFFA005E), "Instrument ID query failed."}));
    EXPECT_EQ(openVisaSessions(), 0U);
}

TEST_F(Init, NullTextsAreEmptyTexts)
{
    EXPECT_EQ(KVX2800T_InitWithOptions(nullptr, VI_FALSE, VI_FALSE, nullptr, &vi), VI_SUCCESS);
    EXPECT_THAT(calls(), Contains("viOpen(1, \"\", 0, 2000)"));
    EXPECT_EQ(session().resourceName(), "");
    EXPECT_EQ(session().optionString(), "");
}

TEST_F(Init, PlainInitHasAnEmptyOptionString)
{
    EXPECT_EQ(initFully(VI_FALSE, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(session().optionString(), "");
    EXPECT_EQ(session().resourceName(), "TCPIP0::host::1::SOCKET");
}

TEST_F(Init, OptionsReachTheSession)
{
    EXPECT_EQ(init("QueryInstrStatus=1, RangeCheck=0, DriverSetup=Model:X", &vi), VI_SUCCESS);
    EXPECT_TRUE(session().queryInstrumentStatus());
    EXPECT_FALSE(session().rangeCheck());
    EXPECT_EQ(session().driverSetup(), "Model:X");
    EXPECT_EQ(session().model(), "KVX2833T");
    EXPECT_THAT(written(), ElementsAre("*IDN?\n", "*CLS\n", "*ESR?\n"));
}

TEST_F(Init, ABadOptionStringFailsBeforeAnyIo)
{
    EXPECT_EQ(init("Simulate=yes", &vi), code(0xBFFA004C));
    EXPECT_EQ(vi, ViSession{VI_NULL});
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(openConfigHandles(), 0U);
    EXPECT_EQ(threadError(), (ErrorEntry{code(0xBFFA004C), "The 'yes' value in the option string is unknown."}));
}

TEST_F(Init, InterchangeCheckingIsRefusedBeforeAnyIo)
{
    EXPECT_EQ(init("interchangecheck=true", &vi), code(0xBFFA004C));
    EXPECT_EQ(vi, ViSession{VI_NULL});
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(threadError(), (ErrorEntry{code(0xBFFA004C), "The 'True' value in the option string is unknown.  "
                                                           "Interchange checking is not supported by the driver."}));
}

TEST_F(Init, AStoreEntrySuppliesOptions)
{
    configurationStore().driverSession.emplace().queryInstrumentStatus = VI_TRUE;
    EXPECT_EQ(initFully(VI_FALSE, VI_FALSE), VI_SUCCESS);
    EXPECT_TRUE(session().queryInstrumentStatus());
    EXPECT_FALSE(session().cache());
    EXPECT_THAT(written(), ElementsAre("*IDN?\n", "*CLS\n", "*ESR?\n"));
    EXPECT_EQ(openConfigHandles(), 0U);
}

TEST_F(Init, SimulatingCallsNoVisa)
{
    EXPECT_EQ(init("Simulate=1, QueryInstrStatus=1", &vi, VI_FALSE, VI_TRUE), VI_SUCCESS);
    EXPECT_TRUE(session().simulate());
    KVX2800T_close(vi);
    vi = VI_NULL;
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(Init, SimulatedCombinationsCallNoVisa)
{
    EXPECT_EQ(init("Simulate=1, QueryInstrStatus=1", &vi), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1-6", VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel5", 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel6", 1, 1.0), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(Init, AFailedInitLeavesItsHandleToTheSessionService)
{
    failCall("viOpen", VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(initFully(VI_FALSE, VI_FALSE), kIoError);
    EXPECT_EQ(vi, ViSession{VI_NULL});
    EXPECT_EQ(openIviSessions(), 1U);
    EXPECT_THAT(calls(), Not(Contains(testing::StartsWith("IviSession_Dispose"))));
}

TEST_F(Init, SessionsAreIndependent)
{
    ViSession second = VI_NULL;
    EXPECT_EQ(initFully(VI_FALSE, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(init("", &second), VI_SUCCESS);
    EXPECT_NE(vi, second);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    vi = second;
    clearLog();
    EXPECT_EQ(KVX2800T_reset(second), VI_SUCCESS);
    EXPECT_THAT(calls("viWrite"), ElementsAre(R"(viWrite(4, "*RST\n"))"));
}

} // namespace
