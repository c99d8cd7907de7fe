#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace kvxtest
{

/// A raw socket on the loopback interface that speaks in lines. Whatever takes longer than the hang guard of one
/// minute, or finds the connection ended, throws std::system_error.
class LineClient
{
public:
    explicit LineClient(unsigned short port);
    ~LineClient();

    LineClient(LineClient&&) noexcept;
    LineClient& operator=(LineClient&&) noexcept;
    LineClient(const LineClient&) = delete;
    LineClient& operator=(const LineClient&) = delete;

    /// Sends the bytes as they are.
    void send(std::string_view bytes);

    /// The next line, without its line feed and otherwise byte for byte.
    std::string readLine();

    /// Exactly this many bytes.
    std::string readBytes(std::size_t count);

    /// Sends a line and reads one.
    std::string query(std::string_view line);

    /// Whether the other side ends the connection; bytes that still come are dropped.
    bool waitForEnd();

private:
    struct Link;
    std::unique_ptr<Link> link_;
};

} // namespace kvxtest
