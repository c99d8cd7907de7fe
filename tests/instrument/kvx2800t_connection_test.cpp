#include "instrument/kvx2800t.h"

#include "tests/support/driver/visa_statuses.h"
#include "tests/support/fakes/platform_fakes.h"
#include "tests/support/thrown.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using kvxtest::calls;
using kvxtest::kNoConnection;
using kvxtest::kNotFound;
using kvxtest::kTimedOut;
using kvxtest::kWarning;
using kvxtest::throwsExactly;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using TSRO::Identity;
using TSRO::KVX2800T;

constexpr ViStatus kIoError = static_cast<ViStatus>(0xBFFA4214);

constexpr const char* kResource = "GPIB0::5::INSTR";
constexpr const char* kIdentification = "Tessaro Instruments,KVX2803T,SN1,V1.00";

/// The real instrument on the fakes of VISA: the resource manager's session is 1, the instrument's 2.
class InstrumentOnVisa : public testing::Test
{
public:
    InstrumentOnVisa()
    {
        kvxtest::reset();
        kvxtest::answer("*IDN?", kIdentification);
    }

    void TearDown() override { kvxtest::reset(); }

    std::vector<std::string> identityFields() { return fieldsOf(*instrument.identity()); }

    static std::vector<std::string> fieldsOf(const Identity& identity)
    {
        return {identity.manufacturer, identity.model, identity.serialNumber, identity.firmwareRevision};
    }

    KVX2800T instrument;
};

TEST_F(InstrumentOnVisa, OpenConnectsAndAsksForTheIdentity)
{
    EXPECT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_THAT(calls(), ElementsAre("viOpenDefaultRM()", "viOpen(1, \"GPIB0::5::INSTR\", 0, 2000)",
                                     "viSetAttribute(2, VI_ATTR_TMO_VALUE, 2000)", "viSetBuf(2, VI_READ_BUF, 1024)",
                                     "viSetBuf(2, VI_WRITE_BUF, 1024)", "viWrite(2, \"*IDN?\\n\")", "viRead(2, 1024)"));
    EXPECT_TRUE(instrument.isOpen());
    EXPECT_THAT(identityFields(), ElementsAre("Tessaro Instruments", "KVX2803T", "SN1", "V1.00"));
}

TEST_F(InstrumentOnVisa, OpenHandsTheDescriptorOverAsItIsWritten)
{
    EXPECT_EQ(instrument.open("gpib0::5::instr", ""), 0);
    EXPECT_THAT(calls(), Contains("viOpen(1, \"gpib0::5::instr\", 0, 2000)"));
}

TEST_F(InstrumentOnVisa, OpenChoosesTheConnectionByTheDescriptor)
{
    EXPECT_EQ(instrument.open("TCPIP0::h::1::SOCKET", ""), 0);
    EXPECT_THAT(calls(), AllOf(Contains("viSetAttribute(2, VI_ATTR_TERMCHAR_EN, 1)"),
                               Contains("viSetBuf(2, VI_IO_IN_BUF, 1024)")));
    kvxtest::clearLog();
    EXPECT_EQ(instrument.open("ASRL1::INSTR", ""), 0);
    EXPECT_THAT(calls(), Contains("viSetAttribute(4, VI_ATTR_ASRL_BAUD, 9600)"));
}

TEST_F(InstrumentOnVisa, OpenReturnsZeroForCompletionCodesAndWarnings)
{
    for (const char* function : {"viOpenDefaultRM", "viOpen", "viSetAttribute", "viSetBuf", "viWrite", "viRead"}) {
        kvxtest::clearFailures();
        kvxtest::failCall(function, kWarning);
        EXPECT_EQ(instrument.open(kResource, ""), 0) << function;
        EXPECT_TRUE(instrument.isOpen());
    }
}

TEST_F(InstrumentOnVisa, OpenIsAnIoErrorWhenAnyCallFailsAndLeavesNoSessionOfAFailedConnection)
{
    std::size_t n = 1;
    for (;; ++n) {
        kvxtest::reset();
        kvxtest::answer("*IDN?", kIdentification);
        kvxtest::failNthCall(n, kNotFound);
        KVX2800T fresh;
        const ViStatus status = fresh.open(kResource, "");
        if (!kvxtest::failureHappened()) {
            EXPECT_EQ(status, 0);
            break;
        }
        EXPECT_EQ(status, kIoError) << n;
        // Calls 1 to 5 open the connection; 6 and 7 are the identification, on a connection that stays.
        EXPECT_EQ(fresh.isOpen(), n > 5) << n;
        EXPECT_EQ(kvxtest::openVisaSessions() > 0, n > 5) << n;
        EXPECT_EQ(kvxtest::written().empty(), n <= 6) << n;
        EXPECT_THAT(fieldsOf(*fresh.identity()), ElementsAre("", "", "", ""));
    }
    EXPECT_EQ(n, 8U);
}

TEST_F(InstrumentOnVisa, AFailedOpenKeepsThePreviousConnection)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::failCall("viOpen", kNotFound);
    EXPECT_EQ(instrument.open("USB0::1::2::3::INSTR", ""), kIoError);
    EXPECT_TRUE(instrument.isOpen());
    EXPECT_EQ(kvxtest::openVisaSessions(), 2U);
    kvxtest::clearLog();
    EXPECT_EQ(instrument.clearStatus(), 0);
    EXPECT_THAT(calls(), ElementsAre("viWrite(2, \"*CLS\\n\")"));
}

TEST_F(InstrumentOnVisa, ASecondOpenReplacesAndClosesTheFirstConnection)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    ASSERT_EQ(instrument.open("USB0::1::2::3::INSTR", ""), 0);
    EXPECT_THAT(calls(), Contains("viClose(1)"));
    EXPECT_EQ(kvxtest::openVisaSessions(), 2U);
    kvxtest::clearLog();
    EXPECT_EQ(instrument.clearStatus(), 0);
    EXPECT_THAT(calls(), ElementsAre("viWrite(4, \"*CLS\\n\")"));
}

TEST_F(InstrumentOnVisa, CloseClosesTheResourceManagersSessionOnce)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::clearLog();
    EXPECT_EQ(instrument.close(), 0);
    EXPECT_EQ(instrument.close(), kNoConnection);
    EXPECT_THAT(calls(), ElementsAre("viClose(1)"));
    EXPECT_EQ(kvxtest::openVisaSessions(), 0U);
    EXPECT_FALSE(instrument.isOpen());
}

TEST_F(InstrumentOnVisa, CloseReturnsVisasWarningAndEndsTheConnection)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::failCall("viClose", kWarning);
    EXPECT_EQ(instrument.close(), kWarning);
    EXPECT_FALSE(instrument.isOpen());
    EXPECT_EQ(instrument.close(), kNoConnection);
    EXPECT_EQ(kvxtest::openVisaSessions(), 0U);
}

TEST_F(InstrumentOnVisa, CloseThatFailsKeepsTheConnection)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::failNthCallOf("viClose", 1, kTimedOut);
    EXPECT_EQ(instrument.close(), kTimedOut);
    EXPECT_TRUE(instrument.isOpen());
    EXPECT_EQ(instrument.clearStatus(), 0);
    EXPECT_EQ(instrument.close(), 0);
    EXPECT_EQ(kvxtest::openVisaSessions(), 0U);
}

TEST_F(InstrumentOnVisa, AnOperationBeforeOpenAndAfterCloseCallsNothing)
{
    EXPECT_EQ(instrument.clearStatus(), kIoError);
    EXPECT_THAT(calls(), IsEmpty());
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    ASSERT_EQ(instrument.close(), 0);
    kvxtest::clearLog();
    double volts = -7.5;
    EXPECT_EQ(instrument.voltageLevel(1, volts), kIoError);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(InstrumentOnVisa, EveryOperationEndsInOneLineFeed)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    ASSERT_EQ(instrument.setOutputEnabled(1, true), 0);
    ASSERT_EQ(instrument.writeRaw("*SAV 1\n"), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre("*IDN?\n", ":OUTP:STAT CH1,ON\n", "*SAV 1\n"));
}

// ---- Identity

TEST_F(InstrumentOnVisa, AnIdentificationWithAnotherNumberOfFieldsKeepsTheIdentity)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    for (const char* reply : {"a,b,c", "a,b,c,d,e", "a", ",,,,", ",,"}) {
        kvxtest::answer("*IDN?", reply);
        EXPECT_EQ(instrument.open(kResource, ""), 0) << reply;
        EXPECT_THAT(identityFields(), ElementsAre("Tessaro Instruments", "KVX2803T", "SN1", "V1.00")) << reply;
    }
}

TEST_F(InstrumentOnVisa, AnIdentificationWithoutBytesKeepsTheIdentity)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::queueReply("", VI_SUCCESS);
    EXPECT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_THAT(identityFields(), ElementsAre("Tessaro Instruments", "KVX2803T", "SN1", "V1.00"));
}

TEST_F(InstrumentOnVisa, IdentificationFieldsStandAsTheyAre)
{
    kvxtest::queueReply(" a , b,,V1.00\r\n");
    EXPECT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_THAT(identityFields(), ElementsAre(" a ", " b", "", "V1.00\r"));
}

TEST_F(InstrumentOnVisa, AnIdentificationOfThreeCommasEmptiesTheIdentity)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::answer("*IDN?", ",,,");
    EXPECT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_THAT(identityFields(), ElementsAre("", "", "", ""));
}

TEST_F(InstrumentOnVisa, EveryHolderOfTheIdentitySeesALaterRefresh)
{
    const auto held = instrument.identity();
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_EQ(held->model, "KVX2803T");
    kvxtest::answer("*IDN?", "a,b,c,d");
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_THAT(fieldsOf(*held), ElementsAre("a", "b", "c", "d"));
    EXPECT_EQ(instrument.identity(), held);
}

TEST_F(InstrumentOnVisa, TheIdentityOutlivesTheInstrument)
{
    std::shared_ptr<const Identity> held;
    {
        KVX2800T other;
        ASSERT_EQ(other.open(kResource, ""), 0);
        held = other.identity();
        ASSERT_EQ(other.close(), 0);
    }
    EXPECT_EQ(held->model, "KVX2803T");
}

TEST_F(InstrumentOnVisa, AFailedIdentificationKeepsTheIdentityAndTheConnection)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::failCall("viRead", kTimedOut);
    EXPECT_EQ(instrument.open(kResource, ""), kIoError);
    EXPECT_THAT(identityFields(), ElementsAre("Tessaro Instruments", "KVX2803T", "SN1", "V1.00"));
    EXPECT_TRUE(instrument.isOpen());
}

TEST_F(InstrumentOnVisa, AReplyThatFillsTheBufferIsCutThere)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::queueReply(std::string(1024, 'a') + "5\n");
    std::string reply;
    EXPECT_EQ(instrument.queryRaw("?", reply), 0);
    EXPECT_EQ(reply, std::string(1024, 'a'));
    double rest = 0;
    EXPECT_EQ(instrument.voltageLevel(1, rest), 0);
    EXPECT_EQ(rest, 5.0);
}

/// As many bytes as the buffer takes.
std::string filledTo1024(const std::string& beginning, char filler, const std::string& end)
{
    return beginning + std::string(1024 - beginning.size() - end.size(), filler) + end;
}

TEST_F(InstrumentOnVisa, AReplyOfSeveralFieldsIsCutWithinItsLastField)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::queueReply(filledTo1024("5.5,1.25,", '0', "12") + ".5\n");
    double volts = -1.0;
    double amperes = -2.0;
    double watts = -3.0;
    EXPECT_EQ(instrument.measureAll(4, volts, amperes, watts), 0);
    EXPECT_EQ(volts, 5.5);
    EXPECT_EQ(amperes, 1.25);
    EXPECT_EQ(watts, 12.0);
    double rest = -4.0;
    EXPECT_EQ(instrument.voltageLevel(1, rest), 0);
    EXPECT_EQ(rest, 0.5);
}

TEST_F(InstrumentOnVisa, AReplyThatIsCutInFrontOfAFieldHasNoSuchField)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::queueReply(filledTo1024("RUNNING,1.5", '0', "") + ",2,7\n");
    auto state = TSRO::ListRunState::Stopped;
    double seconds = -1.0;
    ViInt32 group = -2;
    ViInt32 cycles = -3;
    EXPECT_TRUE(throwsExactly<std::out_of_range>("invalid vector subscript",
                                                 [&] { instrument.listStatus(state, seconds, group, cycles); }));
    EXPECT_EQ(state, TSRO::ListRunState::Running);
    EXPECT_EQ(seconds, 1.5);
    EXPECT_EQ(group, -2);
    EXPECT_EQ(cycles, -3);
    std::string rest;
    EXPECT_EQ(instrument.queryRaw("?", rest), 0);
    EXPECT_EQ(rest, ",2,7");
}

TEST_F(InstrumentOnVisa, AReplyThatIsCutBehindACommaHasAnEmptyField)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::queueReply(filledTo1024("5.", '0', ",") + "1,0.1\n");
    double volts = -1.0;
    double amperes = -2.0;
    double seconds = -3.0;
    EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stod argument",
                                                     [&] { instrument.listGroup(3, volts, amperes, seconds); }));
    EXPECT_EQ(volts, 5.0);
    EXPECT_EQ(amperes, -2.0);
    EXPECT_EQ(seconds, -3.0);
}

TEST_F(InstrumentOnVisa, AnErrorMessageIsCutAtTheBufferToo)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::queueReply(filledTo1024("-113,\"", 'a', "") + "a\"\n");
    ViInt32 errorCode = 0;
    std::string message;
    EXPECT_EQ(instrument.nextError(errorCode, message), 0);
    EXPECT_EQ(errorCode, -113);
    EXPECT_EQ(message, '"' + std::string(1018, 'a'));
}

// ---- Time-out

TEST_F(InstrumentOnVisa, TheTimeoutIsTwoSecondsAtFirst)
{
    EXPECT_EQ(instrument.ioTimeout(), 2000);
}

TEST_F(InstrumentOnVisa, ATimeoutSetBeforeOpenHoldsForTheNextConnection)
{
    EXPECT_EQ(instrument.setIoTimeout(5000), 0);
    EXPECT_EQ(instrument.ioTimeout(), 5000);
    EXPECT_THAT(calls(), IsEmpty());
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_EQ(instrument.ioTimeout(), 5000);
    EXPECT_THAT(calls(), Contains("viSetAttribute(2, VI_ATTR_TMO_VALUE, 5000)"));
    EXPECT_THAT(calls(), Contains("viOpen(1, \"GPIB0::5::INSTR\", 0, 2000)"));
}

TEST_F(InstrumentOnVisa, ATimeoutSetWhileOpenIsAppliedAtOnce)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::clearLog();
    EXPECT_EQ(instrument.setIoTimeout(5000), 0);
    EXPECT_EQ(instrument.ioTimeout(), 5000);
    EXPECT_THAT(calls(), ElementsAre("viSetAttribute(2, VI_ATTR_TMO_VALUE, 5000)"));
}

TEST_F(InstrumentOnVisa, ATimeoutSetWhileOpenIsThatConnectionsAlone)
{
    ASSERT_EQ(instrument.setIoTimeout(3000), 0);
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    ASSERT_EQ(instrument.setIoTimeout(5000), 0);
    kvxtest::clearLog();
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_EQ(instrument.ioTimeout(), 3000);
    EXPECT_THAT(calls(), Contains("viSetAttribute(4, VI_ATTR_TMO_VALUE, 3000)"));
}

TEST_F(InstrumentOnVisa, AFailedOpenKeepsTheTimeoutOfThePreviousConnection)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    ASSERT_EQ(instrument.setIoTimeout(5000), 0);
    kvxtest::failCall("viOpen", kNotFound);
    ASSERT_EQ(instrument.open(kResource, ""), kIoError);
    EXPECT_EQ(instrument.ioTimeout(), 5000);
}

TEST_F(InstrumentOnVisa, ATimeoutSetAfterCloseHoldsForTheNextConnection)
{
    ASSERT_EQ(instrument.setIoTimeout(3000), 0);
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    ASSERT_EQ(instrument.setIoTimeout(5000), 0);
    ASSERT_EQ(instrument.close(), 0);
    kvxtest::clearLog();
    EXPECT_EQ(instrument.ioTimeout(), 3000);
    EXPECT_EQ(instrument.setIoTimeout(7000), 0);
    EXPECT_EQ(instrument.ioTimeout(), 7000);
    EXPECT_THAT(calls(), IsEmpty());
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    EXPECT_EQ(instrument.ioTimeout(), 7000);
    EXPECT_THAT(calls(), Contains("viSetAttribute(4, VI_ATTR_TMO_VALUE, 7000)"));
}

TEST_F(InstrumentOnVisa, ATimeoutThatVisaRefusesIsAnIoErrorAndStaysStored)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::clearLog();
    kvxtest::failCall("viSetAttribute", kTimedOut);
    EXPECT_EQ(instrument.setIoTimeout(5000), kIoError);
    EXPECT_EQ(instrument.ioTimeout(), 5000);
    EXPECT_THAT(calls(), ElementsAre("viSetAttribute(2, VI_ATTR_TMO_VALUE, 5000)"));
    EXPECT_TRUE(instrument.isOpen());
    kvxtest::clearFailures();
    kvxtest::failCall("viSetAttribute", kWarning);
    EXPECT_EQ(instrument.setIoTimeout(6000), 0);
    EXPECT_EQ(instrument.ioTimeout(), 6000);
}

TEST_F(InstrumentOnVisa, ANegativeTimeoutIsVisasInfinity)
{
    ASSERT_EQ(instrument.open(kResource, ""), 0);
    kvxtest::clearLog();
    EXPECT_EQ(instrument.setIoTimeout(-1), 0);
    EXPECT_EQ(instrument.ioTimeout(), -1);
    EXPECT_THAT(calls(), ElementsAre("viSetAttribute(2, VI_ATTR_TMO_VALUE, 4294967295)"));
}

// ---- Options

TEST_F(InstrumentOnVisa, HasTheDefaultOptionsOfASession)
{
    const base::InherentOptions& options = instrument.options();
    EXPECT_TRUE(options.cache);
    EXPECT_TRUE(options.rangeCheck);
    EXPECT_FALSE(options.interchangeCheck);
    EXPECT_FALSE(options.queryInstrumentStatus);
    EXPECT_FALSE(options.recordCoercions);
    EXPECT_FALSE(options.simulate);
    EXPECT_EQ(instrument.options().model, "");
}

TEST_F(InstrumentOnVisa, ReadsItsOptionsFromTheOptionString)
{
    ASSERT_EQ(instrument.open(kResource, "CACHE=0, InterchangeCheck = VI_TRUE, QueryInstrStatus=true,RangeCheck=False,"
                                         "RecordCoercions=1,simulate=1,DriverSetup=Cache=1"),
              0);
    const base::InherentOptions& options = instrument.options();
    EXPECT_FALSE(options.cache);
    EXPECT_TRUE(options.interchangeCheck);
    EXPECT_TRUE(options.queryInstrumentStatus);
    EXPECT_FALSE(options.rangeCheck);
    EXPECT_TRUE(options.recordCoercions);
    EXPECT_TRUE(options.simulate);
}

TEST_F(InstrumentOnVisa, ReadsTheModelOfTheDriverSetup)
{
    const std::pair<const char*, const char*> models[] = {
        {"Cache=0, DriverSetup=Model:KVX2803T", "KVX2803T"},
        {"driversetup = Foo:Bar, MODEL= KVX2833T B ,Model+:x", "KVX2833T B "},
        {"DriverSetup=Model:A,model=B", "B"},
        {"Model=KVX2803T", ""},
        {"DriverSetup=Models:KVX2803T", ""},
        {"DriverSetup=", ""}};
    for (const auto& [options, model] : models) {
        ASSERT_EQ(instrument.open(kResource, options), 0);
        EXPECT_EQ(instrument.options().model, model) << options;
    }
}

TEST_F(InstrumentOnVisa, TheModelOfTheDriverSetupIsNotThatOfTheIdentity)
{
    kvxtest::answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34");
    ASSERT_EQ(instrument.open(kResource, "DriverSetup=Model:KVX2803T"), 0);
    EXPECT_EQ(instrument.identity()->model, "KVX2833T");
    EXPECT_EQ(instrument.options().model, "KVX2803T");
}

TEST_F(InstrumentOnVisa, ReadsItsOptionsBeforeItConnects)
{
    kvxtest::failCall("viOpenDefaultRM", kNotFound);
    EXPECT_EQ(instrument.open(kResource, "RangeCheck=0"), kIoError);
    EXPECT_FALSE(instrument.options().rangeCheck);
}

TEST_F(InstrumentOnVisa, OpensWhateverTheOptionStringHolds)
{
    for (const std::string& options : {std::string("no options at all"), std::string("cache=maybe,x=1,=,==,,"),
                                       std::string(100000, ' '), std::string(100000, 'a'), std::string(1, '\0')})
        EXPECT_EQ(instrument.open(kResource, options), 0);
    EXPECT_TRUE(instrument.options().cache);
}

} // namespace
