#include "serial_peer.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <system_error>

namespace kvxtest
{

SerialPeer::SerialPeer() : master_(::posix_openpt(O_RDWR | O_NOCTTY))
{
    std::array<char, 128> name{};
    if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0 ||
        ::ptsname_r(master_, name.data(), name.size()) != 0)
        throw std::system_error(errno, std::generic_category(), "pseudo terminal");
    path_ = name.data();
}

SerialPeer::~SerialPeer()
{
    hangUp();
}

void SerialPeer::send(const std::string& bytes) const
{
    const ssize_t written = ::write(master_, bytes.data(), bytes.size());
    if (written != static_cast<ssize_t>(bytes.size()))
        throw std::system_error(errno, std::generic_category(), "pseudo terminal");
}

std::string SerialPeer::receive(std::size_t count) const
{
    std::string bytes;
    while (bytes.size() < count) {
        char byte = 0;
        if (::read(master_, &byte, 1) != 1)
            break;
        bytes.push_back(byte);
    }
    return bytes;
}

void SerialPeer::hangUp()
{
    if (master_ >= 0)
        ::close(master_);
    master_ = -1;
}

} // namespace kvxtest
