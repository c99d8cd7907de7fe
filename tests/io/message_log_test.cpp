#include "io/message_log.h"

#include "io/logged_connection.h"
#include "tests/support/driver/message_records.h"
#include "tests/support/driver/visa_statuses.h"
#include "tests/support/fakes/platform_fakes.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using InstLink::ConnectionHolder;
using InstLink::IoSettings;
using InstLink::MessageLog;
using kvxtest::kTermChar;
using kvxtest::kTimedOut;
using kvxtest::recordsOf;
using testing::ElementsAre;

TEST(MessageLog, IsEmptyAtFirstAndRemovingFromItChangesNothing)
{
    MessageLog log(3);
    EXPECT_EQ(log.oldest(), "");
    log.removeOldest();
    EXPECT_EQ(log.oldest(), "");
}

TEST(MessageLog, GivesTheOldestRecordUntilItIsRemoved)
{
    MessageLog log(3);
    log.sent("*IDN?");
    log.received("Tessaro Instruments,KVX2833T,SN1,V1.00");
    EXPECT_EQ(log.oldest(), "> *IDN?");
    EXPECT_EQ(log.oldest(), "> *IDN?");
    log.removeOldest();
    EXPECT_EQ(log.oldest(), "< Tessaro Instruments,KVX2833T,SN1,V1.00");
    log.removeOldest();
    EXPECT_EQ(log.oldest(), "");
}

TEST(MessageLog, MarksWhatFailedAndHow)
{
    MessageLog log(4);
    log.sendingFailed(kTimedOut);
    log.receivingFailed(kvxtest::code(0xBFFF00A6U));
    log.receivingFailed(kvxtest::code(0x80000001U));
    EXPECT_THAT(recordsOf(log), ElementsAre("! sending failed: 0xBFFF0015 VI_ERROR_TMO, the time-out is over",
                                            "! receiving failed: 0xBFFF00A6 VI_ERROR_CONN_LOST, the connection is lost",
                                            "! receiving failed: 0x80000001"));
}

TEST(MessageLog, BytesThatDoNotPrintAreTheirNumbers)
{
    MessageLog log(4);
    log.sent(std::string("a\0\n\x1F b~\x7F\x80\xFF\\", 11));
    log.received("");
    EXPECT_THAT(recordsOf(log), ElementsAre("> a\\x00\\x0A\\x1F b~\\x7F\\x80\\xFF\\x5C", "< "));
}

TEST(MessageLog, RecordsAreOfOneLengthAtMostAndEndInThreePointsWhenTheyWereCut)
{
    MessageLog log(8);
    log.sent(std::string(1018, 'x'));
    log.sent(std::string(1019, 'x'));
    log.sent(std::string(100000, 'y'));
    log.sent(std::string(1017, 'x') + '\n');
    log.sent(std::string(1014, 'x') + '\n');
    EXPECT_THAT(recordsOf(log),
                ElementsAre("> " + std::string(1018, 'x'), "> " + std::string(1018, 'x') + "...",
                            "> " + std::string(1018, 'y') + "...", "> " + std::string(1017, 'x') + "...",
                            "> " + std::string(1014, 'x') + "\\x0A"));
    log.sent(std::string(100000, '\n'));
    EXPECT_LE(log.oldest().size(), MessageLog::kLongestRecord);
    EXPECT_EQ(log.oldest().substr(1014), "\\x0A...");
}

TEST(MessageLog, TellsHowManyOfTheOldestRecordsAreLost)
{
    for (const std::size_t most : {std::size_t{1}, std::size_t{2}, std::size_t{5}}) {
        MessageLog log(most);
        std::vector<std::string> expected = {"! 7 records have been lost"};
        for (std::size_t i = 0; i < most + 7; ++i)
            log.sent(std::to_string(i));
        for (std::size_t i = 7; i < most + 7; ++i)
            expected.push_back("> " + std::to_string(i));
        EXPECT_EQ(recordsOf(log), expected) << most;
    }
}

TEST(MessageLog, CountsOnFromTheRecordThatToldOfALoss)
{
    MessageLog log(2);
    for (const char* const text : {"a", "b", "c"})
        log.sent(text);
    EXPECT_EQ(log.oldest(), "! 1 record has been lost");
    log.removeOldest();
    EXPECT_EQ(log.oldest(), "> b");
    log.sent("d");
    log.sent("e");
    EXPECT_THAT(recordsOf(log), ElementsAre("! 2 records have been lost", "> d", "> e"));
}

/// A connection of each kind of VISA's with a log.
class LoggedConnections : public testing::TestWithParam<const char*>
{
public:
    LoggedConnections()
    {
        kvxtest::reset();
        holder.settings.messageLog = std::make_shared<MessageLog>(10);
        EXPECT_EQ(InstLink::connect(holder, GetParam()), VI_SUCCESS);
        kvxtest::clearLog();
    }

    void TearDown() override { kvxtest::reset(); }

    std::vector<std::string> records() const { return recordsOf(*holder.settings.messageLog); }

    ConnectionHolder holder;
};

INSTANTIATE_TEST_SUITE_P(, LoggedConnections,
                         testing::Values("ASRL1::INSTR", "USB0::1::2::3", "GPIB0::5::INSTR", "TCPIP0::h::5025::SOCKET",
                                         "TCPIP0::h::inst0::INSTR", "PXI0::5::INSTR"));

TEST_P(LoggedConnections, WriteDownWhatIsSentAndReceivedWithoutItsEnd)
{
    kvxtest::answer(":SOURce1:VOLTage?", "5.0");
    std::string reply;
    EXPECT_EQ(holder.connection->write(":SOURce1:VOLTage?"), VI_SUCCESS);
    EXPECT_EQ(holder.connection->write(":OUTPut OFF\n\n"), VI_SUCCESS);
    EXPECT_EQ(holder.connection->write(":SOURce1:VOLTage?\n"), VI_SUCCESS);
    EXPECT_GE(holder.connection->read(reply), VI_SUCCESS);
    EXPECT_EQ(reply, "5.0");
    EXPECT_THAT(records(), ElementsAre("> :SOURce1:VOLTage?", "> :OUTPut OFF\\x0A", "> :SOURce1:VOLTage?", "< 5.0"));
    EXPECT_THAT(kvxtest::written(), ElementsAre(":SOURce1:VOLTage?\n", ":OUTPut OFF\n\n", ":SOURce1:VOLTage?\n"));
}

TEST_P(LoggedConnections, TellWhatFailedBehindWhatWasTried)
{
    std::string reply = "before";
    kvxtest::failNthCallOf("viWrite", 1, kvxtest::code(0xBFFF00A6U));
    EXPECT_EQ(holder.connection->write("*RST"), kvxtest::code(0xBFFF00A6U));
    EXPECT_EQ(holder.connection->read(reply), kTimedOut);
    kvxtest::queueReply("5.", kTimedOut);
    EXPECT_EQ(holder.connection->read(reply), kTimedOut);
    EXPECT_EQ(reply, "before");
    EXPECT_THAT(records(),
                ElementsAre("> *RST", "! sending failed: 0xBFFF00A6 VI_ERROR_CONN_LOST, the connection is lost",
                            "! receiving failed: 0xBFFF0015 VI_ERROR_TMO, the time-out is over", "< 5.",
                            "! receiving failed: 0xBFFF0015 VI_ERROR_TMO, the time-out is over"));
}

TEST_P(LoggedConnections, HaveARecordForEachPieceThatIsReadAlsoOfARestThatIsDropped)
{
    kvxtest::queueReply("0123456789abc\n", kTermChar);
    std::vector<ViByte> buffer(8);
    std::size_t count = 0;
    EXPECT_EQ(holder.connection->readMessage(buffer, count), VI_SUCCESS_MAX_CNT);
    EXPECT_EQ(count, 8U);
    kvxtest::queueReply("\n", kTermChar);
    EXPECT_EQ(holder.connection->readMessage(buffer, count), kTermChar);
    EXPECT_THAT(records(), ElementsAre("< 01234567", "< 89abc", "< "));
}

TEST_P(LoggedConnections, MakeTheCallsOfAConnectionWithoutALog)
{
    const auto live = [](ConnectionHolder& of) {
        kvxtest::reset();
        kvxtest::answer("*IDN?", "me");
        EXPECT_EQ(InstLink::connect(of, GetParam()), VI_SUCCESS);
        std::string reply;
        of.connection->write("*IDN?");
        of.connection->read(reply);
        of.connection->read(reply);
        of.connection->reopen();
        of.connection->setTimeout(77);
        of.connection->close();
        return kvxtest::calls();
    };
    ConnectionHolder without;
    const std::vector<std::string> expected = live(without);
    EXPECT_GT(expected.size(), 10U);
    ConnectionHolder with;
    with.settings = holder.settings;
    EXPECT_EQ(live(with), expected);
    EXPECT_THAT(records(), ElementsAre("> *IDN?", "< me", "< me"));
}

TEST_P(LoggedConnections, AreMadeOnlyWhereThereIsALog)
{
    const auto isLogged = [](const IoSettings& settings) {
        const auto connection = InstLink::makeConnection(GetParam(), settings);
        const InstLink::VisaIO& object = *connection;
        return std::string(typeid(object).name()).find("LoggedConnection") != std::string::npos;
    };
    EXPECT_FALSE(isLogged({}));
    EXPECT_TRUE(isLogged(holder.settings));
}

TEST(LoggedSerialLine, HasTheParametersOfTheSettings)
{
    kvxtest::reset();
    ConnectionHolder holder;
    holder.settings = {.baudRate = 19200, .dataBits = 7, .messageLog = std::make_shared<MessageLog>(1)};
    EXPECT_EQ(InstLink::connect(holder, "ASRL1::INSTR"), VI_SUCCESS);
    EXPECT_THAT(kvxtest::calls(), testing::Contains("viSetAttribute(2, VI_ATTR_ASRL_BAUD, 19200)"));
    EXPECT_THAT(kvxtest::calls(), testing::Contains("viSetAttribute(2, VI_ATTR_ASRL_DATA_BITS, 7)"));
    kvxtest::reset();
}

TEST(LoggedTermination, IsTheCharacterOfTheSettings)
{
    kvxtest::reset();
    ConnectionHolder holder;
    holder.settings = {.termChar = ';', .messageLog = std::make_shared<MessageLog>(2)};
    EXPECT_EQ(InstLink::connect(holder, "GPIB0::5::INSTR"), VI_SUCCESS);
    EXPECT_EQ(holder.connection->write("A;B"), VI_SUCCESS);
    EXPECT_EQ(holder.connection->write("A\n"), VI_SUCCESS);
    EXPECT_THAT(recordsOf(*holder.settings.messageLog), ElementsAre("> A;B", "> A\\x0A"));
    kvxtest::reset();
}

} // namespace
