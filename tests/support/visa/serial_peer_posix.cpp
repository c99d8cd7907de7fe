#include "tests/support/visa/serial_peer.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <system_error>

namespace kvxtest
{

struct SerialPeer::Line
{
    int master = -1;
    std::string path{};
    std::string variable{};
};

SerialPeer::SerialPeer() : line_(new Line{::posix_openpt(O_RDWR | O_NOCTTY)})
{
    std::array<char, 128> name{};
    if (line_->master < 0 || ::grantpt(line_->master) != 0 || ::unlockpt(line_->master) != 0 ||
        ::ptsname_r(line_->master, name.data(), name.size()) != 0)
        throw std::system_error(errno, std::generic_category(), "pseudo terminal");
    line_->path = name.data();
}

SerialPeer::~SerialPeer()
{
    hangUp();
    if (!line_->variable.empty())
        ::unsetenv(line_->variable.c_str()); // NOLINT(concurrency-mt-unsafe): one thread
}

std::string SerialPeer::resource() const
{
    return "ASRL" + line_->path + "::INSTR";
}

unsigned short SerialPeer::board() const
{
    return 0;
}

void SerialPeer::publishAs(const std::string& variable)
{
    line_->variable = variable;
    ::setenv(variable.c_str(), line_->path.c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
}

void SerialPeer::send(const std::string& bytes) const
{
    const ssize_t written = ::write(line_->master, bytes.data(), bytes.size());
    if (written != static_cast<ssize_t>(bytes.size()))
        throw std::system_error(errno, std::generic_category(), "pseudo terminal");
}

std::string SerialPeer::receive(std::size_t count) const
{
    std::string bytes;
    while (bytes.size() < count) {
        char byte = 0;
        if (::read(line_->master, &byte, 1) != 1)
            break;
        bytes.push_back(byte);
    }
    return bytes;
}

void SerialPeer::hangUp()
{
    if (line_->master >= 0)
        ::close(line_->master);
    line_->master = -1;
}

} // namespace kvxtest
