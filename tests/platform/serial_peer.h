#pragma once

#include <string>

namespace kvxtest
{

/// The other end of a serial line: the master of a pseudo terminal.
class SerialPeer
{
public:
    SerialPeer();
    ~SerialPeer();
    SerialPeer(const SerialPeer&) = delete;
    SerialPeer& operator=(const SerialPeer&) = delete;
    SerialPeer(SerialPeer&&) = delete;
    SerialPeer& operator=(SerialPeer&&) = delete;

    /// The device that a session opens, such as /dev/pts/3.
    const std::string& path() const { return path_; }
    std::string resource() const { return "ASRL" + path_ + "::INSTR"; }

    void send(const std::string& bytes) const;

    /// Waits for exactly this many bytes.
    std::string receive(std::size_t count) const;

    void hangUp();

private:
    int master_ = -1;
    std::string path_;
};

} // namespace kvxtest
