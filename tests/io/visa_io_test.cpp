#include "io/visa_io.h"
#include "tests/support/driver/visa_statuses.h"
#include "tests/support/fakes/platform_fakes.h"

#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include <gmock/gmock.h>

namespace
{

using InstLink::IoSettings;
using InstLink::VisaIO;
using kvxtest::calls;
using kvxtest::kClosingFailed;
using kvxtest::kNotFound;
using kvxtest::kTermChar;
using kvxtest::kTimedOut;
using kvxtest::kWarning;
using kvxtest::queueReply;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr ViStatus kMaxCount = 0x3FFF0006;
constexpr ViStatus kNoObject = static_cast<ViStatus>(0xBFFF000E);

static_assert(std::is_abstract_v<InstLink::VisaIOBase>);
static_assert(std::is_base_of_v<InstLink::VisaIOBase, VisaIO>);
static_assert(std::is_base_of_v<VisaIO, InstLink::VisaSerial>);
static_assert(std::is_base_of_v<VisaIO, InstLink::VisaTCPIPSocket>);
static_assert(std::is_base_of_v<VisaIO, InstLink::VisaTCPIP>);
static_assert(std::is_base_of_v<VisaIO, InstLink::VisaGPIB>);
static_assert(std::is_base_of_v<VisaIO, InstLink::VisaUSB>);

TEST(IoSettingsRecord, HasTheDefaultsOfAConnection)
{
    const IoSettings settings;
    EXPECT_EQ(settings.termChar, 0x0A);
    EXPECT_TRUE(settings.termCharEnabled);
    EXPECT_EQ(settings.openTimeoutMs, 2000);
    EXPECT_EQ(settings.timeoutMs, 2000);
    EXPECT_TRUE(settings.appendTermChar);
    EXPECT_TRUE(settings.stripTermChar);
    EXPECT_EQ(settings.readBufferSize, 1024U);
    EXPECT_EQ(settings.writeBufferSize, 1024U);
    EXPECT_EQ(settings.baudRate, 9600);
    EXPECT_EQ(settings.dataBits, 8);
    EXPECT_EQ(settings.flowControl, 0);
    EXPECT_EQ(settings.parity, 0);
    EXPECT_EQ(settings.stopBits, 10);
}

/// A connection that is open with the defaults: the resource manager's session is 1, the instrument's 2.
class Connection : public testing::Test
{
public:
    Connection()
    {
        kvxtest::reset();
        EXPECT_EQ(io.open("GPIB0::5::INSTR"), 0);
        kvxtest::clearLog();
    }

    void TearDown() override { kvxtest::reset(); }

    /// What one read makes of bytes that the instrument sends.
    std::string readOf(const std::string& bytes)
    {
        queueReply(bytes, VI_SUCCESS);
        std::string reply = "before";
        EXPECT_EQ(io.read(reply), 0);
        return reply;
    }

    VisaIO io;
};

// ---- write

TEST_F(Connection, EndsAMessageWithALineFeed)
{
    EXPECT_EQ(io.write("MEAS:VOLT?"), 0);
    EXPECT_THAT(calls(), ElementsAre("viWrite(2, \"MEAS:VOLT?\\n\")"));
}

TEST_F(Connection, LeavesAMessageThatEndsWithALineFeed)
{
    EXPECT_EQ(io.write("*RST\n"), 0);
    EXPECT_EQ(io.write("*RST\n\n"), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre("*RST\n", "*RST\n\n"));
}

TEST_F(Connection, SendsALineFeedForAnEmptyMessage)
{
    EXPECT_EQ(io.write(""), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre("\n"));
}

TEST_F(Connection, SendsAnyBytesInOneCall)
{
    const std::string longMessage(100000, 'x');
    const std::string withNul("a\0b", 3);
    EXPECT_EQ(io.write(longMessage), 0);
    EXPECT_EQ(io.write(withNul), 0);
    EXPECT_EQ(io.write("a\nb"), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre(longMessage + "\n", withNul + "\n", "a\nb\n"));
}

TEST_F(Connection, AppendsNothingWhenItIsToldNotTo)
{
    io.applySettings({.appendTermChar = false});
    EXPECT_EQ(io.write("*RST"), 0);
    EXPECT_EQ(io.write(""), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre("*RST", ""));
}

TEST_F(Connection, AppendsTheTerminationCharacterOfTheSettings)
{
    io.applySettings({.termChar = 0xFE});
    EXPECT_EQ(io.write("*RST\n"), 0);
    EXPECT_EQ(io.write("*RST\xFE"), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre("*RST\n\xFE", "*RST\xFE"));
}

TEST_F(Connection, AppendsTheTerminationCharacterThoughItIsDisabledForReads)
{
    io.applySettings({.termCharEnabled = false});
    EXPECT_EQ(io.write("*RST"), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre("*RST\n"));
}

TEST_F(Connection, ReturnsTheStatusOfAWriteWithoutTryingAgain)
{
    for (const ViStatus status : {kTimedOut, kWarning}) {
        kvxtest::clearLog();
        kvxtest::clearFailures();
        kvxtest::failCall("viWrite", status);
        EXPECT_EQ(io.write("*RST"), status);
        EXPECT_THAT(calls(), ElementsAre("viWrite(2, \"*RST\\n\")"));
    }
}

// ---- read

TEST_F(Connection, ReadsOnceAndRemovesTheLineFeed)
{
    queueReply("12.345\n");
    std::string reply;
    EXPECT_EQ(io.read(reply), kTermChar);
    EXPECT_EQ(reply, "12.345");
    EXPECT_THAT(calls(), ElementsAre("viRead(2, 1024)"));
}

TEST_F(Connection, RemovesOneLineFeedOnly)
{
    EXPECT_EQ(readOf("12.345\n\n"), "12.345\n");
    EXPECT_EQ(readOf("12.345\r\n"), "12.345\r");
    EXPECT_EQ(readOf("12.345"), "12.345");
    EXPECT_EQ(readOf("\n"), "");
    EXPECT_EQ(readOf("\n12"), "\n12");
    EXPECT_EQ(readOf(std::string("a\0b\0\n", 5)), std::string("a\0b\0", 4));
}

TEST_F(Connection, RemovesNothingWhenItIsToldNotTo)
{
    io.applySettings({.stripTermChar = false});
    EXPECT_EQ(readOf("12.345\n"), "12.345\n");
}

TEST_F(Connection, RemovesTheTerminationCharacterOfTheSettings)
{
    io.applySettings({.termChar = 0xFE});
    EXPECT_EQ(readOf("12.345\xFE"), "12.345");
    EXPECT_EQ(readOf("12.345\n"), "12.345\n");
}

TEST_F(Connection, ReplacesWhatTheReplyHeldBefore)
{
    queueReply("5\n");
    std::string reply(5000, 'x');
    EXPECT_GE(io.read(reply), 0);
    EXPECT_EQ(reply, "5");
}

TEST_F(Connection, ReturnsTheCompletionCodeOfARead)
{
    for (const ViStatus status : {VI_SUCCESS, kTermChar, kMaxCount, kWarning}) {
        queueReply("5\n", status);
        std::string reply;
        EXPECT_EQ(io.read(reply), status);
        EXPECT_EQ(reply, "5");
    }
}

TEST_F(Connection, LeavesTheReplyWhenAReadTimesOut)
{
    std::string reply = "before";
    EXPECT_EQ(io.read(reply), kTimedOut);
    EXPECT_EQ(reply, "before");
}

TEST_F(Connection, LeavesTheReplyWhenAReadFailsBehindSomeBytes)
{
    queueReply("12.3", kTimedOut);
    std::string reply = "before";
    EXPECT_EQ(io.read(reply), kTimedOut);
    EXPECT_EQ(reply, "before");
}

TEST_F(Connection, LeavesTheReplyWhenNoByteArrives)
{
    for (const ViStatus status : {VI_SUCCESS, kTermChar}) {
        queueReply("", status);
        std::string reply = "before";
        EXPECT_EQ(io.read(reply), status);
        EXPECT_EQ(reply, "before");
    }
}

TEST_F(Connection, CutsAReplyAtTheSizeOfItsBuffer)
{
    queueReply(std::string(1023, 'a') + "\nrest\n");
    std::string reply;
    EXPECT_EQ(io.read(reply), kMaxCount);
    EXPECT_EQ(reply, std::string(1023, 'a'));
    EXPECT_GE(io.read(reply), 0);
    EXPECT_EQ(reply, "rest");
    EXPECT_THAT(calls(), ElementsAre("viRead(2, 1024)", "viRead(2, 1024)"));
}

TEST_F(Connection, ReadsAReplyOfExactlyItsBuffer)
{
    queueReply(std::string(1024, 'a'), VI_SUCCESS);
    std::string reply;
    EXPECT_EQ(io.read(reply), 0);
    EXPECT_EQ(reply, std::string(1024, 'a'));
}

TEST_F(Connection, BelievesNoCountBeyondItsBuffer)
{
    queueReply(std::string(1024, 'a'), VI_SUCCESS);
    kvxtest::claimBytes(1000000);
    std::string reply;
    EXPECT_EQ(io.read(reply), 0);
    EXPECT_EQ(reply, std::string(1024, 'a'));
}

TEST_F(Connection, KeepsItsBufferWhenTheSettingsHaveAnother)
{
    io.applySettings({.readBufferSize = 16, .writeBufferSize = 16});
    kvxtest::clearLog();
    EXPECT_EQ(readOf(std::string(100, 'a')), std::string(100, 'a'));
    EXPECT_THAT(calls(), ElementsAre("viRead(2, 1024)"));
}

// ---- open, close and the state between

TEST_F(Connection, IsOpenUntilItIsClosed)
{
    EXPECT_TRUE(io.isOpen());
    EXPECT_EQ(io.close(), 0);
    EXPECT_FALSE(io.isOpen());
    EXPECT_THAT(calls(), ElementsAre("viClose(1)"));
    EXPECT_EQ(kvxtest::openVisaSessions(), 0U);
}

TEST_F(Connection, ClosesOnce)
{
    EXPECT_EQ(io.close(), 0);
    kvxtest::clearLog();
    EXPECT_EQ(io.close(), 0);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Connection, ReturnsTheWarningThatItClosedWith)
{
    kvxtest::failCall("viClose", kWarning);
    EXPECT_EQ(io.close(), kWarning);
    EXPECT_FALSE(io.isOpen());
}

TEST_F(Connection, KeepsBothSessionsWhenItDoesNotClose)
{
    kvxtest::failNthCallOf("viClose", 1, kClosingFailed);
    EXPECT_EQ(io.close(), kClosingFailed);
    EXPECT_TRUE(io.isOpen());
    EXPECT_EQ(io.write("*CLS"), 0);
    EXPECT_EQ(io.close(), 0);
    EXPECT_FALSE(io.isOpen());
    EXPECT_EQ(kvxtest::openVisaSessions(), 0U);
}

TEST_F(Connection, CanBeOpenedAgain)
{
    EXPECT_EQ(io.close(), 0);
    EXPECT_EQ(io.open("GPIB0::6::INSTR"), 0);
    EXPECT_TRUE(io.isOpen());
    EXPECT_EQ(readOf("5\n"), "5");
}

TEST_F(Connection, LeavesItToVisaToRefuseWhatFollowsAClose)
{
    EXPECT_EQ(io.close(), 0);
    kvxtest::clearLog();
    queueReply("5\n");
    std::string reply = "before";
    EXPECT_EQ(io.write("*CLS"), kNoObject);
    EXPECT_EQ(io.read(reply), kNoObject);
    EXPECT_EQ(reply, "before");
    EXPECT_THAT(calls(), ElementsAre("viWrite(0, \"*CLS\\n\")", "viRead(0, 1024)"));
    EXPECT_EQ(io.setTimeout(5000), 0);
    EXPECT_THAT(calls("viSetAttribute"), IsEmpty());
}

TEST_F(Connection, WorksOnItsNewSessionsWhenItIsOpenedTwice)
{
    EXPECT_EQ(io.open("GPIB0::6::INSTR"), 0);
    EXPECT_THAT(calls(), ElementsAre("viOpenDefaultRM()", "viOpen(3, \"GPIB0::6::INSTR\", 0, 2000)",
                                     "viSetAttribute(4, VI_ATTR_TMO_VALUE, 2000)", "viSetBuf(4, VI_READ_BUF, 1024)",
                                     "viSetBuf(4, VI_WRITE_BUF, 1024)"));
    kvxtest::clearLog();
    EXPECT_EQ(io.write("*CLS"), 0);
    EXPECT_EQ(readOf("5\n"), "5");
    EXPECT_EQ(io.close(), 0);
    EXPECT_THAT(calls(), ElementsAre("viWrite(4, \"*CLS\\n\")", "viRead(4, 1024)", "viClose(3)"));
    // The sessions before are nobody's: open() closes nothing.
    EXPECT_EQ(kvxtest::openVisaSessions(), 2U);
}

TEST_F(Connection, IsNotOpenWhenItsSecondOpenFailsInEitherSession)
{
    for (const char* function : {"viOpen", "viOpenDefaultRM"}) {
        kvxtest::failNthCallOf(function, 1, kNotFound);
        EXPECT_EQ(io.open("GPIB0::6::INSTR"), kNotFound) << function;
        EXPECT_FALSE(io.isOpen()) << function;
        kvxtest::clearLog();
        EXPECT_EQ(io.close(), 0) << function;
        EXPECT_THAT(calls(), IsEmpty()) << function;
        io.releaseSessions();
        EXPECT_EQ(io.open("GPIB0::5::INSTR"), 0) << function;
    }
}

TEST_F(Connection, ReleasesItsSessionsWhateverVisaSays)
{
    kvxtest::failCall("viClose", kClosingFailed);
    io.releaseSessions();
    EXPECT_FALSE(io.isOpen());
    EXPECT_THAT(calls(), ElementsAre("viClose(1)"));
    io.releaseSessions();
    EXPECT_THAT(calls(), ElementsAre("viClose(1)"));
}

class NewConnection : public testing::Test
{
public:
    NewConnection() { kvxtest::reset(); }
    void TearDown() override { kvxtest::reset(); }

    VisaIO io;
};

TEST_F(NewConnection, IsNotOpenAndClosesWithoutCallingAnything)
{
    EXPECT_FALSE(io.isOpen());
    EXPECT_EQ(io.close(), 0);
    io.releaseSessions();
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(NewConnection, OpensTheInstrumentsSessionFromTheResourceManagers)
{
    EXPECT_EQ(io.open("GPIB0::5::INSTR"), 0);
    EXPECT_THAT(calls(), ElementsAre("viOpenDefaultRM()", "viOpen(1, \"GPIB0::5::INSTR\", 0, 2000)",
                                     "viSetAttribute(2, VI_ATTR_TMO_VALUE, 2000)", "viSetBuf(2, VI_READ_BUF, 1024)",
                                     "viSetBuf(2, VI_WRITE_BUF, 1024)"));
}

TEST_F(NewConnection, ReturnsTheStatusOfItsAttributesRatherThanThatOfItsSessions)
{
    kvxtest::failCall("viOpenDefaultRM", kWarning);
    kvxtest::failCall("viOpen", kWarning);
    EXPECT_EQ(io.open("GPIB0::5::INSTR"), 0);
    EXPECT_TRUE(io.isOpen());
}

TEST_F(NewConnection, LeavesTheResourceManagersSessionWhenTheInstrumentsDoesNotOpen)
{
    kvxtest::failCall("viOpen", kNotFound);
    EXPECT_EQ(io.open("GPIB0::5::INSTR"), kNotFound);
    EXPECT_FALSE(io.isOpen());
    EXPECT_EQ(kvxtest::openVisaSessions(), 1U);
    io.releaseSessions();
    EXPECT_EQ(kvxtest::openVisaSessions(), 0U);
}

TEST_F(NewConnection, DoesNotCloseWhenItIsDestroyed)
{
    {
        VisaIO other;
        EXPECT_EQ(other.open("GPIB0::5::INSTR"), 0);
        kvxtest::clearLog();
    }
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(kvxtest::openVisaSessions(), 2U);
}

// ---- Settings and time-out

TEST_F(Connection, AppliesTheTimeoutOfNewSettingsAtOnce)
{
    io.applySettings({.timeoutMs = 5000});
    EXPECT_EQ(io.timeout(), 5000);
    EXPECT_THAT(calls(), ElementsAre("viSetAttribute(2, VI_ATTR_TMO_VALUE, 5000)"));
}

TEST_F(Connection, TakesAllSettingsThoughTheTimeoutIsRefused)
{
    kvxtest::failCall("viSetAttribute", kTimedOut);
    io.applySettings({.termChar = ';', .timeoutMs = 5000, .appendTermChar = true, .stripTermChar = false});
    EXPECT_EQ(io.timeout(), 5000);
    EXPECT_EQ(io.write("a"), 0);
    EXPECT_THAT(kvxtest::written(), ElementsAre("a;"));
    EXPECT_EQ(readOf("5;"), "5;");
}

TEST_F(Connection, ReturnsTheStatusOfANewTimeout)
{
    EXPECT_EQ(io.setTimeout(5000), 0);
    EXPECT_THAT(calls(), ElementsAre("viSetAttribute(2, VI_ATTR_TMO_VALUE, 5000)"));
    for (const ViStatus status : {kTimedOut, kWarning}) {
        kvxtest::clearFailures();
        kvxtest::failCall("viSetAttribute", status);
        EXPECT_EQ(io.setTimeout(6000), status);
        EXPECT_EQ(io.timeout(), 6000);
    }
}

TEST_F(NewConnection, StoresItsSettingsForLater)
{
    io.applySettings({.openTimeoutMs = 0x1FFFFFFFF, .timeoutMs = 0x100000001});
    EXPECT_EQ(io.timeout(), 1);
    EXPECT_EQ(io.setTimeout(7), 0);
    EXPECT_EQ(io.timeout(), 7);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(io.open("GPIB0::5::INSTR"), 0);
    EXPECT_THAT(calls(), testing::Contains("viOpen(1, \"GPIB0::5::INSTR\", 0, 4294967295)"));
    EXPECT_THAT(calls(), testing::Contains("viSetAttribute(2, VI_ATTR_TMO_VALUE, 7)"));
}

} // namespace
