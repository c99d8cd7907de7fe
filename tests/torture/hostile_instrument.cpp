#include "tests/torture/hostile_instrument.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace kvxtest
{
namespace
{

int checked(int result, const char* what)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return result;
}

/// What both kinds of line do with their descriptor, and a pipe that ends its waits.
class DescriptorLine : public HostileLine
{
public:
    DescriptorLine()
    {
        // A program that has gone is told by the write itself.
        std::signal(SIGPIPE, SIG_IGN);
        checked(::pipe(shut_.data()), "pipe");
    }
    DescriptorLine(const DescriptorLine&) = delete;
    DescriptorLine& operator=(const DescriptorLine&) = delete;
    ~DescriptorLine() override
    {
        ::close(shut_[0]);
        ::close(shut_[1]);
    }

    std::string receive() override
    {
        std::array<char, 4096> bytes{};
        while (waitFor(connection(), POLLIN)) {
            const ssize_t count = ::read(connection(), bytes.data(), bytes.size());
            if (count > 0)
                return {bytes.data(), static_cast<std::size_t>(count)};
            if (count == 0 || !isPassing())
                return {};
            ::usleep(1000);
        }
        return {};
    }

    void send(const std::string& bytes) override
    {
        std::size_t sent = 0;
        while (sent < bytes.size() && connection() >= 0 && waitFor(connection(), POLLOUT)) {
            const ssize_t count = ::write(connection(), bytes.data() + sent, bytes.size() - sent);
            if (count < 0 && errno != EAGAIN && errno != EINTR)
                return;
            sent += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }

    void shut() override { static_cast<void>(::write(shut_[1], "", 1)); }

protected:
    virtual int connection() const = 0;
    /// Whether a failed read may be followed by another.
    virtual bool isPassing() const { return errno == EINTR || errno == EAGAIN; }

    /// @return false when the line is shut
    bool waitFor(int descriptor, short events) const
    {
        std::array<pollfd, 2> polled{{{descriptor, events, 0}, {shut_[0], POLLIN, 0}}};
        while (::poll(polled.data(), polled.size(), -1) < 0 && errno == EINTR) {
        }
        return polled[1].revents == 0;
    }

private:
    std::array<int, 2> shut_{};
};

class SocketLine : public DescriptorLine
{
public:
    SocketLine() : listening_(checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"))
    {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address_;
        checked(::bind(listening_, reinterpret_cast<sockaddr*>(&address_), size), "bind");
        checked(::listen(listening_, 8), "listen");
        checked(::getsockname(listening_, reinterpret_cast<sockaddr*>(&address_), &size), "getsockname");
    }
    SocketLine(const SocketLine&) = delete;
    SocketLine& operator=(const SocketLine&) = delete;
    ~SocketLine() override
    {
        hangUp(false);
        ::close(listening_);
    }

    bool accept() override
    {
        if (!waitFor(listening_, POLLIN))
            return false;
        connection_ = ::accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        return true;
    }

    void hangUp(bool abruptly) override
    {
        if (connection_ < 0)
            return;
        const linger abort{1, 0};
        if (abruptly)
            ::setsockopt(connection_, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
        ::close(connection_);
        connection_ = -1;
    }

    std::string resource() const override
    {
        return "TCPIP0::127.0.0.1::" + std::to_string(ntohs(address_.sin_port)) + "::SOCKET";
    }

protected:
    int connection() const override { return connection_; }

private:
    int listening_;
    sockaddr_in address_{};
    int connection_ = -1;
};

class TerminalLine : public DescriptorLine
{
public:
    TerminalLine() : master_(checked(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "posix_openpt"))
    {
        checked(::grantpt(master_), "grantpt");
        checked(::unlockpt(master_), "unlockpt");
        checked(::fcntl(master_, F_SETFL, O_NONBLOCK), "fcntl");
        std::array<char, 128> name{};
        checked(-::ptsname_r(master_, name.data(), name.size()), "ptsname_r");
        name_ = name.data();
        // Held open, so that the line stays while no program has it.
        held_ = checked(::open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), "open");
        termios raw{};
        ::tcgetattr(held_, &raw);
        ::cfmakeraw(&raw);
        ::tcsetattr(held_, TCSANOW, &raw);
    }
    TerminalLine(const TerminalLine&) = delete;
    TerminalLine& operator=(const TerminalLine&) = delete;
    ~TerminalLine() override
    {
        hangUp(false);
        ::close(held_);
    }

    bool accept() override
    {
        const bool isFirst = !isTaken_;
        isTaken_ = true;
        return isFirst;
    }

    void hangUp(bool /*abruptly*/) override
    {
        if (master_ >= 0)
            ::close(master_);
        master_ = -1;
    }

    std::string resource() const override { return "ASRL" + name_ + "::INSTR"; }

protected:
    int connection() const override { return master_; }

private:
    int master_;
    int held_ = -1;
    std::string name_;
    bool isTaken_ = false;
};

} // namespace

std::unique_ptr<HostileLine> hostileSocket()
{
    return std::make_unique<SocketLine>();
}

std::unique_ptr<HostileLine> hostileTerminal()
{
    return std::make_unique<TerminalLine>();
}

HostileInstrument::HostileInstrument(std::unique_ptr<HostileLine> line, std::size_t attacked, Malice malice)
    : line_(std::move(line)), attacked_(attacked), malice_(std::move(malice)), server_([this] { serve(); })
{
}

HostileInstrument::~HostileInstrument()
{
    isShut_ = true;
    line_->shut();
    server_.join();
}

void HostileInstrument::serve()
{
    while (!isShut_ && line_->accept()) {
        std::string received;
        for (std::string bytes = line_->receive(); !bytes.empty(); bytes = line_->receive()) {
            received += bytes;
            for (std::size_t end = 0; (end = received.find('\n')) != std::string::npos;) {
                answer(received.substr(0, end));
                received.erase(0, end + 1);
            }
        }
        line_->hangUp(false);
    }
}

void HostileInstrument::answer(const std::string& message)
{
    if (message.find('?') == std::string::npos)
        return;
    ++queries_;
    const std::string reply = replyTo(message) + "\n";
    if (queries_ == attacked_)
        malice_(*line_, reply);
    else
        line_->send(reply);
    ++answered_;
}

std::string HostileInstrument::replyTo(const std::string& message) const
{
    if (message == "*IDN?")
        return "Tessaro Instruments,KVX2833T,SN1,V2.34";
    if (message == ":SOUR:Mode?")
        return "NORMAL";
    if (message == "*ESR?")
        return "0";
    // ":SOUR3:VOLT?" as the hundredth query is 3.0100.
    std::array<char, 32> level{};
    std::snprintf(level.data(), level.size(), "%c.%04u", message.size() > 5 ? message[5] : '0',
                  static_cast<unsigned>(queries_ % 10000));
    return level.data();
}

LevelReply HostileInstrument::read(double level)
{
    const double channel = std::floor(level + 0.00001);
    return {static_cast<int>(channel), static_cast<std::size_t>(std::lround((level - channel) * 10000.0))};
}

} // namespace kvxtest
