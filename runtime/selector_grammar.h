#pragma once

#include <IviVisaType.h>

#include <optional>
#include <string_view>

/// The text of repeated capability selectors, apart from what the names in it mean. Everything here takes time in
/// proportion to the text and a constant amount of stack.
namespace drivekit::selector
{

/// Whether `text` as a whole is a selector: levels separated by ':', each a comma-separated list of names and ranges,
/// in square brackets or not.
bool isWellFormed(std::string_view text);

/// Whether nothing but blanks stands in `text`.
bool isBlank(std::string_view text);

/// The number of levels of a well-formed selector.
std::size_t levelCount(std::string_view text);

/// Takes the next item off a well-formed level, without blanks and brackets; nothing when there is none left.
std::optional<std::string_view> nextItem(std::string_view& level);

/// Whether an item is a range.
bool isRange(std::string_view item);

/// A number as ranges spell theirs: plain decimal, without leading zeros, in 32 bits; nothing for any other text.
std::optional<ViInt32> plainDecimal(std::string_view digits);

/// Takes the next name or number off `text`, with what stands in front of it. Empty when none is left.
std::string_view nextToken(std::string_view& text);

/// The names base + first to base + last, numbers in plain decimal.
struct NameRange
{
    std::string_view base;
    ViInt32 first;
    ViInt32 last;
};

/// A range item. The second name may leave the base out, and may write it in another letter case. Nothing when the base
/// names differ; the order of the two numbers is not looked at.
/// @throws std::out_of_range "stoi argument out of range" for a number that 32 bits do not hold.
std::optional<NameRange> parseRange(std::string_view item);

/// The range of one name that `name` is, if it is a base and a number as ranges spell them: plain decimal in 32 bits.
std::optional<NameRange> asRange(std::string_view name);

} // namespace drivekit::selector
