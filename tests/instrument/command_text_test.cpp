#include "instrument/command_text.h"

#include "tests/support/thrown.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using kvxtest::kInvalidKey;
using kvxtest::throwsExactly;
using TSRO::appendArgument;
using TSRO::appendArguments;
using TSRO::ChannelName;
using TSRO::Header;

std::string text(const Header& header)
{
    std::string line;
    header.appendTo(line);
    return line;
}

std::string query(const Header& header)
{
    std::string line;
    header.appendQueryTo(line);
    return line;
}

template <class Argument>
std::string argument(const Argument& value)
{
    std::string line;
    appendArgument(line, value);
    return line;
}

template <class... Arguments>
std::string arguments(const Arguments&... values)
{
    std::string line;
    appendArguments(line, values...);
    return line;
}

// ---- Headers

TEST(Header, StandsAsItIs)
{
    EXPECT_EQ(text("*CLS"), "*CLS");
    EXPECT_EQ(text(":OUTP:STAT"), ":OUTP:STAT");
    EXPECT_EQ(text(std::string_view(":SOUR:BLE")), ":SOUR:BLE");
}

TEST(Header, IsAppendedToWhatTheLineHolds)
{
    std::string line = "*CLS;";
    Header(":OUTP:STAT").appendTo(line);
    Header::ofSource(":SOUR:VOLT", 2).appendTo(line);
    EXPECT_EQ(line, "*CLS;:OUTP:STAT:SOUR2:VOLT");
}

TEST(Header, GetsAQuestionMarkAsAQuery)
{
    EXPECT_EQ(query(":OUTP:STAT"), ":OUTP:STAT?");
    EXPECT_EQ(query("*IDN"), "*IDN?");
    EXPECT_EQ(query(Header::ofSource(":SOUR:VOLT", 3)), ":SOUR3:VOLT?");
    EXPECT_EQ(query(Header::withSuffix(":ISUM{}:COND", 3)), ":ISUM3:COND?");
}

TEST(Header, NeverGetsASecondQuestionMark)
{
    EXPECT_EQ(query(":LIST:CYCLE?"), ":LIST:CYCLE?");
    EXPECT_EQ(query("*IDN?"), "*IDN?");
    EXPECT_EQ(query("?"), "?");
    EXPECT_EQ(query(":LIST?:CYCLE"), ":LIST?:CYCLE");
    EXPECT_EQ(query(Header::ofSource(":SOUR:VOLT?", 3)), ":SOUR3:VOLT?");
    EXPECT_EQ(query(Header::withSuffix(":ISUM{}:COND?", 3)), ":ISUM3:COND?");
}

TEST(SourceHeader, HasTheChannelInItsFirstNode)
{
    EXPECT_EQ(text(Header::ofSource(":SOUR:VOLT", 5)), ":SOUR5:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR:CURR:PROT:DEL:MODE", 1)), ":SOUR1:CURR:PROT:DEL:MODE");
    EXPECT_EQ(text(Header::ofSource("SOUR:VOLT", 2)), ":SOUR2:VOLT");
}

TEST(SourceHeader, ReplacesAnyFirstNodeThatBeginsWithSour)
{
    EXPECT_EQ(text(Header::ofSource(":SOURce:VOLT", 2)), ":SOUR2:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR4:VOLT", 2)), ":SOUR2:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR", 2)), ":SOUR2");
}

TEST(SourceHeader, GetsANodeInFrontWhenTheFirstOneIsAnother)
{
    EXPECT_EQ(text(Header::ofSource(":VOLT", 2)), ":SOUR2:VOLT");
    EXPECT_EQ(text(Header::ofSource(":OUTP:SOUR:VOLT", 2)), ":SOUR2:OUTP:SOUR:VOLT");
    EXPECT_EQ(text(Header::ofSource(":sour:VOLT", 2)), ":SOUR2:sour:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOU:VOLT", 2)), ":SOUR2:SOU:VOLT");
    EXPECT_EQ(text(Header::ofSource(": SOUR:VOLT", 2)), ":SOUR2: SOUR:VOLT");
}

TEST(SourceHeader, ExaminesOnlyTheFirstNode)
{
    EXPECT_EQ(text(Header::ofSource(":SOUR:SOUR:VOLT", 2)), ":SOUR2:SOUR:VOLT");
}

TEST(SourceHeader, LosesRepeatedAndTrailingColons)
{
    EXPECT_EQ(text(Header::ofSource("::SOUR:::VOLT::", 2)), ":SOUR2:VOLT");
}

TEST(SourceHeader, StaysEmptyWhenItIsEmpty)
{
    EXPECT_EQ(text(Header::ofSource("", 2)), "");
}

TEST(SourceHeader, SpellsAnyChannelNumberInDecimal)
{
    EXPECT_EQ(text(Header::ofSource(":SOUR:VOLT", 0)), ":SOUR0:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR:VOLT", 9)), ":SOUR9:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR:VOLT", 10)), ":SOUR10:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR:VOLT", 12)), ":SOUR12:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR:VOLT", -1)), ":SOUR-1:VOLT");
    EXPECT_EQ(text(Header::ofSource(":SOUR:VOLT", std::numeric_limits<ViInt32>::min())), ":SOUR-2147483648:VOLT");
}

std::string sourceHeaderByRegularExpression(const std::string& header, ViInt32 channel)
{
    static const std::regex kNode("[^:]+");
    std::vector<std::string> nodes(std::sregex_token_iterator(header.begin(), header.end(), kNode), {});
    if (!nodes.empty() && nodes.front().starts_with("SOUR"))
        nodes.erase(nodes.begin());
    nodes.insert(nodes.begin(), "SOUR" + std::to_string(channel));
    std::string composed;
    for (const std::string& node : nodes)
        composed += ":" + node;
    return composed;
}

TEST(SourceHeader, AgreesWithTheRegularExpressionOnGeneratedHeaders)
{
    static const std::vector<std::string> kPieces = {":",    ":",  ":", "SOUR", "SOURce", "sour", "SOU",
                                                     "VOLT", "ur", " ", "?",    "{}",     "\n",   "2"};
    std::mt19937 random(20240611);
    std::uniform_int_distribution<std::size_t> piece(0, kPieces.size() - 1);
    for (int i = 0; i < 5000; ++i) {
        std::string header = kPieces[piece(random)];
        for (std::size_t count = piece(random) / 2; count > 0; --count)
            header += kPieces[piece(random)];
        if (header.find_first_not_of(':') == std::string::npos)
            continue;
        ASSERT_EQ(text(Header::ofSource(header, 3)), sourceHeaderByRegularExpression(header, 3)) << header;
    }
}

TEST(SuffixedHeader, HasTheChannelInThePlaceOfTheBraces)
{
    EXPECT_EQ(text(Header::withSuffix(":STATus:QUEStionable:INSTrument:ISUMmary{}:CONDition?", 2)),
              ":STATus:QUEStionable:INSTrument:ISUMmary2:CONDition?");
    EXPECT_EQ(text(Header::withSuffix("{}", 6)), "6");
    EXPECT_EQ(text(Header::withSuffix(":ISUM{}:COND{}", 6)), ":ISUM6:COND{}");
    EXPECT_EQ(text(Header::withSuffix(":ISUM{}", 10)), ":ISUM10");
}

TEST(SuffixedHeader, StandsAsItIsWithoutBraces)
{
    EXPECT_EQ(text(Header::withSuffix(":ISUM:COND?", 2)), ":ISUM:COND?");
    EXPECT_EQ(text(Header::withSuffix("", 2)), "");
}

// ---- Arguments

TEST(Argument, IsTextAsItStands)
{
    EXPECT_EQ(argument(std::string_view("a b,\n")), "a b,\n");
    EXPECT_EQ(argument(std::string_view()), "");
}

TEST(Argument, IsOnOrOffForABoolean)
{
    EXPECT_EQ(argument(true), "ON");
    EXPECT_EQ(argument(false), "OFF");
}

TEST(Argument, IsDecimalForAnInteger)
{
    EXPECT_EQ(argument(ViInt32{0}), "0");
    EXPECT_EQ(argument(ViInt32{-113}), "-113");
    EXPECT_EQ(argument(std::numeric_limits<ViInt32>::max()), "2147483647");
    EXPECT_EQ(argument(std::numeric_limits<ViInt32>::min()), "-2147483648");
}

TEST(Argument, IsTheFirstKeywordOfAnEnumeration)
{
    EXPECT_EQ(argument(TSRO::SourceMode::Parallel), "PARA");
    EXPECT_EQ(argument(TSRO::CurrentRate::Rate8000), "8000");
}

TEST(Argument, IsTheChannelsFirstName)
{
    const std::vector<std::string> names = {"CH1", "CH2", "CH3", "CH4", "SER", "PAR"};
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(argument(ChannelName{static_cast<ViInt32>(i) + 1}), names[i]);
}

TEST(Argument, WithoutAKeywordIsAnInvalidKey)
{
    for (const ViInt32 channel : {ViInt32{0}, ViInt32{7}, ViInt32{-1}, std::numeric_limits<ViInt32>::max()})
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { argument(ChannelName{channel}); }));
    EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [] { argument(static_cast<TSRO::SourceMode>(3)); }));
    EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [] { argument(static_cast<TSRO::Pairing>(-1)); }));
}

TEST(Arguments, FollowABlankAndAreJoinedByCommas)
{
    EXPECT_EQ(arguments(ViInt32{10}), " 10");
    EXPECT_EQ(arguments(ChannelName{2}, true), " CH2,ON");
    EXPECT_EQ(arguments(ViInt32{3}, 5.0, 1.0, 0.1), " 3,5.000000,1.000000,0.100000");
    EXPECT_EQ(arguments(TSRO::ListTemplateObject::Voltage, 5.0), " V,5.000000");
}

// ---- "%f"

std::string printed(double value)
{
    // C libraries differ in whether this has a sign.
    if (std::isnan(value))
        return std::signbit(value) ? "-nan" : "nan";
    char digits[512];
    std::snprintf(digits, sizeof digits, "%f", value);
    return digits;
}

TEST(ANumber, HasSixDecimalsAndNoExponent)
{
    EXPECT_EQ(argument(5.0), "5.000000");
    EXPECT_EQ(argument(0.0), "0.000000");
    EXPECT_EQ(argument(-0.0), "-0.000000");
    EXPECT_EQ(argument(33.000001), "33.000001");
    EXPECT_EQ(argument(1e-7), "0.000000");
    EXPECT_EQ(argument(-1e-7), "-0.000000");
    EXPECT_EQ(argument(0.9999999), "1.000000");
    EXPECT_EQ(argument(1e15), "1000000000000000.000000");
}

TEST(ANumber, RoundsTiesToEven)
{
    EXPECT_EQ(argument(0.0000005), printed(0.0000005));
    EXPECT_EQ(argument(0.00390625 / 2), "0.001953");
    EXPECT_EQ(argument(0.5 + 1.0 / 128), "0.507812");
    EXPECT_EQ(argument(0.5 + 3.0 / 128), "0.523438");
}

TEST(ANumber, IsSpelledAsTheCLibrarySpellsTheExtremes)
{
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::max(), Limits::lowest(), Limits::min(), -Limits::min(), Limits::denorm_min(),
                               Limits::epsilon(), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
                               -Limits::quiet_NaN(), 1e22, 1e23, 9007199254740993.0})
        EXPECT_EQ(argument(value), printed(value));
}

TEST(ANumber, IsSpelledAsTheCLibrarySpellsRandomOnes)
{
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 50000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        ASSERT_EQ(argument(value), printed(value));
    }
}

TEST(ANumber, IsSpelledAsTheCLibrarySpellsLevels)
{
    std::mt19937_64 random(20240612);
    std::uniform_real_distribution<double> level(-100.0, 100.0);
    std::uniform_int_distribution<int> millionths(-100000000, 100000000);
    for (int i = 0; i < 50000; ++i) {
        const double value = level(random);
        ASSERT_EQ(argument(value), printed(value));
        const double tie = (millionths(random) + 0.5) / 1e6;
        ASSERT_EQ(argument(tie), printed(tie));
    }
}

TEST(ANumber, IsSpelledAsTheCLibrarySpellsNumbersOfEverySize)
{
    std::mt19937_64 random(20240613);
    std::uniform_real_distribution<double> mantissa(1.0, 2.0);
    for (int exponent = -30; exponent <= 40; ++exponent)
        for (int i = 0; i < 1000; ++i) {
            const double value = std::ldexp(mantissa(random), exponent);
            ASSERT_EQ(argument(value), printed(value));
            ASSERT_EQ(argument(-value), printed(-value));
        }
}

TEST(ANumber, IsSpelledAsTheCLibrarySpellsEveryTie)
{
    // Halves of a millionth are exact only in multiples of 1/128.
    for (const double whole : {0.0, 1.0, 32.0, 999.0, 4294967295.0})
        for (int i = 1; i < 128; i += 2)
            for (const double away : {0.0, 1e9}) {
                const double tie = whole + i / 128.0;
                ASSERT_EQ(argument(tie), printed(tie));
                ASSERT_EQ(argument(std::nextafter(tie, away)), printed(std::nextafter(tie, away)));
            }
}

TEST(ANumber, IsSpelledAsTheCLibrarySpellsTheNeighboursOfPowers)
{
    for (int exponent = -20; exponent <= 53; ++exponent)
        for (const double power : {std::ldexp(1.0, exponent), std::pow(10.0, exponent / 3)})
            for (const double value : {std::nextafter(power, 0.0), power, std::nextafter(power, 1e300)})
                ASSERT_EQ(argument(value), printed(value));
    EXPECT_EQ(argument(std::nextafter(4294967296.0, 0.0)), "4294967296.000000");
}

} // namespace
