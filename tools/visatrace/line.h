#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace visatrace
{

/// A line of the trace in the making. It allocates nothing; what is beyond its room is left out, but it always has its
/// end.
class Line
{
public:
    /// As many bytes as a pipe takes in one piece.
    static constexpr std::size_t kRoom = 4096;
    /// As many bytes of a text are shown. Four such texts, with each byte escaped, fit into a line.
    static constexpr std::size_t kShownBytes = 192;

    void text(std::string_view text);
    void number(std::uint64_t value);
    void signedNumber(std::int64_t value);
    /// "0x" and at least `digits` digits.
    void hex(std::uint64_t value, int digits);
    /// Seconds with six decimals.
    void seconds(std::uint64_t microseconds);
    /// In quotes, with what is not printable ASCII escaped as in C. Of many bytes the first and how many there are:
    /// "*IDN?\n", "\x00\x01"... (5000 bytes).
    void quoted(std::span<const unsigned char> bytes);

    /// The line with its end, which may be asked for once.
    std::string_view finish();

private:
    std::array<char, kRoom> characters_;
    std::size_t size_ = 0;
};

} // namespace visatrace
