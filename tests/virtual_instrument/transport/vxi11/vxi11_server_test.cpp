#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/support/visa/rpc_bytes.h"
#include "tests/support/visa/vxi11_procedures.h"

#include <gmock/gmock.h>

#include <asio.hpp>
#include <chrono>
#include <thread>

namespace
{

using namespace kvxtest;
using asio::ip::tcp;
using testing::ElementsAre;

constexpr std::uint32_t kLongMs = 60000;

constexpr std::uint32_t kWaitLock = 0x01;
constexpr std::uint32_t kEnd = 0x08;
constexpr std::uint32_t kTermChar = 0x80;

/// A connection that sends and receives bytes of RPC.
class RpcClient
{
public:
    explicit RpcClient(unsigned short port) : socket_(context_)
    {
        socket_.connect({asio::ip::address_v4::loopback(), port});
    }

    void send(const std::string& bytes) { asio::write(socket_, asio::buffer(bytes)); }

    /// A record of one fragment; empty at the end of the connection.
    std::string receive()
    {
        const std::string mark = take(4);
        return mark.size() < 4 ? std::string() : take(wordIn(mark, 0) & 0x7FFFFFFFU);
    }

    void begin(std::uint32_t procedure, const std::string& arguments, std::uint32_t program = kCoreProgram)
    {
        send(fragment(words({++number_, 0, 2, program, 1, procedure, 0, 0, 0, 0}) + arguments));
    }

    /// The result of what has begun; it has to have been accepted.
    std::string end()
    {
        const std::string record = receive();
        EXPECT_EQ(record.substr(0, 24), words({number_, 1, 0, 0, 0, 0}));
        return record.size() < 24 ? std::string() : record.substr(24);
    }

    std::string call(std::uint32_t procedure, const std::string& arguments, std::uint32_t program = kCoreProgram)
    {
        begin(procedure, arguments, program);
        return end();
    }

    /// What the acceptance says, and what is behind it.
    std::string answerTo(std::uint32_t program, std::uint32_t version, std::uint32_t procedure,
                         const std::string& arguments)
    {
        send(fragment(words({7, 0, 2, program, version, procedure, 0, 0, 0, 0}) + arguments));
        const std::string record = receive();
        EXPECT_EQ(record.substr(0, 20), words({7, 1, 0, 0, 0}));
        return record.substr(20);
    }

private:
    std::string take(std::size_t count)
    {
        std::string bytes(count, '\0');
        asio::error_code error;
        bytes.resize(asio::read(socket_, asio::buffer(bytes), error));
        return bytes;
    }

    asio::io_context context_;
    tcp::socket socket_;
    std::uint32_t number_ = 0;
};

/// A client with one link.
class Client : public RpcClient
{
public:
    explicit Client(unsigned short port) : RpcClient(port)
    {
        const std::string result = call(kCreateLink, words({1, 0, 0}) + opaque("inst0"));
        EXPECT_EQ(wordIn(result, 0), 0U);
        link_ = wordIn(result, 1);
        abortPort_ = static_cast<unsigned short>(wordIn(result, 2));
        EXPECT_EQ(wordIn(result, 3), 1048576U);
    }

    std::uint32_t link() const { return link_; }
    unsigned short abortPort() const { return abortPort_; }

    std::string write(const std::string& data, std::uint32_t flags = kEnd, std::uint32_t lockMs = 0)
    {
        return call(kWrite, words({link_, kLongMs, lockMs, flags}) + opaque(data));
    }

    void beginRead(std::uint32_t size, std::uint32_t ioMs = kLongMs, std::uint32_t flags = 0, char termChar = 0)
    {
        begin(kRead, words({link_, size, ioMs, 0, flags, static_cast<std::uint32_t>(termChar)}));
    }

    std::string read(std::uint32_t size, std::uint32_t ioMs = kLongMs, std::uint32_t flags = 0, char termChar = 0)
    {
        beginRead(size, ioMs, flags, termChar);
        return end();
    }

    std::string generic(std::uint32_t procedure, std::uint32_t flags = 0, std::uint32_t lockMs = 0)
    {
        return call(procedure, words({link_, flags, lockMs, kLongMs}));
    }

    std::string lock(std::uint32_t flags = 0, std::uint32_t lockMs = 0)
    {
        return call(kLock, words({link_, flags, lockMs}));
    }

    std::string unlock() { return call(kUnlock, words({link_})); }

    std::string poll() { return generic(kReadStb); }

private:
    std::uint32_t link_ = 0;
    unsigned short abortPort_ = 0;
};

const std::string kDone = words({0});
const std::string kIdentity = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n";

std::string readResult(std::uint32_t reason, const std::string& data)
{
    return words({0, reason}) + opaque(data);
}

std::string readError(std::uint32_t error)
{
    return words({error, 0, 0});
}

class Vxi11Server : public testing::Test
{
protected:
    Client client() { return Client(instrument_.vxi11Port()); }
    RpcClient connection() { return RpcClient(instrument_.vxi11Port()); }

    VirtualInstrumentProcess instrument_{{"--vxi11"}};
};

// Links --------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11Server, CreatesLinksToItsOneDevice)
{
    auto one = connection();
    const auto create = [&](const std::string& device) {
        return one.call(kCreateLink, words({1, 0, 0}) + opaque(device));
    };
    EXPECT_EQ(wordIn(create("inst0"), 0), 0U);
    EXPECT_EQ(wordIn(create("INST0"), 0), 0U);
    for (const char* device : {"inst1", "", "inst00", "gpib0,5"})
        EXPECT_EQ(create(device), words({3, 0, 0, 0})) << device;
}

TEST_F(Vxi11Server, RefusesLinksBeyondThoseItHas)
{
    auto one = connection();
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(wordIn(one.call(kCreateLink, words({1, 0, 0}) + opaque("inst0")), 0), 0U);
    EXPECT_EQ(one.call(kCreateLink, words({1, 0, 0}) + opaque("inst0")), words({9, 0, 0, 0}));
}

TEST_F(Vxi11Server, DestroysLinks)
{
    auto one = client();
    EXPECT_EQ(one.call(kDestroyLink, words({one.link()})), kDone);
    EXPECT_EQ(one.call(kDestroyLink, words({one.link()})), words({4}));
}

TEST_F(Vxi11Server, EveryProcedureRefusesALinkThatIsNotThere)
{
    auto one = connection();
    const auto other = client();
    // Nobody else's either.
    for (const std::uint32_t link : {0U, 99U, 0xFFFFFFFFU, other.link()}) {
        EXPECT_EQ(one.call(kWrite, words({link, 0, 0, kEnd}) + opaque("x")), words({4, 0}));
        EXPECT_EQ(one.call(kRead, words({link, 10, 0, 0, 0, 0})), readError(4));
        EXPECT_EQ(one.call(kReadStb, words({link, 0, 0, 0})), words({4, 0}));
        for (const std::uint32_t procedure : {kTrigger, kClear, kRemote, kLocal})
            EXPECT_EQ(one.call(procedure, words({link, 0, 0, 0})), words({4})) << procedure;
        EXPECT_EQ(one.call(kLock, words({link, 0, 0})), words({4}));
        EXPECT_EQ(one.call(kUnlock, words({link})), words({4}));
        EXPECT_EQ(one.call(kEnableSrq, words({link, 1}) + opaque("h")), words({4}));
        EXPECT_EQ(one.call(kDocmd, words({link, 0, 0, 0, 0, 0, 0}) + opaque("")), words({4, 0}));
        EXPECT_EQ(one.call(kDestroyLink, words({link})), words({4}));
    }
}

// Messages -----------------------------------------------------------------------------------------------------------

TEST_F(Vxi11Server, AnswersAMessageThatEnds)
{
    auto one = client();
    EXPECT_EQ(one.write("*I", 0), words({0, 2}));
    EXPECT_EQ(one.write("DN?"), words({0, 3}));
    EXPECT_EQ(one.read(1000), readResult(4, kIdentity));
    EXPECT_EQ(one.write("*IDN?\n", 0), words({0, 6}));
    EXPECT_EQ(one.read(1000), readResult(4, kIdentity));
}

TEST_F(Vxi11Server, ReadsInPiecesAndSaysWhyEachEnds)
{
    auto one = client();
    one.write("*OPC?;*TST?;*IDN?");
    EXPECT_EQ(one.read(1), readResult(1, "1"));
    EXPECT_EQ(one.read(100, kLongMs, kTermChar, ';'), readResult(2, ";"));
    EXPECT_EQ(one.read(2, kLongMs, kTermChar, ';'), readResult(3, "0;"));
    EXPECT_EQ(one.read(0), readResult(1, ""));
    EXPECT_EQ(one.read(static_cast<std::uint32_t>(kIdentity.size()), kLongMs, kTermChar, '\n'),
              readResult(7, kIdentity));
}

TEST_F(Vxi11Server, AReadWithNothingToReadEndsWithItsTimeOut)
{
    auto one = client();
    EXPECT_EQ(one.read(10, 0), readError(15));
    EXPECT_EQ(one.read(10, 1), readError(15));
    one.write("*CLS;:SYST:ERR?");
    EXPECT_EQ(one.read(1000), readResult(4, "0,\"No error\"\n"));
    one.read(10, 0);
    one.write(":SYST:ERR?");
    EXPECT_EQ(one.read(1000), readResult(4, "-420,\"Query UNTERMINATED\"\n"));
}

TEST_F(Vxi11Server, AReadWaitsForAReplyThatComesLate)
{
    EXPECT_EQ(instrument_.control("delay 30"), "ok");
    auto one = client();
    one.write("*TST?");
    EXPECT_EQ(one.read(10, 0), readError(15));
    EXPECT_EQ(one.read(10), readResult(4, "0\n"));
    EXPECT_EQ(instrument_.control("clear-faults"), "ok");
    one.write(":SYST:ERR?");
    EXPECT_EQ(one.read(1000), readResult(4, "0,\"No error\"\n"));
}

TEST_F(Vxi11Server, AReadThatWaitsHoldsUpNobodyElse)
{
    auto waiting = client();
    auto other = client();
    waiting.beginRead(10);
    other.write("*TST?");
    EXPECT_EQ(other.read(10), readResult(4, "0\n"));
    EXPECT_EQ(RpcClient(waiting.abortPort()).call(1, words({waiting.link()}), kAbortProgram), kDone);
    EXPECT_EQ(waiting.end(), readError(23));
    waiting.write("*TST?");
    EXPECT_EQ(waiting.read(10), readResult(4, "0\n"));
}

TEST_F(Vxi11Server, AWriteTooLongIsAParameterError)
{
    auto one = client();
    EXPECT_EQ(one.write(std::string(1048577, ' ')), words({5, 0}));
    EXPECT_EQ(one.write(std::string(1048576, '\n')), words({0, 1048576}));
    EXPECT_EQ(one.poll(), words({0, 0}));
}

// Status and control -------------------------------------------------------------------------------------------------

TEST_F(Vxi11Server, PollsAndClears)
{
    auto one = client();
    EXPECT_EQ(one.poll(), words({0, 0}));
    one.write("*TST?");
    EXPECT_EQ(one.poll(), words({0, 0x10}));
    EXPECT_EQ(one.read(1), readResult(1, "0"));
    EXPECT_EQ(one.poll(), words({0, 0x10}));
    EXPECT_EQ(one.read(1), readResult(5, "\n"));
    EXPECT_EQ(one.poll(), words({0, 0}));
    one.write("*TST?");
    EXPECT_EQ(one.generic(kClear), kDone);
    EXPECT_EQ(one.poll(), words({0, 0}));
    EXPECT_EQ(one.read(10, 0), readError(15));
}

TEST_F(Vxi11Server, TriggersAndGoesToLocalAndRemote)
{
    auto one = client();
    EXPECT_EQ(one.generic(kTrigger), kDone);
    EXPECT_EQ(one.generic(kLocal), kDone);
    EXPECT_EQ(instrument_.control("panel"), "ok local");
    EXPECT_EQ(one.generic(kRemote), kDone);
    EXPECT_EQ(instrument_.control("panel"), "ok remote");
}

TEST_F(Vxi11Server, HasNoCommandsOfItsOwn)
{
    auto one = client();
    EXPECT_EQ(one.call(kDocmd, words({one.link(), 0, 0, 0, 0x20000, 1, 1}) + opaque("data")), words({8, 0}));
}

// Locks --------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11Server, ALockKeepsOtherLinksOut)
{
    auto holder = client();
    auto other = client();
    EXPECT_EQ(holder.lock(), kDone);
    EXPECT_EQ(other.lock(), words({11}));
    EXPECT_EQ(other.lock(kWaitLock, 1), words({11}));
    EXPECT_EQ(other.write("*RST"), words({11, 0}));
    EXPECT_EQ(other.write("*RST", kEnd | kWaitLock, 1), words({11, 0}));
    EXPECT_EQ(other.read(10), readError(11));
    EXPECT_EQ(other.poll(), words({11, 0}));
    for (const std::uint32_t procedure : {kTrigger, kClear, kRemote, kLocal})
        EXPECT_EQ(other.generic(procedure), words({11})) << procedure;
    EXPECT_EQ(other.unlock(), words({12}));
    EXPECT_EQ(holder.write("*TST?"), words({0, 5}));
    EXPECT_EQ(holder.unlock(), kDone);
    EXPECT_EQ(holder.unlock(), words({12}));
    EXPECT_EQ(other.write("*RST"), words({0, 4}));
}

TEST_F(Vxi11Server, WhoWaitsForALockGetsItWhenItIsGivenBack)
{
    auto holder = client();
    auto locking = client();
    auto writing = client();
    EXPECT_EQ(holder.lock(), kDone);
    locking.begin(kLock, words({locking.link(), kWaitLock, kLongMs}));
    writing.begin(kWrite, words({writing.link(), 0, kLongMs, kEnd | kWaitLock}) + opaque("*TST?"));
    EXPECT_EQ(holder.unlock(), kDone);
    EXPECT_EQ(locking.end(), kDone);
    EXPECT_EQ(locking.unlock(), kDone);
    EXPECT_EQ(writing.end(), words({0, 5}));
}

TEST_F(Vxi11Server, AWaitForALockCanBeAborted)
{
    auto holder = client();
    auto locking = client();
    auto writing = client();
    EXPECT_EQ(holder.lock(), kDone);
    locking.begin(kLock, words({locking.link(), kWaitLock, kLongMs}));
    writing.begin(kWrite, words({writing.link(), 0, kLongMs, kEnd | kWaitLock}) + opaque("*RST"));
    RpcClient aborting(holder.abortPort());
    // Until the calls that are on their way have arrived, there is nothing to abort.
    std::thread repeated([&] {
        for (int i = 0; i < 50; ++i) {
            aborting.call(1, words({locking.link()}), kAbortProgram);
            aborting.call(1, words({writing.link()}), kAbortProgram);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    EXPECT_EQ(locking.end(), words({23}));
    EXPECT_EQ(writing.end(), words({23, 0}));
    repeated.join();
    EXPECT_EQ(holder.unlock(), kDone);
    EXPECT_EQ(writing.write("*TST?"), words({0, 5}));
}

TEST_F(Vxi11Server, ALinkCanBeCreatedWithTheLock)
{
    auto one = connection();
    auto two = connection();
    const std::string wanted = words({1, 1, 1}) + opaque("inst0");
    const std::string created = one.call(kCreateLink, wanted);
    EXPECT_EQ(wordIn(created, 0), 0U);
    EXPECT_EQ(two.call(kCreateLink, wanted), words({11, 0, 0, 0}));
    EXPECT_EQ(two.call(kCreateLink, words({1, 1, 0}) + opaque("inst0")), words({11, 0, 0, 0}));
    EXPECT_EQ(one.call(kDestroyLink, words({wordIn(created, 1)})), kDone);
    EXPECT_EQ(wordIn(two.call(kCreateLink, wanted), 0), 0U);
}

TEST_F(Vxi11Server, AClientThatVanishesGivesItsLocksBack)
{
    auto waiting = client();
    {
        auto holder = client();
        EXPECT_EQ(holder.lock(), kDone);
        waiting.begin(kLock, words({waiting.link(), kWaitLock, kLongMs}));
        // It even waits for something.
        holder.beginRead(10);
    }
    EXPECT_EQ(waiting.end(), kDone);
}

// Service requests ---------------------------------------------------------------------------------------------------

/// Where a client takes service requests.
class InterruptListener
{
public:
    InterruptListener() : acceptor_(context_, {asio::ip::address_v4::loopback(), 0}), socket_(context_) {}

    std::string arguments(std::uint32_t address = 0x7F000001, std::uint32_t family = 0)
    {
        return words({address, acceptor_.local_endpoint().port(), 0x0607B1, 1, family});
    }

    void close() { acceptor_.close(); }
    void accept() { socket_ = acceptor_.accept(); }

    RpcCall receive()
    {
        std::string mark(4, '\0');
        asio::read(socket_, asio::buffer(mark));
        std::string record(wordIn(mark, 0) & 0x7FFFFFFFU, '\0');
        asio::read(socket_, asio::buffer(record));
        return callIn(record);
    }

private:
    asio::io_context context_;
    tcp::acceptor acceptor_;
    tcp::socket socket_;
};

TEST_F(Vxi11Server, TellsOfServiceRequestsOverTheInterruptChannel)
{
    InterruptListener listener;
    auto one = client();
    EXPECT_EQ(one.call(kCreateIntrChan, listener.arguments()), kDone);
    listener.accept();
    EXPECT_EQ(one.call(kEnableSrq, words({one.link(), 1}) + opaque("the handle")), kDone);
    one.write("*SRE 16;*TST?");
    const RpcCall call = listener.receive();
    EXPECT_EQ(call.program, 0x0607B1U);
    EXPECT_EQ(call.version, 1U);
    EXPECT_EQ(call.procedure, 30U);
    EXPECT_EQ(call.arguments, opaque("the handle"));
    EXPECT_EQ(one.poll(), words({0, 0x50}));
    EXPECT_EQ(one.poll(), words({0, 0x10}));
    EXPECT_EQ(one.read(10), readResult(4, "0\n"));
    one.write("*TST?");
    EXPECT_EQ(listener.receive().arguments, opaque("the handle"));
    EXPECT_EQ(one.call(kDestroyIntrChan, ""), kDone);
}

TEST_F(Vxi11Server, AnInterruptChannelIsOneAndOnlyToTheClientItself)
{
    InterruptListener listener;
    auto one = client();
    EXPECT_EQ(one.call(kDestroyIntrChan, ""), words({6}));
    EXPECT_EQ(one.call(kCreateIntrChan, listener.arguments(0x7F000002)), words({21}));
    EXPECT_EQ(one.call(kCreateIntrChan, words({0x7F000001, 0, 0x0607B1, 1, 0})), words({21}));
    EXPECT_EQ(one.call(kCreateIntrChan, words({0x7F000001, 0x10000, 0x0607B1, 1, 0})), words({21}));
    EXPECT_EQ(one.call(kCreateIntrChan, listener.arguments(0x7F000001, 1)), words({8}));
    EXPECT_EQ(one.call(kCreateIntrChan, listener.arguments()), kDone);
    EXPECT_EQ(one.call(kCreateIntrChan, listener.arguments()), words({29}));
    EXPECT_EQ(one.call(kDestroyIntrChan, ""), kDone);
    const std::string arguments = listener.arguments();
    listener.close();
    EXPECT_EQ(one.call(kCreateIntrChan, arguments), words({6}));
}

// Calls --------------------------------------------------------------------------------------------------------------

TEST_F(Vxi11Server, AbortIsForLinksThatAreThere)
{
    const auto one = client();
    RpcClient aborting(one.abortPort());
    EXPECT_EQ(aborting.call(1, words({one.link()}), kAbortProgram), kDone);
    EXPECT_EQ(aborting.call(1, words({one.link() + 1}), kAbortProgram), words({4}));
    EXPECT_EQ(aborting.answerTo(kAbortProgram, 1, 0, ""), words({0}));
    EXPECT_EQ(aborting.answerTo(kAbortProgram, 1, 2, ""), words({3}));
    EXPECT_EQ(aborting.answerTo(kAbortProgram, 2, 1, ""), words({2, 1, 1}));
    EXPECT_EQ(aborting.answerTo(kCoreProgram, 1, 1, ""), words({1}));
    EXPECT_EQ(aborting.answerTo(kAbortProgram, 1, 1, "abc"), words({4}));
}

TEST_F(Vxi11Server, RefusesCallsThatItCannotCarryOut)
{
    auto one = client();
    EXPECT_EQ(one.answerTo(kCoreProgram, 1, 0, ""), words({0}));
    EXPECT_EQ(one.answerTo(kCoreProgram + 5, 1, kClear, ""), words({1}));
    EXPECT_EQ(one.answerTo(kCoreProgram, 2, kClear, ""), words({2, 1, 1}));
    for (const std::uint32_t procedure : {1U, 9U, 21U, 24U, 27U, 0xFFFFFFFFU})
        EXPECT_EQ(one.answerTo(kCoreProgram, 1, procedure, ""), words({3})) << procedure;
    for (const std::uint32_t procedure : {kCreateLink, kWrite, kRead, kReadStb, kTrigger, kClear, kRemote, kLocal,
                                          kLock, kUnlock, kEnableSrq, kDocmd, kDestroyLink, kCreateIntrChan})
        EXPECT_EQ(one.answerTo(kCoreProgram, 1, procedure, "\1\2"), words({4})) << procedure;
    EXPECT_EQ(one.answerTo(kCoreProgram, 1, kEnableSrq, words({one.link(), 1}) + opaque(std::string(41, 'h'))),
              words({4}));
    EXPECT_EQ(one.answerTo(kCoreProgram, 1, kWrite, words({one.link(), 0, 0, 0, 0xFFFFFFFF}) + "x"), words({4}));
    EXPECT_EQ(one.poll(), words({0, 0}));
}

TEST_F(Vxi11Server, RefusesOtherVersionsOfRpc)
{
    auto one = connection();
    one.send(fragment(words({5, 0, 3, kCoreProgram, 1, kClear, 0, 0, 0, 0})));
    EXPECT_EQ(one.receive(), words({5, 1, 1, 0, 2, 2}));
}

TEST_F(Vxi11Server, TakesCredentialsAndAnyFragments)
{
    auto one = connection();
    const std::string call = words({5, 0, 2, kCoreProgram, 1, 0, 1}) + opaque("somebody") + words({0, 0});
    std::string pieces;
    for (const char c : call)
        pieces += fragment(std::string(1, c), false) + fragment("", false);
    one.send(pieces + fragment("") + fragment(call));
    EXPECT_EQ(one.receive(), words({5, 1, 0, 0, 0, 0}));
    EXPECT_EQ(one.receive(), words({5, 1, 0, 0, 0, 0}));
}

TEST_F(Vxi11Server, EndsAConnectionThatIsNoRpc)
{
    for (const std::string& bytes : {std::string("GET / HTTP/1.1\r\n\r\n"), words({0xFFFFFFFF, 1, 2, 3}),
                                     fragment("abc"), fragment(words({1, 1, 0})), words({0x00200000})})
    {
        auto one = connection();
        one.send(bytes);
        EXPECT_EQ(one.receive(), "");
    }
    EXPECT_EQ(client().poll(), words({0, 0}));
}

TEST_F(Vxi11Server, CallsSentAheadAreAnsweredInTheirOrder)
{
    auto one = client();
    for (int i = 0; i < 100; ++i)
        one.send(fragment(words({static_cast<std::uint32_t>(1000 + i), 0, 2, kCoreProgram, 1, kReadStb, 0, 0, 0, 0}) +
                          words({one.link(), 0, 0, 0})));
    for (std::uint32_t i = 0; i < 100; ++i)
        EXPECT_EQ(one.receive(), words({1000 + i, 1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Vxi11Server, TheTestControlCutsItsClientsOff)
{
    auto one = client();
    one.beginRead(10);
    EXPECT_EQ(instrument_.control("disconnect"), "ok");
    EXPECT_EQ(one.receive(), "");
}

} // namespace
