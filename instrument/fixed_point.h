#pragma once

#include <cstddef>
#include <string>

namespace TSRO
{

/// The decimals of a number in a command.
inline constexpr int kDecimals = 6;

/// Whether appendFixedPoint() spells this number: levels and durations, but neither zero, negative, tiny, huge nor
/// NaN.
constexpr bool isFixedPoint(double number)
{
    // Below 2^32 in front of the point, and behind it a multiple of 2^-64.
    return number >= 0x1p-12 && number < 0x1p32;
}

/// As "%f" spells it, to the last digit: the exact value, rounded to the nearest and half to even. It halves the time
/// that a command takes with std::to_chars: benchmarks/README.md has the figures.
void appendFixedPoint(std::string& line, double number);

} // namespace TSRO
