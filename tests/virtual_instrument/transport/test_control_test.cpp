#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

TEST(TestControl, InjectsErrors)
{
    ManualInstrument device;
    device.exchange("*CLS");
    EXPECT_EQ(device.control("inject -350 \"a text\""), "ok\n");
    EXPECT_EQ(device.control("inject 17 \"\""), "ok\n");
    EXPECT_EQ(device.exchange("*ESR?"), "8\n");
    EXPECT_EQ(device.error(), "-350,\"a text\"\n");
    EXPECT_EQ(device.error(), "17,\"\"\n");
}

TEST(TestControl, AnswersTheNextQueriesVerbatimWithoutExecutingThem)
{
    ManualInstrument device;
    EXPECT_EQ(device.control("answer one\\r"), "ok\n");
    EXPECT_EQ(device.control("answer-bytes \\x00\\\\\\n\\n"), "ok\n");
    EXPECT_EQ(device.control("answer"), "ok\n");
    EXPECT_EQ(device.exchange("SOUR1:VOLT 5"), "");
    EXPECT_EQ(device.exchange("*ESR?"), "one\r\n");
    EXPECT_EQ(device.exchange(":LIST:WHATEVER?"), std::string("\0\\\n\n", 4));
    EXPECT_EQ(device.exchange("*IDN?"), "\n");
    EXPECT_EQ(device.exchange("*ESR?"), "128\n");
    EXPECT_EQ(device.error(), kNoError);
}

TEST(TestControl, SwallowsReplies)
{
    ManualInstrument device;
    EXPECT_EQ(device.control("swallow 2"), "ok\n");
    EXPECT_EQ(device.exchange("*ESR?"), "");
    EXPECT_EQ(device.exchange("*CLS"), "");
    EXPECT_EQ(device.exchange("*ESR?"), "");
    EXPECT_EQ(device.exchange("*ESR?"), "0\n");
}

TEST(TestControl, DelaysReplies)
{
    ManualInstrument device;
    EXPECT_EQ(device.control("delay 250"), "ok\n");
    EXPECT_EQ(device.instrument().receive("*OPC?")->delay, std::chrono::milliseconds(250));
    EXPECT_EQ(device.control("delay 0"), "ok\n");
    EXPECT_EQ(device.instrument().receive("*OPC?")->delay, std::chrono::milliseconds(0));
}

TEST(TestControl, TellsWhoOperatesTheInstrument)
{
    using kvxvirtual::PanelRequest;
    ManualInstrument device;
    auto& panel = device.instrument().frontPanel();
    EXPECT_EQ(device.control("panel"), "ok local\n");
    panel.request(PanelRequest::EnableRemoteGoToRemoteAndLockOut);
    EXPECT_EQ(device.control("panel"), "ok remote locked-out\n");
    panel.request(PanelRequest::DisableRemote);
    EXPECT_EQ(device.control("panel"), "ok local disabled\n");
    EXPECT_EQ(device.control("panel now"), "error usage: panel\n");
}

TEST(TestControl, ForgetsAllFaults)
{
    ManualInstrument device;
    device.control("answer x");
    device.control("swallow 5");
    device.control("delay 5");
    EXPECT_EQ(device.control("clear-faults"), "ok\n");
    const auto response = device.instrument().receive("*OPC?");
    ASSERT_TRUE(response);
    EXPECT_EQ(response->bytes, "1\n");
    EXPECT_EQ(response->delay, std::chrono::milliseconds(0));
}

TEST(TestControl, LogsExactBytes)
{
    ManualInstrument device;
    EXPECT_EQ(device.control("log"), "ok 0 0\n");
    device.exchange("*IDN?\r");
    device.exchange("");
    device.exchange("A\\\x01\xFF");
    EXPECT_EQ(device.control("log"), "ok 3 0\n*IDN?\\r\n\nA\\\\\\x01\\xFF\n");
    EXPECT_EQ(device.control("clear-log"), "ok\n");
    EXPECT_EQ(device.control("log"), "ok 0 0\n");
}

TEST(TestControl, TheLogIsEmptyWhereNoneIsKept)
{
    ManualInstrument device({.keepsLog = false});
    EXPECT_EQ(device.exchange("*OPC?"), "1\n");
    EXPECT_EQ(device.control("log"), "ok 0 0\n");
}

TEST(TestControl, SaysHowManyLinesTheLogHasLost)
{
    kvxvirtual::ReceivedLog log;
    const std::string line(4096, 'x');
    const std::size_t kept = kvxvirtual::ReceivedLog::kMostBytes / (line.size() + sizeof(std::string));
    for (std::size_t i = 0; i < kept + 3; ++i)
        log.add(line);
    EXPECT_EQ(log.lines().size(), kept);
    EXPECT_EQ(log.lost(), 3U);
}

TEST(TestControl, SetsEventStatusBits)
{
    ManualInstrument device;
    device.exchange("*CLS;*OPC");
    EXPECT_EQ(device.control("esr 36"), "ok\n");
    EXPECT_EQ(device.exchange("*ESR?"), "37\n");
}

TEST(TestControl, CutsClients)
{
    ManualInstrument device;
    EXPECT_EQ(device.control("disconnect\r"), "ok\n");
    EXPECT_EQ(device.disconnects(), 1);
}

TEST(TestControl, SaysWhatItExpected)
{
    ManualInstrument device;
    EXPECT_EQ(device.control(""), "error unknown command; help lists them\n");
    EXPECT_EQ(device.control("LOAD CH1 1"), "error unknown command; help lists them\n");
    for (const auto* const line : {"load", "load CH7 1", "load CH1", "load CH1 -1", "load CH1 nan", "load CH1 1 2"})
        EXPECT_EQ(device.control(line), "error usage: load <channel> <ohms>|open\n") << line;
    for (const auto* const line : {"inject", "inject 0 \"x\"", "inject -500 \"x\"", "inject -100 x", "inject -100 \""})
        EXPECT_EQ(device.control(line), "error usage: inject <code> \"<text>\"\n") << line;
    EXPECT_EQ(device.control("answer \\q"), "error usage: answer <escaped text>\n");
    EXPECT_EQ(device.control("swallow -1"), "error usage: swallow <count>\n");
    EXPECT_EQ(device.control("delay 86400001"), "error usage: delay <milliseconds>\n");
    EXPECT_EQ(device.control("advance 1.5"), "error usage: advance <milliseconds>\n");
    EXPECT_EQ(device.control("esr 256"), "error usage: esr <bits>\n");
    EXPECT_EQ(device.control("log 1"), "error usage: log\n");
}

TEST(TestControl, ListsItsCommandsOnOneLine)
{
    ManualInstrument device;
    const auto help = device.control("help");
    EXPECT_TRUE(help.starts_with("ok load <channel> <ohms>|open; inject"));
    EXPECT_EQ(help.find('\n'), help.size() - 1);
}

} // namespace
