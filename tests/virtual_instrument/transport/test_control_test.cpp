#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

TEST(TestControl, InjectsErrors)
{
    ManualInstrument device;
    device.exchange("*CLS");
    EXPECT_EQ("ok\n", device.control("inject -350 \"a text\""));
    EXPECT_EQ("ok\n", device.control("inject 17 \"\""));
    EXPECT_EQ("8\n", device.exchange("*ESR?"));
    EXPECT_EQ("-350,\"a text\"\n", device.error());
    EXPECT_EQ("17,\"\"\n", device.error());
}

TEST(TestControl, AnswersTheNextQueriesVerbatimWithoutExecutingThem)
{
    ManualInstrument device;
    EXPECT_EQ("ok\n", device.control("answer one\\r"));
    EXPECT_EQ("ok\n", device.control("answer-bytes \\x00\\\\\\n\\n"));
    EXPECT_EQ("ok\n", device.control("answer"));
    EXPECT_EQ("", device.exchange("SOUR1:VOLT 5"));
    EXPECT_EQ("one\r\n", device.exchange("*ESR?"));
    EXPECT_EQ(std::string("\0\\\n\n", 4), device.exchange(":LIST:WHATEVER?"));
    EXPECT_EQ("\n", device.exchange("*IDN?"));
    EXPECT_EQ("128\n", device.exchange("*ESR?"));
    EXPECT_EQ(kNoError, device.error());
}

TEST(TestControl, SwallowsReplies)
{
    ManualInstrument device;
    EXPECT_EQ("ok\n", device.control("swallow 2"));
    EXPECT_EQ("", device.exchange("*ESR?"));
    EXPECT_EQ("", device.exchange("*CLS"));
    EXPECT_EQ("", device.exchange("*ESR?"));
    EXPECT_EQ("0\n", device.exchange("*ESR?"));
}

TEST(TestControl, DelaysReplies)
{
    ManualInstrument device;
    EXPECT_EQ("ok\n", device.control("delay 250"));
    EXPECT_EQ(std::chrono::milliseconds(250), device.instrument().receive("*OPC?")->delay);
    EXPECT_EQ("ok\n", device.control("delay 0"));
    EXPECT_EQ(std::chrono::milliseconds(0), device.instrument().receive("*OPC?")->delay);
}

TEST(TestControl, ForgetsAllFaults)
{
    ManualInstrument device;
    device.control("answer x");
    device.control("swallow 5");
    device.control("delay 5");
    EXPECT_EQ("ok\n", device.control("clear-faults"));
    const auto response = device.instrument().receive("*OPC?");
    ASSERT_TRUE(response);
    EXPECT_EQ("1\n", response->bytes);
    EXPECT_EQ(std::chrono::milliseconds(0), response->delay);
}

TEST(TestControl, LogsExactBytes)
{
    ManualInstrument device;
    EXPECT_EQ("ok 0 0\n", device.control("log"));
    device.exchange("*IDN?\r");
    device.exchange("");
    device.exchange("A\\\x01\xFF");
    EXPECT_EQ("ok 3 0\n*IDN?\\r\n\nA\\\\\\x01\\xFF\n", device.control("log"));
    EXPECT_EQ("ok\n", device.control("clear-log"));
    EXPECT_EQ("ok 0 0\n", device.control("log"));
}

TEST(TestControl, SaysHowManyLinesTheLogHasLost)
{
    kvxvirtual::ReceivedLog log;
    const std::string line(4096, 'x');
    const std::size_t kept = kvxvirtual::ReceivedLog::kMostBytes / (line.size() + sizeof(std::string));
    for (std::size_t i = 0; i < kept + 3; ++i)
        log.add(line);
    EXPECT_EQ(kept, log.lines().size());
    EXPECT_EQ(3U, log.lost());
}

TEST(TestControl, SetsEventStatusBits)
{
    ManualInstrument device;
    device.exchange("*CLS;*OPC");
    EXPECT_EQ("ok\n", device.control("esr 36"));
    EXPECT_EQ("37\n", device.exchange("*ESR?"));
}

TEST(TestControl, CutsClients)
{
    ManualInstrument device;
    EXPECT_EQ("ok\n", device.control("disconnect\r"));
    EXPECT_EQ(1, device.disconnects());
}

TEST(TestControl, SaysWhatItExpected)
{
    ManualInstrument device;
    EXPECT_EQ("error unknown command; help lists them\n", device.control(""));
    EXPECT_EQ("error unknown command; help lists them\n", device.control("LOAD CH1 1"));
    for (const auto* const line : {"load", "load CH7 1", "load CH1", "load CH1 -1", "load CH1 nan", "load CH1 1 2"})
        EXPECT_EQ("error usage: load <channel> <ohms>|open\n", device.control(line)) << line;
    for (const auto* const line : {"inject", "inject 0 \"x\"", "inject -500 \"x\"", "inject -100 x", "inject -100 \""})
        EXPECT_EQ("error usage: inject <code> \"<text>\"\n", device.control(line)) << line;
    EXPECT_EQ("error usage: answer <escaped text>\n", device.control("answer \\q"));
    EXPECT_EQ("error usage: swallow <count>\n", device.control("swallow -1"));
    EXPECT_EQ("error usage: delay <milliseconds>\n", device.control("delay 86400001"));
    EXPECT_EQ("error usage: advance <milliseconds>\n", device.control("advance 1.5"));
    EXPECT_EQ("error usage: esr <bits>\n", device.control("esr 256"));
    EXPECT_EQ("error usage: log\n", device.control("log 1"));
}

TEST(TestControl, ListsItsCommandsOnOneLine)
{
    ManualInstrument device;
    const auto help = device.control("help");
    EXPECT_TRUE(help.starts_with("ok load <channel> <ohms>|open; inject"));
    EXPECT_EQ(help.size() - 1, help.find('\n'));
}

} // namespace
