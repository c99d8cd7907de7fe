#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace base
{

inline constexpr std::string_view kHexadecimalDigits = "0123456789ABCDEF";

/// A byte as a person reads it: itself, or "\xHH" where it does not print. A backslash does not, so that the text can
/// be told from what stands for another.
class PrintableByte
{
public:
    explicit constexpr PrintableByte(char byte)
    {
        const bool prints = byte >= ' ' && byte <= '~' && byte != '\\';
        if (prints) {
            text_[0] = byte;
            return;
        }
        const auto code = static_cast<unsigned char>(byte);
        text_ = {'\\', 'x', kHexadecimalDigits[code >> 4U], kHexadecimalDigits[code & 0xFU]};
        length_ = text_.size();
    }

    constexpr std::string_view text() const { return {text_.data(), length_}; }

private:
    std::array<char, 4> text_{};
    std::size_t length_ = 1;
};

} // namespace base
