#include "instrument/reply_parsing.h"

#include "base/ascii.h"
#include "base/failures.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace TSRO
{
namespace
{

bool beginsWithSign(std::string_view text)
{
    return !text.empty() && (text.front() == '-' || text.front() == '+');
}

/// A number's sign and what follows it.
struct SignedText
{
    bool negative;
    std::string_view magnitude;
};

SignedText splitSign(std::string_view text)
{
    text = base::ascii::skipBlanks(text);
    if (!beginsWithSign(text))
        return {false, text};
    return {text.front() == '-', text.substr(1)};
}

constexpr bool isHexDigit(char c)
{
    return base::ascii::isDigit(c) || (base::ascii::toLower(c) >= 'a' && base::ascii::toLower(c) <= 'f');
}

/// The place behind the characters of a class that stand at `at`.
template <class Class>
std::size_t endOfRun(std::string_view text, std::size_t at, Class inClass)
{
    while (at < text.size() && inClass(text[at]))
        ++at;
    return at;
}

/// The exponent of a hexadecimal number that ends at `at`, as a place behind it; `at` when there is none.
std::size_t endOfExponent(std::string_view text, std::size_t at)
{
    if (at >= text.size() || base::ascii::toLower(text[at]) != 'p')
        return at;
    const std::size_t digits = beginsWithSign(text.substr(at + 1)) ? at + 2 : at + 1;
    const std::size_t end = endOfRun(text, digits, base::ascii::isDigit);
    return end > digits ? end : at;
}

/// The hexadecimal number at the front of `text`, without its "0x"; empty when there is none.
std::string_view hexadecimalNumber(std::string_view text)
{
    if (text.size() < 2 || text[0] != '0' || base::ascii::toLower(text[1]) != 'x')
        return {};
    text.remove_prefix(2);
    const std::size_t whole = endOfRun(text, 0, isHexDigit);
    const bool hasPoint = whole < text.size() && text[whole] == '.';
    const std::size_t end = hasPoint ? endOfRun(text, whole + 1, isHexDigit) : whole;
    const std::size_t digits = hasPoint ? end - 1 : end;
    return digits == 0 ? std::string_view() : text.substr(0, endOfExponent(text, end));
}

/// Reads on through digits, which join those that have been read; returns the place behind them.
const char* takeDigits(const char* at, const char* end, std::int64_t& number)
{
    for (; at != end; ++at) {
        const auto digit = static_cast<unsigned>(*at - '0');
        if (digit > 9)
            break;
        number = 10 * number + digit;
    }
    return at;
}

/// The value of few digits with at most one point among them, as nearly all replies are; nothing for other texts. The
/// quotient of two exact numbers is the double nearest to the text.
std::optional<double> shortDecimal(std::string_view text)
{
    // 10^15 is below 2^53. A host that calculates with more digits would round twice.
    constexpr std::size_t kMostCharacters = 15;
    constexpr bool roundsOnce = FLT_EVAL_METHOD == 0;
    static constexpr std::array<double, kMostCharacters> kPowers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
    if (!roundsOnce || text.size() > kMostCharacters)
        return std::nullopt;
    const char* const end = text.data() + text.size();
    std::int64_t digits = 0;
    const char* const point = takeDigits(text.data(), end, digits);
    if (point == end)
        return text.empty() ? std::nullopt : std::optional(static_cast<double>(digits));
    if (*point != '.' || takeDigits(point + 1, end, digits) != end || text.size() == 1)
        return std::nullopt;
    return static_cast<double>(digits) / kPowers[static_cast<std::size_t>(end - point) - 1];
}

std::from_chars_result convertMagnitude(std::string_view magnitude, double& value)
{
    // std::from_chars takes a minus sign, which stands in front of the magnitude or nowhere.
    if (beginsWithSign(magnitude))
        return {magnitude.data(), std::errc::invalid_argument};
    const std::string_view hexadecimal = hexadecimalNumber(magnitude);
    const auto convert = [&value](std::string_view text, std::chars_format format) {
        return std::from_chars(text.data(), text.data() + text.size(), value, format);
    };
    return hexadecimal.empty() ? convert(magnitude, std::chars_format::general)
                               : convert(hexadecimal, std::chars_format::hex);
}

ViInt32 parseInteger(std::string_view reply, const char* noNumber, const char* tooLarge)
{
    // from_chars knows the minus sign; a plus sign is ours to skip.
    std::string_view digits = base::ascii::skipBlanks(reply);
    if (!digits.empty() && digits.front() == '+') {
        digits.remove_prefix(1);
        if (beginsWithSign(digits))
            throw std::invalid_argument(noNumber);
    }
    ViInt32 value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::invalid_argument)
        throw std::invalid_argument(noNumber);
    if (result.ec == std::errc::result_out_of_range)
        throw std::out_of_range(tooLarge);
    return value;
}

} // namespace

bool parseBoolean(std::string_view reply)
{
    const std::string_view word = reply.substr(0, reply.find_first_not_of("ONOFF10"));
    if (word == "ON" || word == "1")
        return true;
    if (word == "OFF" || word == "0")
        return false;
    throw std::invalid_argument("Visa::parseBool Unknown ret:" + std::string(reply));
}

double parseDouble(std::string_view reply)
{
    const SignedText text = splitSign(reply);
    if (const auto number = shortDecimal(text.magnitude))
        return text.negative ? -*number : *number;
    double value = 0.0;
    const auto result = convertMagnitude(text.magnitude, value);
    if (result.ec == std::errc::invalid_argument)
        throw std::invalid_argument("invalid stod argument");
    if (result.ec == std::errc::result_out_of_range)
        throw std::out_of_range("stod argument out of range");
    return text.negative ? -value : value;
}

ViInt32 parseInt(std::string_view reply)
{
    return parseInteger(reply, "invalid stoi argument", "stoi argument out of range");
}

ViInt32 parseLong(std::string_view reply)
{
    return parseInteger(reply, "invalid stol argument", "stol argument out of range");
}

std::size_t ReplyFields::count() const
{
    return reply_.empty() ? 0 : static_cast<std::size_t>(std::count(reply_.begin(), reply_.end(), ',')) + 1;
}

std::string_view ReplyFields::operator[](std::size_t index) const
{
    if (reply_.empty())
        base::throwMissingField();
    std::string_view rest = reply_;
    for (; index > 0; --index) {
        const std::size_t comma = rest.find(',');
        if (comma == std::string_view::npos)
            base::throwMissingField();
        rest.remove_prefix(comma + 1);
    }
    return rest.substr(0, rest.find(','));
}

} // namespace TSRO
