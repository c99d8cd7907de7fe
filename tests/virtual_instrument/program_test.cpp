#include "virtual_instrument_process.h"

#include <asio.hpp>
#include <gmock/gmock.h>
#include <random>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

const std::string kIdentity = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00";

TEST(Program, AnswersOnItsRawSocket)
{
    VirtualInstrumentProcess program({"--load", "CH1=10"});
    EXPECT_EQ("TCPIP0::127.0.0.1::" + std::to_string(program.port()) + "::SOCKET", program.resource());
    LineClient client(program.port());
    EXPECT_EQ(kIdentity, client.query("*IDN?"));
    client.send(":SOUR1:VOLT 5.000000\n:SOUR1:CURR 1.000000\r\n:OUTP:STAT CH1,ON\n");
    EXPECT_EQ("5.000,0.500,2.500", client.query(":MEAS:ALL? CH1"));
}

TEST(Program, ClientsShareOneInstrumentAndHaveInputBuffersOfTheirOwn)
{
    VirtualInstrumentProcess program;
    LineClient one(program.port());
    LineClient other(program.port());
    one.send("SOUR3:VO");
    EXPECT_EQ("0.000000", other.query("SOUR3:VOLT?"));
    one.send("LT 7\n*OPC?\n");
    EXPECT_EQ("1", one.readLine());
    EXPECT_EQ("7.000000", other.query("SOUR3:VOLT?"));
}

TEST(Program, RepliesStayInTheOrderOfPipelinedQueries)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    std::string messages;
    for (int i = 0; i < 2000; ++i)
        messages += "*OPC?\n*TST?\n";
    client.send(messages);
    for (int i = 0; i < 2000; ++i) {
        ASSERT_EQ("1", client.readLine());
        ASSERT_EQ("0", client.readLine());
    }
}

TEST(Program, DiscardsAnInputOverrunUpToItsLineFeed)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    client.send(std::string(10'000, 'x') + "\n*IDN?\n");
    EXPECT_EQ(kIdentity, client.readLine());
    EXPECT_EQ("-363,\"Input buffer overrun\"", client.query("SYST:ERR?"));
    EXPECT_EQ("0,\"No error\"", client.query("SYST:ERR?"));
}

TEST(Program, AHundredClientsAtOnceAreAllServed)
{
    VirtualInstrumentProcess program;
    std::vector<LineClient> clients;
    clients.reserve(100);
    for (int i = 0; i < 100; ++i)
        clients.emplace_back(program.port());
    for (auto& client : clients)
        client.send("*IDN?\n");
    for (auto& client : clients)
        EXPECT_EQ(kIdentity, client.readLine());
    for (auto& client : clients)
        EXPECT_EQ("1", client.query("*OPC?"));
}

TEST(Program, GarbageOfOneClientDisturbsNoOther)
{
    VirtualInstrumentProcess program;
    LineClient good(program.port());
    std::mt19937 engine{7};
    for (int round = 0; round < 20; ++round) {
        LineClient bad(program.port());
        std::string garbage;
        for (int i = 0; i < 20'000; ++i)
            garbage += static_cast<char>(engine() & 0xFFU);
        bad.send(garbage);
        ASSERT_EQ(kIdentity, good.query("*IDN?"));
    }
    EXPECT_EQ("0,\"No error\"", good.query("*CLS;:SYST:ERR?"));
}

TEST(Program, AClientThatTakesNoRepliesDisturbsNoOther)
{
    VirtualInstrumentProcess program;
    LineClient greedy(program.port());
    std::string queries;
    for (int i = 0; i < 5'000; ++i)
        queries += "*IDN?\n";
    greedy.send(queries);
    LineClient good(program.port());
    EXPECT_EQ("1", good.query("*OPC?"));
    EXPECT_EQ("ok", program.control("sync"));
}

TEST(Program, LogsWhatClientsSentByteForByte)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    client.send("*IDN?\r\n\n:SOUR1:VOLT 5.000000\nA\\\x01\xFF\n");
    EXPECT_THAT(program.receivedLines(), ElementsAre("*IDN?\r", "", ":SOUR1:VOLT 5.000000", "A\\\x01\xFF"));
    program.clearLog();
    EXPECT_THAT(program.receivedLines(), ElementsAre());
}

TEST(Program, TheControlActsAfterWhatClientsSentBefore)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    for (int i = 0; i < 50; ++i) {
        program.clearLog();
        client.send("*CLS\n*WAI\n");
        ASSERT_THAT(program.receivedLines(), ElementsAre("*CLS", "*WAI"));
    }
}

class FreshClients : public testing::TestWithParam<std::size_t>
{
};

TEST_P(FreshClients, AreHeardBeforeTheControlActs)
{
    VirtualInstrumentProcess program;
    for (int round = 0; round < 100; ++round) {
        std::vector<LineClient> clients;
        std::vector<std::string> sent;
        for (std::size_t i = 0; i < GetParam(); ++i) {
            sent.push_back("client " + std::to_string(i));
            clients.emplace_back(program.port()).send(sent.back() + '\n');
        }
        ASSERT_THAT(program.receivedLines(), UnorderedElementsAreArray(sent)) << "round " << round;
        program.clearLog();
    }
}

INSTANTIATE_TEST_SUITE_P(Few, FreshClients, testing::Values(std::size_t{2}, std::size_t{5}));

TEST(Program, TheControlActsAfterMessagesThatFillSeveralReads)
{
    VirtualInstrumentProcess program;
    const std::vector<std::string> lines(300, std::string(99, 'x'));
    std::string messages;
    for (const auto& line : lines)
        messages += line + '\n';
    for (int round = 0; round < 50; ++round) {
        LineClient client(program.port());
        client.send(messages);
        ASSERT_EQ(lines, program.receivedLines()) << "round " << round;
        program.clearLog();
    }
}

TEST(Program, AnswersExactBytesOnDemand)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    EXPECT_EQ("ok", program.control("answer 5.0\\r"));
    EXPECT_EQ("5.0\r", client.query("SOUR1:VOLT?"));
    EXPECT_EQ("ok", program.control("answer-bytes no line end"));
    client.send("*IDN?\n");
    EXPECT_EQ("no line end", client.readBytes(11));
    EXPECT_EQ("error unknown command; help lists them", program.control("nonsense"));
}

TEST(Program, DelaysAndSwallowsReplies)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    LineClient other(program.port());
    EXPECT_EQ("ok", program.control("swallow 1"));
    client.send("*IDN?\n");
    EXPECT_EQ("1", client.query("*OPC?"));

    EXPECT_EQ("ok", program.control("delay 3600000"));
    client.send("*IDN?\n");
    EXPECT_EQ("ok", program.control("delay 0"));
    EXPECT_EQ("1", other.query("*OPC?"));
    EXPECT_EQ("ok", program.control("delay 10"));
    EXPECT_EQ("0", other.query("*TST?"));
}

TEST(Program, CutsAllClientsAndTakesNewOnes)
{
    VirtualInstrumentProcess program;
    LineClient one(program.port());
    LineClient other(program.port());
    EXPECT_EQ("1", one.query("*OPC?"));
    EXPECT_EQ("1", other.query("*OPC?"));
    EXPECT_EQ("ok", program.control("disconnect"));
    EXPECT_TRUE(one.waitForEnd());
    EXPECT_TRUE(other.waitForEnd());
    EXPECT_EQ("1", LineClient(program.port()).query("*OPC?"));
}

TEST(Program, SettlingFollowsTheClockThatTheControlAdvances)
{
    VirtualInstrumentProcess program({"--settle-ms", "3600000"});
    LineClient client(program.port());
    client.send("SOUR:MODE SER\nSOUR5:VOLT 1\n");
    EXPECT_EQ("-221,\"Settings conflict\"", client.query("SYST:ERR?"));
    EXPECT_EQ("ok", program.control("advance 3600000"));
    client.send("SOUR5:VOLT 1\n");
    EXPECT_EQ("0,\"No error\"", client.query("SYST:ERR?"));
}

TEST(Program, OptionsWordItsReplies)
{
    VirtualInstrumentProcess program({"--idn", "A,B,C,D", "--boolean-words", "--alternate-keywords"});
    LineClient client(program.port());
    EXPECT_EQ("A,B,C,D", client.query("*IDN?"));
    EXPECT_EQ("OFF", client.query("OUTP:STAT? CH1"));
    EXPECT_EQ("CH5", client.query("INST:SELE SER;SELE?"));
}

TEST(Program, TellsOfItsClientsAndTracesMessages)
{
    VirtualInstrumentProcess program({"--trace"});
    LineClient(program.port()).query("*IDN?\r");
    EXPECT_EQ(0, program.interrupt());
    const auto text = program.errorOutput();
    EXPECT_THAT(text, HasSubstr(" connected\n"));
    EXPECT_THAT(text, HasSubstr(" > *IDN?\\r\n"));
    EXPECT_THAT(text, HasSubstr(" < " + kIdentity + "\\n\n"));
}

TEST(Program, CtrlCEndsItCleanly)
{
    VirtualInstrumentProcess program({"--serial"});
    LineClient client(program.port());
    EXPECT_EQ("1", client.query("*OPC?"));
    EXPECT_EQ(0, program.interrupt());
    EXPECT_TRUE(client.waitForEnd());
}

TEST(Program, EndsCleanlyWithItsStandardInputWhenAsked)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0", "--until-stdin-closes"});
    EXPECT_NE(std::nullopt, program.readLine());
    program.closeInput();
    EXPECT_EQ(std::nullopt, program.readLine());
    EXPECT_EQ(0, program.wait());
}

TEST(Program, OutlivesItsStandardInputUnlessAsked)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0"});
    const auto line = program.readLine().value_or("");
    program.closeInput();
    const auto port = static_cast<unsigned short>(std::stoi(line.substr(line.rfind(':') + 1)));
    EXPECT_EQ(kIdentity, LineClient(port).query("*IDN?"));
    program.terminate();
    EXPECT_EQ(0, program.wait());
}

TEST(Program, APortInUseIsExplained)
{
    VirtualInstrumentProcess program;
    const auto port = std::to_string(program.port());
    ChildProcess second(virtualInstrumentPath(), {"--port", port});
    EXPECT_EQ(1, second.wait());
    EXPECT_EQ("kvx2800t-virtual: cannot listen on 127.0.0.1:" + port + ": Address already in use\n",
              second.errorOutput());
}

TEST(Program, AnnouncesOnlyWhatIsOn)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0", "--until-stdin-closes"});
    EXPECT_THAT(program.readLine().value_or(""), testing::StartsWith("listening on 127.0.0.1:"));
    program.terminate();
    EXPECT_EQ(std::nullopt, program.readLine());
    EXPECT_EQ(0, program.wait());
}

TEST(Program, RefusesBadOptions)
{
    const std::vector<std::vector<std::string>> kBad = {
        {"--load", "CH9=1"},   {"--load", "CH1"},  {"--load", "CH1=-1"}, {"--port", "65536"},
        {"--settle-ms", "-1"}, {"--bind", "here"}, {"--nonsense"},
    };
    for (const auto& arguments : kBad) {
        ChildProcess program(virtualInstrumentPath(), arguments);
        EXPECT_EQ(2, program.wait()) << arguments.front();
        EXPECT_NE("", program.errorOutput()) << arguments.front();
    }
}

TEST(Program, SaysItsVersion)
{
    ChildProcess program(virtualInstrumentPath(), {"--version"});
    EXPECT_THAT(program.readLine().value_or(""), testing::StartsWith("kvx2800t-virtual "));
    EXPECT_EQ(0, program.wait());
}

class SerialClient
{
public:
    explicit SerialClient(const std::string& path) : port_(context_, path) {}

    void send(const std::string& bytes) { asio::write(port_, asio::buffer(bytes)); }

    std::string readLine()
    {
        const auto length = asio::read_until(port_, asio::dynamic_buffer(received_), '\n');
        auto line = received_.substr(0, length - 1);
        received_.erase(0, length);
        return line;
    }

private:
    asio::io_context context_{1};
    asio::serial_port port_;
    std::string received_;
};

TEST(SerialLine, AnswersLikeTheSocketAndSharesTheInstrument)
{
    VirtualInstrumentProcess program({"--serial"});
    SerialClient serial(program.serialPath());
    serial.send("*IDN?\n");
    EXPECT_EQ(kIdentity, serial.readLine());
    serial.send("SOUR3:VOLT 4\n*OPC?\n");
    EXPECT_EQ("1", serial.readLine());
    EXPECT_EQ("4.000000", LineClient(program.port()).query("SOUR3:VOLT?"));
}

TEST(SerialLine, PassesBytesUnchanged)
{
    VirtualInstrumentProcess program({"--serial"});
    SerialClient serial(program.serialPath());
    serial.send("\x03\x04\x11\x13\x1A\x7F\r\r\n");
    EXPECT_THAT(program.waitForReceivedLines(1), ElementsAre("\x03\x04\x11\x13\x1A\x7F\r\r"));
    EXPECT_EQ("ok", program.control("answer \\x03\\x11\\r"));
    serial.send("*IDN?\n");
    EXPECT_EQ("\x03\x11\r", serial.readLine());
}

TEST(SerialLine, OutlivesItsClients)
{
    VirtualInstrumentProcess program({"--serial"});
    for (int i = 0; i < 3; ++i) {
        SerialClient serial(program.serialPath());
        serial.send("*OPC?\n");
        EXPECT_EQ("1", serial.readLine());
    }
}

} // namespace
