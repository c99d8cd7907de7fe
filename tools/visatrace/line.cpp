#include "tools/visatrace/line.h"

#include <algorithm>
#include <charconv>

namespace visatrace
{
namespace
{

struct Escape
{
    unsigned char byte;
    std::string_view text;
};

constexpr std::array kEscapes{
    Escape{'\n', "\\n"}, Escape{'\r', "\\r"}, Escape{'\t', "\\t"}, Escape{'"', "\\\""}, Escape{'\\', "\\\\"},
};

constexpr std::string_view kDigits = "0123456789ABCDEF";

} // namespace

void Line::text(std::string_view text)
{
    // The last character is the end of the line.
    const std::size_t fitting = std::min(text.size(), kRoom - 1 - size_);
    std::ranges::copy(text.substr(0, fitting), characters_.begin() + static_cast<std::ptrdiff_t>(size_));
    size_ += fitting;
}

void Line::number(std::uint64_t value)
{
    std::array<char, 20> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

void Line::signedNumber(std::int64_t value)
{
    if (value < 0)
        text("-");
    number(value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value));
}

void Line::hex(std::uint64_t value, int digits)
{
    text("0x");
    for (int digit = 15; digit >= 0; --digit) {
        const std::uint64_t rest = value >> (4 * digit);
        if (rest != 0 || digit < digits)
            text(kDigits.substr(rest & 0xF, 1));
    }
}

void Line::seconds(std::uint64_t microseconds)
{
    constexpr std::uint64_t kSecond = 1'000'000;
    number(microseconds / kSecond);
    text(".");
    for (std::uint64_t unit = kSecond / 10; unit > 0; unit /= 10)
        number(microseconds / unit % 10);
}

void Line::quoted(std::span<const unsigned char> bytes)
{
    text("\"");
    for (const unsigned char byte : bytes.first(std::min(bytes.size(), kShownBytes))) {
        const auto escape = std::ranges::find(kEscapes, byte, &Escape::byte);
        const auto character = static_cast<char>(byte);
        if (escape != kEscapes.end())
            text(escape->text);
        else if (byte >= ' ' && byte <= '~')
            text({&character, 1});
        else {
            text("\\x");
            text(kDigits.substr(byte >> 4, 1));
            text(kDigits.substr(byte & 0xF, 1));
        }
    }
    text("\"");
    if (bytes.size() <= kShownBytes)
        return;
    text("... (");
    number(bytes.size());
    text(" bytes)");
}

std::string_view Line::finish()
{
    characters_[size_++] = '\n';
    return {characters_.data(), size_};
}

} // namespace visatrace
