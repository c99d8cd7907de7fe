#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

/// ASCII text as the instrument reads and writes it, whatever locale the process has chosen.
namespace kvxvirtual
{

/// IEEE 488.2 white space: every control character and the blank. A line feed never gets this far, it ends a message.
constexpr bool isBlank(char c)
{
    return static_cast<unsigned char>(c) <= 0x20;
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr char toUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool isLetter(char c)
{
    return toUpper(c) >= 'A' && toUpper(c) <= 'Z';
}

bool equalIgnoringCase(std::string_view left, std::string_view right);

/// `text` without the blanks around it.
std::string_view trimmed(std::string_view text);

/// Splits at the first blank: the word before it and the trimmed rest. `text` has no blanks in front.
struct WordAndRest
{
    std::string_view word;
    std::string_view rest;
};
WordAndRest splitWord(std::string_view text);

/// A decimal number with exactly `decimals` places, no exponent and never a negative zero.
std::string fixedText(double value, int decimals);

/// The whole of `text` as a decimal integer, or nothing.
std::optional<int> integerIn(std::string_view text);

/// Reads a number in front of `text` as std::from_chars does, except that one `+` may precede it and that a number too
/// small for a double is 0: "out of range" means too large.
std::from_chars_result decimalInFrontOf(std::string_view text, double& value);

/// The whole of `text` as a finite decimal number, or nothing.
std::optional<double> finiteNumberIn(std::string_view text);

/// Bytes on one printable line: `\\`, `\r`, `\n`, and `\xHH` for whatever else is not printable ASCII.
std::string escaped(std::string_view bytes);

/// The bytes that escaped() wrote; nothing when `text` holds an escape that it does not write.
std::optional<std::string> unescaped(std::string_view text);

} // namespace kvxvirtual
