#include "tests/support/driver/api_fixture.h"

#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

// The record of a session's messages.

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLoggedChannel = "OutputChannel3";

class MessageRecords : public ApiTest
{
public:
    /// The oldest record, which is gone then.
    std::string next() const
    {
        std::array<ViChar, 1024> record{};
        record.fill('#');
        EXPECT_EQ(KVX2800T_GetNextMessageRecord(vi, static_cast<ViInt32>(record.size()), record.data()), VI_SUCCESS);
        return record.data();
    }

    /// All records, which are gone then.
    std::vector<std::string> all() const
    {
        std::vector<std::string> records;
        for (std::string record = next(); !record.empty(); record = next())
            records.push_back(record);
        return records;
    }

    ViStatus write(const std::string& message) const
    {
        std::vector<ViByte> bytes(message.begin(), message.end());
        ViInt64 count = 0;
        return KVX2800T_viWrite(vi, bytes.data(), static_cast<ViInt64>(bytes.size()), &count);
    }

    ViStatus read() const
    {
        std::array<ViByte, 8> buffer{};
        ViInt64 count = 0;
        return KVX2800T_viRead(vi, static_cast<ViInt64>(buffer.size()), buffer.data(), &count);
    }
};

TEST_F(MessageRecords, BeginWithTheOpeningOfTheSession)
{
    open("QueryInstrStatus=1,DriverSetup=MessageLog:20");
    EXPECT_THAT(all(), ElementsAre("> *IDN?", "< Tessaro Instruments,KVX2833T,SN1,V2.34", "> *CLS", "> *ESR?", "< 0"));
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(MessageRecords, AreWhatFunctionsSendAndReceive)
{
    answer(":SOUR3:VOLT?", "4.5");
    open("DriverSetup=MessageLog:20");
    all();
    ViReal64 volts = 0.0;
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kLoggedChannel, 4.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, kLoggedChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 4.5);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT 4.500000\n", ":SOUR3:VOLT?\n"));
    EXPECT_THAT(all(), ElementsAre("> :SOUR3:VOLT 4.500000", "> :SOUR3:VOLT?", "< 4.5"));
}

TEST_F(MessageRecords, AreThoseOfTheProgramsOwnMessagesToo)
{
    open("DriverSetup=MessageLog:20");
    all();
    queueReply("0123456789\tx\n");
    EXPECT_EQ(write("*IDN?;\\\xB5\n"), VI_SUCCESS);
    EXPECT_EQ(read(), KVX2800T_WARN_ARRAY_TRUNCATED);
    EXPECT_THAT(all(), ElementsAre("> *IDN?;\\x5C\\xB5", "< 01234567", "< 89\\x09x"));
}

TEST_F(MessageRecords, TellWhatFailed)
{
    open("DriverSetup=MessageLog:20");
    all();
    ViReal64 volts = 0.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, kLoggedChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), kIoError);
    failCall("viWrite", code(0xBFFF00A6));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kLoggedChannel, 1.0), kIoError);
    EXPECT_THAT(all(),
                ElementsAre("> :SOUR3:VOLT?", "! receiving failed: 0xBFFF0015 VI_ERROR_TMO, the time-out is over",
                            "> :SOUR3:VOLT 1.000000",
                            "! sending failed: 0xBFFF00A6 VI_ERROR_CONN_LOST, the connection is lost"));
}

TEST_F(MessageRecords, AreTheLastOnesAndTellHowManyWereLost)
{
    open("DriverSetup=MessageLog:3");
    for (const char* const message : {"A", "B", "C", "D"})
        EXPECT_EQ(write(message), VI_SUCCESS);
    EXPECT_THAT(all(), ElementsAre("! 3 records have been lost", "> B", "> C", "> D"));
    EXPECT_EQ(write("E"), VI_SUCCESS);
    EXPECT_THAT(all(), ElementsAre("> E"));
}

TEST_F(MessageRecords, OfASessionWithoutTheKeyAreNone)
{
    for (const char* const options :
         {"", "DriverSetup=Profile:Bench", "Simulate=1", "Simulate=1,DriverSetup=Profile:Bench"})
    {
        startOver();
        ASSERT_EQ(init(options, &vi), VI_SUCCESS) << options;
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kLoggedChannel, 1.0), VI_SUCCESS);
        EXPECT_THAT(all(), IsEmpty()) << options;
        KVX2800T_close(vi);
        vi = VI_NULL;
    }
}

TEST_F(MessageRecords, DoNotChangeWhatASessionCalls)
{
    const auto live = [this](const std::string& options) {
        startOver();
        answer(":SOUR3:VOLT?", "4.5");
        EXPECT_EQ(init(options, &vi), VI_SUCCESS);
        ViReal64 volts = 0.0;
        KVX2800T_ConfigureVoltageLevel(vi, kLoggedChannel, 4.5);
        KVX2800T_GetAttributeViReal64(vi, kLoggedChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts);
        KVX2800T_GetAttributeViReal64(vi, kLoggedChannel, KVX2800T_ATTR_CURRENT_LIMIT, &volts);
        KVX2800T_MeasureOutput(vi, kLoggedChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts);
        KVX2800T_close(vi);
        vi = VI_NULL;
        return calls("vi");
    };
    for (const std::string keys : {"", ",Profile:Bench"})
        EXPECT_EQ(live("DriverSetup=MessageLog:2" + keys), live("DriverSetup=Model:KVX2833T" + keys)) << keys;
}

TEST_F(MessageRecords, OfASimulationThatRemembersAreWhatItIsToldAndAnswers)
{
    open("Simulate=1,DriverSetup=StatefulSimulation:1,MessageLog:20");
    const std::vector<std::string> opening = all();
    ASSERT_EQ(opening.size(), 2U);
    EXPECT_EQ(opening[0], "> *IDN?");
    EXPECT_THAT(opening[1], testing::StartsWith("< Tessaro Instruments,KVX2833T,"));
    ViReal64 volts = 0.0;
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kLoggedChannel, 4.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, kLoggedChannel, KVX2800T_ATTR_VOLTAGE_LEVEL, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 4.5);
    const std::vector<std::string> records = all();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0], "> :SOUR3:VOLT 4.500000");
    EXPECT_EQ(records[1], "> :SOUR3:VOLT?");
    EXPECT_THAT(records[2], testing::StartsWith("< 4.5"));
    EXPECT_EQ(read(), code(0xBFFF0015));
    EXPECT_THAT(all(), ElementsAre("! receiving failed: 0xBFFF0015 VI_ERROR_TMO, the time-out is over"));
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(MessageRecords, OfASimulationThatDoesNotRememberAreNone)
{
    open("Simulate=1,DriverSetup=MessageLog:20");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kLoggedChannel, 4.5), VI_SUCCESS);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(MessageRecords, GoOnWhereARealSessionBeginsToSimulate)
{
    open("DriverSetup=StatefulSimulation:1,MessageLog:20");
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kLoggedChannel, 7.5), VI_SUCCESS);
    const std::vector<std::string> records = all();
    EXPECT_EQ(records.front(), "> *IDN?");
    EXPECT_EQ(records.back(), "> :SOUR3:VOLT 7.500000");
}

TEST_F(MessageRecords, FollowTheRulesForBuffers)
{
    open("DriverSetup=MessageLog:20");
    all();
    EXPECT_EQ(write("ABCDE"), VI_SUCCESS);
    EXPECT_EQ(write("XYZ"), VI_SUCCESS);
    std::array<ViChar, 16> record{};
    const auto get = [&](ViInt32 size) {
        record.fill('#');
        return KVX2800T_GetNextMessageRecord(vi, size, record.data());
    };
    EXPECT_EQ(get(0), 8);
    EXPECT_EQ(record.front(), '#');
    EXPECT_EQ(KVX2800T_GetNextMessageRecord(vi, 0, nullptr), 8);
    EXPECT_EQ(get(8), VI_SUCCESS);
    EXPECT_STREQ(record.data(), "> ABCDE");
    EXPECT_EQ(record[8], '#');
    EXPECT_EQ(get(4), 6);
    EXPECT_STREQ(record.data(), "> X");
    EXPECT_EQ(record[4], '#');
    EXPECT_EQ(get(1), VI_SUCCESS);
    EXPECT_STREQ(record.data(), "");
    EXPECT_EQ(get(0), 1);
    EXPECT_EQ(write("A"), VI_SUCCESS);
    EXPECT_EQ(get(1), 4);
    EXPECT_STREQ(record.data(), "");
    EXPECT_EQ(write("ABCDE"), VI_SUCCESS);
    EXPECT_EQ(get(-1), VI_SUCCESS);
    EXPECT_STREQ(record.data(), "> ABCDE");
    EXPECT_EQ(record[8], '#');
}

TEST_F(MessageRecords, FitIntoOneKibibyte)
{
    open("DriverSetup=MessageLog:1");
    EXPECT_EQ(write(std::string(5000, 'x')), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetNextMessageRecord(vi, 0, nullptr), 27);
    EXPECT_EQ(next(), "! 2 records have been lost");
    EXPECT_EQ(KVX2800T_GetNextMessageRecord(vi, 0, nullptr), 1024);
    EXPECT_EQ(next(), "> " + std::string(1018, 'x') + "...");
}

TEST_F(MessageRecords, NeedABufferAndASession)
{
    for (const char* const options : {"", "DriverSetup=MessageLog:2"}) {
        open(options);
        for (const ViInt32 size : {1, 256, -1}) {
            forget();
            EXPECT_EQ(KVX2800T_GetNextMessageRecord(vi, size, nullptr), kNullPointer);
            expectRecordedOnce(kNullPointer,
                               "Null pointer passed for function 'KVX2800T_GetNextMessageRecord', parameter 'Record'.");
        }
        KVX2800T_close(vi);
        EXPECT_EQ(KVX2800T_GetNextMessageRecord(vi, 0, nullptr), kInvalidSession);
        vi = VI_NULL;
        startOver();
    }
    EXPECT_EQ(KVX2800T_GetNextMessageRecord(kUnknownSession, 0, nullptr), kInvalidSession);
}

TEST_F(MessageRecords, ReadingThemIsNoMessageAndLeavesNoErrorBehind)
{
    open("QueryInstrStatus=1,DriverSetup=MessageLog:20");
    all();
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(MessageRecords, AreToldToEachThreadOnce)
{
    constexpr int kThreads = 4;
    constexpr int kMessages = 50;
    open("DriverSetup=MessageLog:10000");
    all();
    std::vector<std::vector<std::string>> got(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (std::vector<std::string>& records : got)
        threads.emplace_back([this, &records] {
            for (int i = 0; i < kMessages; ++i) {
                EXPECT_EQ(write("*WAI"), VI_SUCCESS);
                records.push_back(next());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& records : got)
        EXPECT_EQ(records, std::vector<std::string>(kMessages, "> *WAI"));
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(MessageRecords, AreOfOneToTenThousand)
{
    for (const char* const value : {"1", "10000"}) {
        open(std::string("DriverSetup=messagelog: ") + value);
        KVX2800T_close(vi);
        vi = VI_NULL;
        startOver();
    }
    for (const char* const value : {"0", "10001", "-1", "1.5", "Infinite", "true", "99999999999"}) {
        startOver();
        EXPECT_EQ(init(std::string("DriverSetup=MessageLog:") + value, &vi), code(0xBFFA004C)) << value;
        EXPECT_EQ(vi, ViSession{VI_NULL});
    }
}

} // namespace
