#include "tools/kvx2800t/command_line/units.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace command_line
{
namespace
{

constexpr Quantity kQuantities[] = {Quantity::Voltage, Quantity::Current, Quantity::Power, Quantity::Time};

struct Reading
{
    const char* text;
    Quantity quantity;
    double value;
};

constexpr Reading kReadings[] = {
    {"5V", Quantity::Voltage, 5.0},     {"500 mV", Quantity::Voltage, 0.5}, {"1e-3 V", Quantity::Voltage, 0.001},
    {"-2.5v", Quantity::Voltage, -2.5}, {"+7V", Quantity::Voltage, 7.0},    {".5V", Quantity::Voltage, 0.5},
    {"1.5A", Quantity::Current, 1.5},   {"20 ma", Quantity::Current, 0.02}, {"15uA", Quantity::Current, 15e-6},
    {"10W", Quantity::Power, 10.0},     {"100ms", Quantity::Time, 0.1},     {"2 min", Quantity::Time, 120.0},
    {"1h", Quantity::Time, 3600.0},     {"2E1s", Quantity::Time, 20.0},
};

constexpr const char* kNoMeasures[] = {"",     "5",      "V",     "5 ",      "5  V",   " 5V",  "5V ",  "5,5V",
                                       "5X",   "5 m",    "infV",  "nanV",    "1e999V", "0x5V", "+-5V", "--5V",
                                       "5VV",  "1.2.3V", "1e400", "1e308kV", "e5V",    "- 5V", "five", "5\xB5V",
                                       "5\tV", "5MV",    "1 MA",  "2Mw",     "3MS"};

TEST(Units, ReadNumbersWithTheirUnit)
{
    for (const Reading& row : kReadings) {
        const auto measure = parseMeasure(row.text);
        ASSERT_TRUE(measure) << row.text;
        EXPECT_EQ(measure->quantity, row.quantity) << row.text;
        EXPECT_DOUBLE_EQ(measure->value, row.value) << row.text;
    }
}

TEST(Units, RefuseWhatIsNoNumberWithAUnit)
{
    for (const char* const text : kNoMeasures)
        EXPECT_FALSE(parseMeasure(text)) << text;
}

TEST(Units, MayBeLeftOutWhereTheQuantityIsKnown)
{
    EXPECT_EQ(parseQuantity("2.5", Quantity::Voltage), 2.5);
    EXPECT_EQ(parseQuantity("2.5", Quantity::Time), 2.5);
    EXPECT_EQ(parseQuantity("250ms", Quantity::Time), 0.25);
    EXPECT_EQ(parseQuantity("2.5V", Quantity::Current), std::nullopt);
    EXPECT_EQ(parseQuantity("", Quantity::Current), std::nullopt);
}

TEST(Units, ArePrintedWithThreeDecimals)
{
    EXPECT_EQ(quantityText(5.0, Quantity::Voltage), "5.000 V");
    EXPECT_EQ(quantityText(-0.0125, Quantity::Current), "-0.013 A");
    EXPECT_EQ(quantityText(1234.5678, Quantity::Power), "1234.568 W");
    EXPECT_EQ(quantityText(0.1, Quantity::Time), "0.100 s");
}

TEST(Units, NoNumberIsADash)
{
    EXPECT_EQ(quantityText(std::nan(""), Quantity::Voltage), "-");
    EXPECT_EQ(quantityText(std::numeric_limits<double>::infinity(), Quantity::Time), "-");
}

TEST(Units, WhatIsPrintedIsReadAgain)
{
    std::mt19937 generator(17);
    std::uniform_real_distribution<double> values(-1e6, 1e6);
    for (int round = 0; round < 2000; ++round) {
        const Quantity quantity = kQuantities[round % 4];
        const double value = values(generator);
        const auto measure = parseMeasure(quantityText(value, quantity));
        ASSERT_TRUE(measure) << value;
        EXPECT_EQ(measure->quantity, quantity);
        EXPECT_NEAR(measure->value, value, 0.0005 + 1e-9);
        EXPECT_EQ(quantityText(measure->value, quantity), quantityText(value, quantity));
    }
}

TEST(Units, NoTextOfAnyBytesIsReadAsMoreThanItSays)
{
    const std::string alphabet = "0123456789.+-eEmukKvVaAwWsShinf ,\t\xC2\xB5";
    std::mt19937 generator(42);
    std::uniform_int_distribution<std::size_t> index(0, alphabet.size() - 1);
    std::uniform_int_distribution<int> length(0, 9);
    int accepted = 0;
    for (int round = 0; round < 50000; ++round) {
        std::string text;
        for (int count = length(generator); count > 0; --count)
            text += alphabet[index(generator)];
        if (const auto measure = parseMeasure(text)) {
            ++accepted;
            EXPECT_TRUE(std::isfinite(measure->value)) << text;
            EXPECT_EQ(text.find_first_of(",\t\xC2\xB5"), std::string::npos) << text;
            EXPECT_FALSE(parseMeasure(text + "1")) << text;
        }
    }
    EXPECT_GT(accepted, 100);
}

TEST(Units, DoNotDependOnTheLocale)
{
    const kvxtest::CommaLocale locale;
    ASSERT_EQ(locale.problem(), "");
    ASSERT_TRUE(parseMeasure("1.5V"));
    EXPECT_EQ(parseMeasure("1.5V")->value, 1.5);
    EXPECT_FALSE(parseMeasure("1,5V"));
    EXPECT_EQ(quantityText(1.5, Quantity::Voltage), "1.500 V");
}

} // namespace
} // namespace command_line
