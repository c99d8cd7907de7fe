#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace command_line
{

/// What a number with a unit says, in volts, amperes, watts or seconds.
enum class Quantity
{
    Voltage,
    Current,
    Power,
    Time
};

struct Measure
{
    Quantity quantity = Quantity::Voltage;
    double value = 0.0; ///< finite, in the unit itself
};

/// Reads a number with its unit: "5V", "500 mV", "1.5A", "100ms", "1e-3 V", "2 min". The unit may be written in any
/// letter case, a blank may stand in front of it. The decimal separator is a point in every locale. Nothing when the
/// text is anything else.
std::optional<Measure> parseMeasure(std::string_view text);

/// The same of one quantity alone, where the unit may be left out.
std::optional<double> parseQuantity(std::string_view text, Quantity quantity);

/// A value with three decimals and its unit: "5.000 V", "0.100 s". "-" for what is no finite number.
std::string quantityText(double value, Quantity quantity);

/// The number alone, with as many decimals.
std::string decimalText(double value, int decimals);

/// What a text for a quantity looks like, for messages: "a voltage, such as 500mV".
std::string_view example(Quantity quantity);

} // namespace command_line
