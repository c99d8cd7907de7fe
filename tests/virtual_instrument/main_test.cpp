#include "tests/support/processes/virtual_instrument_process.h"

#include <asio.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <regex>
#include <sys/resource.h>
#include <thread>

namespace
{

using namespace kvxtest;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

const std::string kIdentity = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00";

TEST(Program, AnswersOnItsRawSocket)
{
    VirtualInstrumentProcess program({"--load", "CH1=10"});
    EXPECT_EQ(program.resource(), "TCPIP0::127.0.0.1::" + std::to_string(program.port()) + "::SOCKET");
    LineClient client(program.port());
    EXPECT_EQ(client.query("*IDN?"), kIdentity);
    client.send(":SOUR1:VOLT 5.000000\n:SOUR1:CURR 1.000000\r\n:OUTP:STAT CH1,ON\n");
    EXPECT_EQ(client.query(":MEAS:ALL? CH1"), "5.000,0.500,2.500");
}

TEST(Program, ClientsShareOneInstrumentAndHaveInputBuffersOfTheirOwn)
{
    VirtualInstrumentProcess program;
    LineClient one(program.port());
    LineClient other(program.port());
    one.send("SOUR3:VO");
    EXPECT_EQ(other.query("SOUR3:VOLT?"), "0.000000");
    one.send("LT 7\n*OPC?\n");
    EXPECT_EQ(one.readLine(), "1");
    EXPECT_EQ(other.query("SOUR3:VOLT?"), "7.000000");
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
        ASSERT_EQ(client.readLine(), "1");
        ASSERT_EQ(client.readLine(), "0");
    }
}

TEST(Program, DiscardsAnInputOverrunUpToItsLineFeed)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    client.send(std::string(10'000, 'x') + "\n*IDN?\n");
    EXPECT_EQ(client.readLine(), kIdentity);
    EXPECT_EQ(client.query("SYST:ERR?"), "-363,\"Input buffer overrun\"");
    EXPECT_EQ(client.query("SYST:ERR?"), "0,\"No error\"");
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
        EXPECT_EQ(client.readLine(), kIdentity);
    for (auto& client : clients)
        EXPECT_EQ(client.query("*OPC?"), "1");
}

TEST(Program, GarbageOfOneClientDisturbsNoOther)
{
    VirtualInstrumentProcess program;
    LineClient good(program.port());
    good.send("SOUR3:VOLT 4.5\n");
    std::mt19937 engine{7};
    for (int round = 0; round < 20; ++round) {
        LineClient bad(program.port());
        std::string garbage;
        for (int i = 0; i < 20'000; ++i)
            garbage += static_cast<char>(engine() & 0xFFU);
        bad.send(garbage);
        ASSERT_EQ(good.query("*IDN?"), kIdentity);
    }
    EXPECT_EQ(good.query("SOUR3:VOLT?"), "4.500000");
}

/// Sends whatever comes to mind, a client that has gone mad: random bytes, with real queries whose replies it never
/// takes, and lines that are too long.
void sendNonsense(LineClient& client)
{
    std::mt19937 engine{11};
    std::string nonsense;
    for (int i = 0; i < 1'000'000; ++i)
        nonsense += static_cast<char>(engine() & 0xFFU);
    for (int i = 0; i < 2'000; ++i)
        nonsense += "*IDN?\nMEAS:ALL?\nMEAS:ALL? CH9\n:SOUR:VOLT 1e99\n;;;\n\"\n";
    nonsense += std::string(1'000'000, 'x') + '\n';
    try {
        client.send(nonsense);
    } catch (const std::system_error&) {
        // The test has ended, and the program with it.
    }
}

TEST(Program, ALongRunOfGarbageDisturbsNoneOfThoseWhoWork)
{
    VirtualInstrumentProcess program({"--load", "CH3=10"});
    LineClient bad(program.port());
    std::vector<LineClient> good;
    for (int i = 0; i < 10; ++i)
        good.emplace_back(program.port());
    std::jthread nonsense([&bad] { sendNonsense(bad); });
    good.front().send("SOUR3:CURR 2;:OUTP:STAT CH3,ON\n");
    for (int round = 0; round < 100; ++round) {
        for (std::size_t i = 0; i < good.size(); ++i) {
            const auto level = std::to_string((round + static_cast<int>(i)) % 10) + ".000000";
            EXPECT_EQ(good[i].query("SOUR3:VOLT " + level + ";VOLT?"), level);
            EXPECT_EQ(good[i].query("OUTP:STAT? CH3"), "1");
        }
    }
    // The program reads no further from a client that leaves its replies; its end lets the other side go.
    EXPECT_EQ(program.control("disconnect"), "ok");
    nonsense.join();
    EXPECT_EQ(LineClient(program.port()).query("*IDN?"), kIdentity);
}

/// Sends a line again and again, and reads nothing.
void sendUntilItEnds(LineClient& client, const std::string& line)
{
    std::string lines;
    for (int i = 0; i < 10'000; ++i)
        lines += line;
    try {
        while (true)
            client.send(lines);
    } catch (const std::system_error&) {
        // The test has ended.
    }
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
    EXPECT_EQ(good.query("*OPC?"), "1");
    EXPECT_EQ(program.control("sync"), "ok");
}

TEST(Program, AClientThatTakesNoRepliesDoesNotHoldUpTheControlWhileAnotherIsBusy)
{
    VirtualInstrumentProcess program;
    LineClient greedy(program.port());
    LineClient busy(program.port());
    std::atomic<bool> ended = false;
    const std::jthread queries([&] {
        sendUntilItEnds(greedy, "*IDN?\n");
        ended = true;
    });
    const std::jthread commands([&busy] { sendUntilItEnds(busy, "*CLS\n"); });
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(program.control("sync"), "ok");
    EXPECT_FALSE(ended);
    EXPECT_EQ(program.control("disconnect"), "ok");
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
        ASSERT_EQ(program.receivedLines(), lines) << "round " << round;
        program.clearLog();
    }
}

TEST(Program, AnswersExactBytesOnDemand)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    EXPECT_EQ(program.control("answer 5.0\\r"), "ok");
    EXPECT_EQ(client.query("SOUR1:VOLT?"), "5.0\r");
    EXPECT_EQ(program.control("answer-bytes no line end"), "ok");
    client.send("*IDN?\n");
    EXPECT_EQ(client.readBytes(11), "no line end");
    EXPECT_EQ(program.control("nonsense"), "error unknown command; help lists them");
}

TEST(Program, DelaysAndSwallowsReplies)
{
    VirtualInstrumentProcess program;
    LineClient client(program.port());
    LineClient other(program.port());
    EXPECT_EQ(program.control("swallow 1"), "ok");
    client.send("*IDN?\n");
    EXPECT_EQ(client.query("*OPC?"), "1");

    EXPECT_EQ(program.control("delay 3600000"), "ok");
    client.send("*IDN?\n");
    EXPECT_EQ(program.control("delay 0"), "ok");
    EXPECT_EQ(other.query("*OPC?"), "1");
    EXPECT_EQ(program.control("delay 10"), "ok");
    EXPECT_EQ(other.query("*TST?"), "0");
}

TEST(Program, CutsAllClientsAndTakesNewOnes)
{
    VirtualInstrumentProcess program;
    LineClient one(program.port());
    LineClient other(program.port());
    EXPECT_EQ(one.query("*OPC?"), "1");
    EXPECT_EQ(other.query("*OPC?"), "1");
    EXPECT_EQ(program.control("disconnect"), "ok");
    EXPECT_TRUE(one.waitForEnd());
    EXPECT_TRUE(other.waitForEnd());
    EXPECT_EQ(LineClient(program.port()).query("*OPC?"), "1");
}

TEST(Program, SettlingFollowsTheClockThatTheControlAdvances)
{
    VirtualInstrumentProcess program({"--settle-ms", "3600000"});
    LineClient client(program.port());
    client.send("SOUR:MODE SER\nSOUR5:VOLT 1\n");
    EXPECT_EQ(client.query("SYST:ERR?"), "-221,\"Settings conflict\"");
    EXPECT_EQ(program.control("advance 3600000"), "ok");
    client.send("SOUR5:VOLT 1\n");
    EXPECT_EQ(client.query("SYST:ERR?"), "0,\"No error\"");
}

TEST(Program, ListsFollowTheClockThatTheControlAdvances)
{
    VirtualInstrumentProcess program({"--load", "CH1=10"});
    LineClient client(program.port());
    client.send("LIST:GROUP:PARA 1,5,1,3600;PARA 2,8,1,3600\nOUTP:STAT CH1,ON\nLIST:STAT ON\n");
    EXPECT_EQ(client.query("MEAS:VOLT? CH1"), "5.000");
    EXPECT_EQ(program.control("advance 3600000"), "ok");
    EXPECT_EQ(client.query("MEAS:VOLT? CH1"), "8.000");
    EXPECT_EQ(program.control("advance 3600000"), "ok");
    EXPECT_EQ(client.query("LIST:STATUS?"), "STOPPED,0.000000,0,0");
    EXPECT_EQ(client.query("OUTP:STAT? CH1"), "0");
}

TEST(Program, OptionsWordItsReplies)
{
    VirtualInstrumentProcess program({"--idn", "A,B,C,D", "--boolean-words", "--alternate-keywords"});
    LineClient client(program.port());
    EXPECT_EQ(client.query("*IDN?"), "A,B,C,D");
    EXPECT_EQ(client.query("OUTP:STAT? CH1"), "OFF");
    EXPECT_EQ(client.query("INST:SELE SER;SELE?"), "CH5");
}

/// The error output of a program up to the line that says that the client has left which asked for its identity.
std::string toldAboutOneClient(const std::vector<std::string>& arguments)
{
    const VirtualInstrumentProcess program(arguments);
    LineClient(program.port()).query("*IDN?\r");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    auto text = program.errorOutput();
    while (text.find("disconnected\n") == std::string::npos && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        text = program.errorOutput();
    }
    return text;
}

TEST(Program, HasALineForEachClientThatComesAndGoes)
{
    const auto text = toldAboutOneClient({});
    EXPECT_THAT(text, ContainsRegex("^client 127\\.0\\.0\\.1:[0-9]+ connected\n"));
    EXPECT_THAT(text, ContainsRegex("client 127\\.0\\.0\\.1:[0-9]+ disconnected\n"));
    EXPECT_THAT(text, Not(HasSubstr("*IDN?")));
}

TEST(Program, TracesMessagesAndRepliesWithATimeStamp)
{
    const auto text = toldAboutOneClient({"--trace"});
    EXPECT_THAT(text, ContainsRegex("\n[0-9]+\\.[0-9]{6} 127\\.0\\.0\\.1:[0-9]+ > \\*IDN\\?\\\\r\n"));
    EXPECT_THAT(text, ContainsRegex("\n[0-9]+\\.[0-9]{6} 127\\.0\\.0\\.1:[0-9]+ < Tessaro Instruments,[^\n]*\\\\n\n"));
}

TEST(Program, TracesOverruns)
{
    VirtualInstrumentProcess program({"--trace"});
    LineClient client(program.port());
    client.send(std::string(5000, 'x') + "\n");
    EXPECT_EQ(client.query("SYST:ERR?"), "-363,\"Input buffer overrun\"");
    EXPECT_EQ(program.interrupt(), 0);
    EXPECT_THAT(program.errorOutput(), HasSubstr(" > (input buffer overrun)\n"));
}

/// The program with its error output in the same pipe as the standard output, and its test control open.
class ProgramWithOnePipe
{
public:
    explicit ProgramWithOnePipe(const std::string& redirection)
        : process_("/bin/sh", {"-c", "exec \"$0\" \"$@\" " + redirection, virtualInstrumentPath(), "--port", "0",
                               "--control-port", "0", "--until-stdin-closes", "--trace"})
    {
        port_ = nextPort();
        controlPort_ = nextPort();
    }

    unsigned short port() const { return port_; }
    unsigned short controlPort() const { return controlPort_; }
    ChildProcess& process() { return process_; }

private:
    unsigned short nextPort()
    {
        const auto line = process_.readLine().value_or(":0");
        return static_cast<unsigned short>(std::stoi(line.substr(line.rfind(':') + 1)));
    }

    ChildProcess process_;
    unsigned short port_ = 0;
    unsigned short controlPort_ = 0;
};

/// More than a pipe and the queue before it hold.
void fillOutputs(LineClient& client)
{
    const std::string message = "*CLS" + std::string(4000, ' ') + "\n";
    for (int i = 0; i < 300; ++i)
        client.send(message);
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(client.query("SOUR3:VOLT 2;VOLT?"), "2.000000");
}

TEST(Program, OutputsThatNobodyReadsHoldItUpInNothing)
{
    ProgramWithOnePipe program("2>&1");
    LineClient client(program.port());
    fillOutputs(client);
    EXPECT_EQ(LineClient(program.controlPort()).query("sync"), "ok");
    program.process().terminate();
    EXPECT_EQ(program.process().wait(), 0);
}

TEST(Program, SaysHowManyLinesNobodyHasRead)
{
    ProgramWithOnePipe program("2>&1");
    LineClient client(program.port());
    fillOutputs(client);
    auto line = program.process().readLine();
    while (line && !line->ends_with(" lines are lost, as nobody read this output)"))
        line = program.process().readLine();
    EXPECT_NE(line, std::nullopt);
}

TEST(Program, OutlivesTheReadersOfItsOutputs)
{
    ProgramWithOnePipe program("2>&1 | head -n 2");
    LineClient client(program.port());
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(client.query("*OPC?"), "1");
    EXPECT_EQ(LineClient(program.controlPort()).query("sync"), "ok");
}

const std::vector<std::string> kRequests{
    "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n",
    "POST / HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 50\r\n\r\nSOUR3:VOLT 5\nload CH1 1\n",
    "POST /" + std::string(5000, 'x') + " HTTP/1.1\r\n\r\nSOUR3:VOLT 5\ninject 5 \"x\"\n",
    "Host: 127.0.0.1\r\n\r\nSOUR3:VOLT 5\n",
};

TEST(Program, EndsWebBrowsersBeforeAnythingIsExecuted)
{
    VirtualInstrumentProcess program;
    for (const auto& request : kRequests) {
        LineClient browser(program.port());
        browser.send(request);
        EXPECT_TRUE(browser.waitForEnd()) << request;
    }
    EXPECT_THAT(program.receivedLines(), ElementsAre());
    LineClient client(program.port());
    EXPECT_EQ(client.query("SOUR3:VOLT?"), "0.000000");
    EXPECT_EQ(client.query("SYST:ERR?"), "0,\"No error\"");
    EXPECT_EQ(program.interrupt(), 0);
    EXPECT_THAT(program.errorOutput(), HasSubstr(" sent an HTTP request: cut off, nothing of it is executed\n"));
}

TEST(Program, EndsWebBrowsersAtTheTestControlToo)
{
    VirtualInstrumentProcess program;
    for (const auto& request : kRequests) {
        LineClient browser(program.controlPort());
        browser.send(request);
        EXPECT_TRUE(browser.waitForEnd()) << request;
    }
    EXPECT_EQ(LineClient(program.port()).query("SYST:ERR?"), "0,\"No error\"");
}

/// The lines of its outputs without ports; it is told to end after the last.
std::vector<std::string> beginningWith(const std::vector<std::string>& arguments, const std::string& lastLine)
{
    std::vector<std::string> all{"-c", "exec \"$0\" \"$@\" 2>&1", virtualInstrumentPath(), "--port",
                                 "0",  "--until-stdin-closes"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    ChildProcess program("/bin/sh", all);
    std::vector<std::string> lines;
    while (const auto line = program.readLine()) {
        lines.push_back(std::regex_replace(*line, std::regex(":[0-9]+$"), ""));
        if (line->starts_with(lastLine))
            program.terminate();
    }
    EXPECT_EQ(program.wait(), 0);
    return lines;
}

constexpr auto kOpenToAll = "warning: anyone who reaches 0.0.0.0 can operate this instrument: its port has no password";

TEST(Program, WarnsOfAnAddressThatOthersReachAndKeepsTheTestControlFromThem)
{
    EXPECT_THAT(beginningWith({"--bind", "0.0.0.0", "--control-port", "0"}, "test control on"),
                UnorderedElementsAre(kOpenToAll, "listening on 0.0.0.0", "test control on 127.0.0.1"));
    EXPECT_THAT(beginningWith({"--bind", "127.0.0.2"}, "listening on"), ElementsAre("listening on 127.0.0.2"));
}

TEST(Program, OffersTheTestControlToOthersWithAToken)
{
    EXPECT_THAT(beginningWith({"--bind", "0.0.0.0", "--control-port", "0", "--control-token", "x"}, "test control on"),
                UnorderedElementsAre(kOpenToAll,
                                     "warning: whoever listens on the network sees the token of the test control",
                                     "listening on 0.0.0.0", "test control on 0.0.0.0"));
}

TEST(Program, TheTestControlTakesThoseWhoShowTheToken)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0", "--control-port", "0", "--until-stdin-closes",
                                                   "--control-token", "open-sesame"});
    const auto listening = program.readLine().value_or("");
    const auto control = program.readLine().value_or("");
    const auto port = static_cast<unsigned short>(std::stoi(control.substr(control.rfind(':') + 1)));
    LineClient welcome(port);
    EXPECT_EQ(welcome.query("token open-sesame"), "ok");
    EXPECT_EQ(welcome.query("sync"), "ok");
    for (const std::string line : {"sync", "token", "token open", "token open-sesamf", "token open-sesame now", ""}) {
        LineClient stranger(port);
        EXPECT_EQ(stranger.query(line), "error the first line has to be: token <token>") << line;
        EXPECT_TRUE(stranger.waitForEnd()) << line;
    }
    LineClient talkative(port);
    talkative.send(std::string(5000, 'x') + '\n');
    EXPECT_TRUE(talkative.waitForEnd());
}

TEST(Program, CtrlCEndsItCleanly)
{
    VirtualInstrumentProcess program({"--serial"});
    LineClient client(program.port());
    EXPECT_EQ(client.query("*OPC?"), "1");
    EXPECT_EQ(program.interrupt(), 0);
    EXPECT_TRUE(client.waitForEnd());
}

TEST(Program, EndsCleanlyWithItsStandardInputWhenAsked)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0", "--until-stdin-closes"});
    EXPECT_NE(program.readLine(), std::nullopt);
    program.closeInput();
    EXPECT_EQ(program.readLine(), std::nullopt);
    EXPECT_EQ(program.wait(), 0);
}

TEST(Program, OutlivesItsStandardInputUnlessAsked)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0"});
    const auto line = program.readLine().value_or("");
    program.closeInput();
    const auto port = static_cast<unsigned short>(std::stoi(line.substr(line.rfind(':') + 1)));
    EXPECT_EQ(LineClient(port).query("*IDN?"), kIdentity);
    program.terminate();
    EXPECT_EQ(program.wait(), 0);
}

TEST(Program, APortInUseIsExplained)
{
    VirtualInstrumentProcess program;
    const auto port = std::to_string(program.port());
    ChildProcess second(virtualInstrumentPath(), {"--port", port});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(second.errorOutput(),
              "kvx2800t-virtual: cannot listen on 127.0.0.1:" + port + ": Address already in use\n");
}

#ifdef KVX_STACKS_OF_ANY_SIZE

/// Leaves programs that are started while it lives no room for the stack of a thread.
class NoRoomForThreads
{
public:
    NoRoomForThreads()
    {
        EXPECT_EQ(::getrlimit(RLIMIT_STACK, &before_), 0);
        const rlimit limit{std::min(rlim_t{1} << 47, before_.rlim_max), before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_STACK, &limit), 0);
    }
    ~NoRoomForThreads() { EXPECT_EQ(::setrlimit(RLIMIT_STACK, &before_), 0); }
    NoRoomForThreads(const NoRoomForThreads&) = delete;
    NoRoomForThreads& operator=(const NoRoomForThreads&) = delete;

    /// Not where this process may not ask for such stacks.
    bool isEffective() const { return before_.rlim_max == RLIM_INFINITY; }

private:
    rlimit before_{};
};

TEST(Program, ExplainsThatItCannotStart)
{
    const NoRoomForThreads noRoom;
    if (!noRoom.isEffective())
        GTEST_SKIP() << "stacks have a limit here";
    ChildProcess program(virtualInstrumentPath(), {"--port", "0"});
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.errorOutput(), "kvx2800t-virtual: Resource temporarily unavailable\n");
}

#endif

TEST(Program, AnnouncesOnlyWhatIsOn)
{
    ChildProcess program(virtualInstrumentPath(), {"--port", "0", "--until-stdin-closes"});
    EXPECT_THAT(program.readLine().value_or(""), testing::StartsWith("listening on 127.0.0.1:"));
    program.terminate();
    EXPECT_EQ(program.readLine(), std::nullopt);
    EXPECT_EQ(program.wait(), 0);
}

TEST(Program, RefusesBadOptions)
{
    const std::vector<std::vector<std::string>> kBad = {
        {"--load", "CH9=1"},
        {"--load", "CH1"},
        {"--load", "CH1=-1"},
        {"--port", "65536"},
        {"--settle-ms", "-1"},
        {"--bind", "here"},
        {"--nonsense"},
        {"--control-token", "x"},
        {"--control-port", "0", "--control-token", ""},
        {"--control-port", "0", "--control-token", "a b"},
    };
    for (const auto& arguments : kBad) {
        ChildProcess program(virtualInstrumentPath(), arguments);
        EXPECT_EQ(program.wait(), 2) << arguments.front();
        EXPECT_NE(program.errorOutput(), "") << arguments.front();
    }
}

TEST(Program, SaysItsVersion)
{
    ChildProcess program(virtualInstrumentPath(), {"--version"});
    EXPECT_THAT(program.readLine().value_or(""), testing::StartsWith("kvx2800t-virtual "));
    EXPECT_EQ(program.wait(), 0);
}

TEST(Program, ExplainsItsOptions)
{
    ChildProcess program(virtualInstrumentPath(), {"--help"});
    std::string help;
    while (const auto line = program.readLine())
        help += *line + '\n';
    EXPECT_EQ(program.wait(), 0);
    for (const auto* const option : {"--port", "--bind", "--serial", "--control-port", "--control-token", "--load",
                                     "--settle-ms", "--idn", "--boolean-words", "--alternate-keywords", "--trace",
                                     "--until-stdin-closes", "--commands", "--help", "--version"})
        EXPECT_THAT(help, HasSubstr(option));
    EXPECT_EQ(program.errorOutput(), "");
}

TEST(Program, PrintsItsCommandTable)
{
    ChildProcess program(virtualInstrumentPath(), {"--commands"});
    EXPECT_EQ(program.readLine(), "| command | parameters | meaning |");
    EXPECT_EQ(program.readLine(), "|---|---|---|");
    EXPECT_EQ(program.readLine(), "| `*IDN?` |  | maker, model, serial number, firmware |");
    EXPECT_EQ(program.wait(), 0);
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
    EXPECT_EQ(serial.readLine(), kIdentity);
    serial.send("SOUR3:VOLT 4\n*OPC?\n");
    EXPECT_EQ(serial.readLine(), "1");
    EXPECT_EQ(LineClient(program.port()).query("SOUR3:VOLT?"), "4.000000");
}

TEST(SerialLine, PassesBytesUnchanged)
{
    VirtualInstrumentProcess program({"--serial"});
    SerialClient serial(program.serialPath());
    serial.send("\x03\x04\x11\x13\x1A\x7F\r\r\n");
    EXPECT_THAT(program.waitForReceivedLines(1), ElementsAre("\x03\x04\x11\x13\x1A\x7F\r\r"));
    EXPECT_EQ(program.control("answer \\x03\\x11\\r"), "ok");
    serial.send("*IDN?\n");
    EXPECT_EQ(serial.readLine(), "\x03\x11\r");
}

TEST(SerialLine, OutlivesItsClients)
{
    VirtualInstrumentProcess program({"--serial"});
    for (int i = 0; i < 3; ++i) {
        SerialClient serial(program.serialPath());
        serial.send("*OPC?\n");
        EXPECT_EQ(serial.readLine(), "1");
    }
}

} // namespace
