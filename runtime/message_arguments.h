#pragma once

#include "base/printable.h"

#include <IviVisaType.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

/// What stands in the places of messages, without an allocation.
namespace drivekit
{

/// A number as a message argument, in decimal.
class DecimalArgument
{
public:
    template <class Integer>
    explicit DecimalArgument(Integer number)
    {
        const auto end = std::to_chars(text_.data(), text_.data() + text_.size(), number).ptr;
        length_ = static_cast<std::size_t>(end - text_.data());
    }

    operator std::string_view() const { return {text_.data(), length_}; } // NOLINT(google-explicit-constructor)

private:
    std::array<char, 24> text_{};
    std::size_t length_ = 0;
};

/// A status as a message argument: "0xBFFF0015".
class HexadecimalArgument
{
public:
    explicit HexadecimalArgument(ViStatus status)
    {
        auto bits = static_cast<ViUInt32>(status);
        for (std::size_t place = text_.size() - 1; place >= 2; --place, bits >>= 4U)
            text_[place] = base::kHexadecimalDigits[bits & 0xFU];
    }

    operator std::string_view() const { return {text_.data(), text_.size()}; } // NOLINT(google-explicit-constructor)

private:
    std::array<char, 10> text_{'0', 'x'};
};

/// A number as a message argument: as short as it can be.
class NumberArgument
{
public:
    explicit NumberArgument(double number)
    {
        length_ = static_cast<std::size_t>(std::to_chars(text_.data(), text_.data() + text_.size(), number).ptr -
                                           text_.data());
    }

    operator std::string_view() const { return {text_.data(), length_}; } // NOLINT(google-explicit-constructor)

private:
    std::array<char, 32> text_{};
    std::size_t length_ = 0;
};

/// A reply as a message argument: its first characters, those that do not print as "\xHH".
class QuotedReply
{
public:
    explicit QuotedReply(std::string_view reply)
    {
        for (const char c : reply.substr(0, kQuotedReply))
            append(base::PrintableByte(c).text());
        if (reply.size() > kQuotedReply)
            append("...");
    }

    operator std::string_view() const { return {text_.data(), length_}; } // NOLINT(google-explicit-constructor)

private:
    static constexpr std::size_t kQuotedReply = 80;
    static constexpr std::size_t kLongestCharacter = 4;

    void append(std::string_view text)
    {
        for (const char c : text)
            text_[length_++] = c;
    }

    std::array<char, kQuotedReply * kLongestCharacter + 3> text_{};
    std::size_t length_ = 0;
};

} // namespace drivekit
