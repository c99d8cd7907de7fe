// Every call that VISA makes to the host fails once, in the life of a session to a socket and to a serial line.
#include "tests/torture/failing_life.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr ViUInt32 kTimeoutMs = 300;
constexpr ViUInt32 kShortTimeoutMs = 5;

/// How an instrument answers a query.
enum class Answer : char
{
    Whole = 'w',
    InTwo = 'h',
    Late = 'l', ///< when it is told to
    None = 'n'
};

std::string queryOf(int number, Answer answer)
{
    return '#' + std::to_string(number) + static_cast<char>(answer) + '\n';
}

std::string replyOf(int number)
{
    return "reply " + std::to_string(number) + '\n';
}

/// The other end of a connection, which answers in a thread of its own.
class Instrument
{
public:
    Instrument() = default;
    virtual ~Instrument() = default;
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;

    virtual std::string resource() const = 0;

    /// Sends what has been asked for with Answer::Late.
    void release() { mayBeLate_ = true; }

    /// Waits until the query has been answered, and the answer has arrived where that is at once.
    void awaitAnswer(int number) const
    {
        const auto end = steady_clock::now() + std::chrono::seconds(5);
        while (answered_ < number && steady_clock::now() < end)
            std::this_thread::yield();
    }

protected:
    void start()
    {
        thread_ = std::thread([this] { run(); });
    }

    void stop()
    {
        isOver_ = true;
        thread_.join();
    }

    /// What messages come from and go to; -1 while there is nothing.
    virtual int connection() = 0;

private:
    void run()
    {
        std::string received;
        while (!isOver_) {
            const int descriptor = connection();
            pollfd polled{descriptor, POLLIN, 0};
            constexpr int kTickMs = 1;
            if (late_ != 0 && mayBeLate_.exchange(false))
                answer(descriptor, std::exchange(late_, 0), Answer::Whole);
            if (::poll(&polled, 1, kTickMs) <= 0)
                continue;
            std::array<char, 256> bytes{};
            const ssize_t count = ::read(descriptor, bytes.data(), bytes.size());
            if (count <= 0) {
                std::this_thread::sleep_for(milliseconds(kTickMs));
                continue;
            }
            received.append(bytes.data(), static_cast<std::size_t>(count));
            takeLines(descriptor, received);
        }
    }

    void takeLines(int descriptor, std::string& received)
    {
        for (auto end = received.find('\n'); end != std::string::npos; end = received.find('\n')) {
            // Of a query that was cut off nothing is left in front of the next.
            const std::string line = received.substr(0, end);
            received.erase(0, end + 1);
            const auto begin = line.rfind('#');
            if (begin != std::string::npos)
                answer(descriptor, std::atoi(line.c_str() + begin + 1), static_cast<Answer>(line.back()));
        }
    }

    void answer(int descriptor, int number, Answer how)
    {
        const std::string reply = replyOf(number);
        if (how == Answer::Late)
            late_ = number;
        if (how == Answer::Whole)
            send(descriptor, reply);
        if (how == Answer::InTwo) {
            send(descriptor, reply.substr(0, 3));
            std::this_thread::sleep_for(milliseconds(1));
            send(descriptor, reply.substr(3));
        }
        if (how == Answer::Whole || how == Answer::InTwo)
            answered_ = number;
    }

    static void send(int descriptor, const std::string& bytes)
    {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        static_cast<void>(written);
    }

    std::thread thread_;
    std::atomic<bool> isOver_ = false;
    std::atomic<bool> mayBeLate_ = false;
    std::atomic<int> answered_ = 0;
    int late_ = 0;
};

void require(bool succeeded, const char* what)
{
    if (!succeeded)
        throw std::system_error(errno, std::generic_category(), what);
}

class SocketInstrument : public Instrument
{
public:
    SocketInstrument()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        require(::bind(listener_, any, size) == 0 && ::listen(listener_, 8) == 0 &&
                    ::getsockname(listener_, any, &size) == 0,
                "listen");
        port_ = ntohs(address.sin_port);
        start();
    }

    ~SocketInstrument() override
    {
        stop();
        ::close(connection_);
        ::close(listener_);
    }

    std::string resource() const override { return "TCPIP0::127.0.0.1::" + std::to_string(port_) + "::SOCKET"; }

protected:
    int connection() override
    {
        if (connection_ >= 0)
            return connection_;
        connection_ = ::accept(listener_, nullptr, nullptr);
        // What has been sent has arrived.
        const int isAtOnce = 1;
        ::setsockopt(connection_, IPPROTO_TCP, TCP_NODELAY, &isAtOnce, sizeof isAtOnce);
        return connection_;
    }

private:
    int listener_ = -1;
    int connection_ = -1;
    int port_ = 0;
};

class SerialInstrument : public Instrument
{
public:
    SerialInstrument() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        std::array<char, 128> name{};
        require(master_ >= 0 && ::grantpt(master_) == 0 && ::unlockpt(master_) == 0 &&
                    ::ptsname_r(master_, name.data(), name.size()) == 0,
                "pseudo terminal");
        path_ = name.data();
        start();
    }

    ~SerialInstrument() override
    {
        stop();
        ::close(master_);
    }

    std::string resource() const override { return "ASRL" + path_ + "::INSTR"; }

protected:
    int connection() override { return master_; }

private:
    int master_;
    std::string path_;
};

class Life final : public kvxtest::FailingLife
{
public:
    Life(Instrument& instrument, const kvxtest::FailingCall& failure)
        : FailingLife(instrument.resource(), failure, std::chrono::seconds(1)), instrument_(instrument)
    {
    }

private:
    void use() override
    {
        configure();
        exchange();
    }

    void configure()
    {
        set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
        set(VI_ATTR_TCPIP_KEEPALIVE, VI_TRUE);
        set(VI_ATTR_ASRL_BAUD, 115200);
        set(VI_ATTR_ASRL_STOP_BITS, VI_ASRL_STOP_TWO);
        set(VI_ATTR_TMO_VALUE, kTimeoutMs);
    }

    void exchange()
    {
        // A read that fails loses nothing: the next one has it all.
        if (ask(Answer::InTwo) && !isAnswered()) {
            awaitArrival();
            if (!isAnswered())
                blame("a reply was lost");
        }
        // And the write behind it what has arrived.
        if (ask(Answer::InTwo) && !isAnswered())
            awaitArrival();
        expectAnswer();
        leaveAnAnswer();
        expectAnswer();
        leaveAnAnswer();
        if (clear() < 0 && clear() < 0)
            blame("viClear failed again");
        expectAnswer();
        leaveAnAnswer();
        if (flush() < 0 && flush() < 0)
            blame("viSetBuf failed again");
        expectAnswer();
        set(VI_ATTR_TMO_VALUE, kShortTimeoutMs);
        if (ask(Answer::None) && isAnswered())
            blame("a query without an answer had one");
        set(VI_ATTR_TMO_VALUE, kTimeoutMs);
        expectAnswer();
    }

    /// @return whether the query has gone
    bool ask(Answer answer) { return write(queryOf(++number_, answer), kTimeoutMs) >= 0; }

    /// Reads; a reply that comes must be that to the last query.
    bool isAnswered() { return read(replyOf(number_), kTimeoutMs) >= 0; }

    /// A session on which one call has failed goes on with the next query, or the one behind it.
    void expectAnswer()
    {
        for (int trial = 0; trial < 3; ++trial) {
            if (ask(Answer::Whole)) {
                if (isAnswered())
                    return;
                awaitArrival();
            }
        }
        blame("the session is of no use any more");
    }

    /// A query is given up, and its answer arrives.
    void leaveAnAnswer()
    {
        set(VI_ATTR_TMO_VALUE, VI_TMO_IMMEDIATE);
        if (ask(Answer::Late)) {
            if (isAnswered())
                blame("a late answer was there already");
            instrument_.release();
            awaitArrival();
        }
        set(VI_ATTR_TMO_VALUE, kTimeoutMs);
    }

    void awaitArrival() const
    {
        kvxDisarmFailingCall();
        instrument_.awaitAnswer(number_);
        awaitInput();
        kvxResumeFailingCall();
    }

    void awaitInput() const
    {
        // On a socket it is there by now.
        ViUInt32 available = 0;
        const auto end = steady_clock::now() + std::chrono::seconds(5);
        while (steady_clock::now() < end) {
            if (viGetAttribute(session(), VI_ATTR_ASRL_AVAIL_NUM, &available) < 0 ||
                available >= replyOf(number_).size())
                return;
            std::this_thread::yield();
        }
    }

    ViStatus clear()
    {
        return timed("viClear", kTimeoutMs, [this] { return viClear(session()); });
    }

    ViStatus flush()
    {
        return timed("viSetBuf", kTimeoutMs, [this] { return viSetBuf(session(), VI_IO_IN_BUF, 4096); });
    }

    Instrument& instrument_;
    int number_ = 0;
};

template <class Peer>
void expectNoHarm(const char* name)
{
    constexpr std::array<int, 6> kErrors{EINTR, EAGAIN, ECONNRESET, ENOSPC, EMFILE, kShortTransfer};
    kvxtest::Tally tally(name);
    kvxtest::failEachCall(kErrors, tally, [](const kvxtest::FailingCall& failure, auto look) {
        Peer instrument;
        Life life(instrument, failure);
        life.run();
        look(life);
    });
}

TEST(VisaTorture, CallsOfASocketThatFailOnceLeaveNothingBehindAndNoWrongReply)
{
    expectNoHarm<SocketInstrument>("VISA: the n-th call of the system fails, socket");
}

TEST(VisaTorture, CallsOfASerialLineThatFailOnceLeaveNothingBehindAndNoWrongReply)
{
    expectNoHarm<SerialInstrument>("VISA: the n-th call of the system fails, serial line");
}

} // namespace
