#pragma once

#include <memory>
#include <string>

namespace kvxtest
{

/// The other end of a serial line: the master of a pseudo terminal. Under Wine it is one of the machine that Wine runs
/// on, with the name of a port of Windows (serial_line.py).
class SerialPeer
{
public:
    SerialPeer();
    ~SerialPeer();
    SerialPeer(const SerialPeer&) = delete;
    SerialPeer& operator=(const SerialPeer&) = delete;

    /// The name by which a session opens the line.
    std::string resource() const;

    /// The number in the resource's name; 0 without one.
    unsigned short board() const;

    /// Names the device in an environment variable, for the life of the peer. For tests with one thread.
    void publishAs(const std::string& variable);

    void send(const std::string& bytes) const;

    /// Waits for exactly this many bytes.
    std::string receive(std::size_t count) const;

    void hangUp();

private:
    struct Line;
    std::unique_ptr<Line> line_;
};

} // namespace kvxtest
