#include "tools/kvx2800t/command_line/units.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace command_line
{
namespace
{

struct Unit
{
    std::string_view name; ///< in lower case
    Quantity quantity;
    double factor;
};

constexpr auto kUnits = std::to_array<Unit>({
    {"v", Quantity::Voltage, 1.0},
    {"mv", Quantity::Voltage, 1e-3},
    {"uv", Quantity::Voltage, 1e-6},
    {"kv", Quantity::Voltage, 1e3},
    {"a", Quantity::Current, 1.0},
    {"ma", Quantity::Current, 1e-3},
    {"ua", Quantity::Current, 1e-6},
    {"w", Quantity::Power, 1.0},
    {"mw", Quantity::Power, 1e-3},
    {"kw", Quantity::Power, 1e3},
    {"s", Quantity::Time, 1.0},
    {"ms", Quantity::Time, 1e-3},
    {"us", Quantity::Time, 1e-6},
    {"min", Quantity::Time, 60.0},
    {"h", Quantity::Time, 3600.0},
});

struct Presentation
{
    std::string_view unit;
    std::string_view example;
};

/// In the order of Quantity.
constexpr auto kPresentations = std::to_array<Presentation>({
    {"V", "a voltage, such as 5V or 500mV"},
    {"A", "a current, such as 1.5A or 500mA"},
    {"W", "a power, such as 10W"},
    {"s", "a time, such as 100ms or 2s"},
});

const Presentation& presentationOf(Quantity quantity)
{
    return kPresentations[static_cast<std::size_t>(quantity)];
}

/// A number and what is behind it.
struct SplitNumber
{
    double number = 0.0;
    std::string_view rest;
};

std::optional<SplitNumber> splitNumber(std::string_view text)
{
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    // "inf" and "nan" are no numbers here.
    if (text.find_first_of("0123456789.") != (text.starts_with('-') ? 1U : 0U))
        return std::nullopt;
    SplitNumber split;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), split.number);
    if (error != std::errc() || !std::isfinite(split.number))
        return std::nullopt;
    split.rest = text.substr(static_cast<std::size_t>(end - text.data()));
    return split;
}

/// In front of a unit a capital M is mega, which no supply gives: a slip of the finger is no thousandth.
bool isMega(std::string_view unit)
{
    return unit.size() == 2 && unit.front() == 'M';
}

const Unit* findUnit(std::string_view text)
{
    if (isMega(text))
        return nullptr;
    std::string lower(text);
    // Not std::tolower, which asks the locale.
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto* const unit =
        std::find_if(kUnits.begin(), kUnits.end(), [&lower](const Unit& known) { return known.name == lower; });
    return unit == kUnits.end() ? nullptr : unit;
}

} // namespace

std::optional<Measure> parseMeasure(std::string_view text)
{
    auto split = splitNumber(text);
    if (!split)
        return std::nullopt;
    if (split->rest.starts_with(' '))
        split->rest.remove_prefix(1);
    const Unit* const unit = findUnit(split->rest);
    if (unit == nullptr || !std::isfinite(split->number * unit->factor))
        return std::nullopt;
    return Measure{unit->quantity, split->number * unit->factor};
}

std::optional<double> parseQuantity(std::string_view text, Quantity quantity)
{
    const auto split = splitNumber(text);
    if (split && split->rest.empty())
        return split->number;
    const auto measure = parseMeasure(text);
    return measure && measure->quantity == quantity ? std::optional(measure->value) : std::nullopt;
}

std::string decimalText(double value, int decimals)
{
    // The largest double has 309 digits in front of the point.
    std::array<char, 400> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return {text.data(), result.ptr};
}

std::string quantityText(double value, Quantity quantity)
{
    if (!std::isfinite(value))
        return "-";
    return decimalText(value, 3) + ' ' + std::string(presentationOf(quantity).unit);
}

std::string_view example(Quantity quantity)
{
    return presentationOf(quantity).example;
}

} // namespace command_line
