#include "instrument/reply_parsing.h"

#include "tests/support/thrown.h"

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using kvxtest::throwsExactly;
using TSRO::parseBoolean;
using TSRO::parseDouble;
using TSRO::parseInt;
using TSRO::parseLong;
using TSRO::ReplyFields;

// ---- Booleans

TEST(ParseBoolean, ReadsTheFourWords)
{
    EXPECT_TRUE(parseBoolean("ON"));
    EXPECT_TRUE(parseBoolean("1"));
    EXPECT_FALSE(parseBoolean("OFF"));
    EXPECT_FALSE(parseBoolean("0"));
}

TEST(ParseBoolean, StopsAtTheFirstForeignCharacter)
{
    EXPECT_TRUE(parseBoolean("ON\n"));
    EXPECT_TRUE(parseBoolean("1\n"));
    EXPECT_TRUE(parseBoolean("1,0"));
    EXPECT_TRUE(parseBoolean("ON OFF"));
    EXPECT_FALSE(parseBoolean("OFF\r\n"));
    EXPECT_FALSE(parseBoolean("0.5"));
    EXPECT_FALSE(parseBoolean("0 volts"));
    EXPECT_TRUE(parseBoolean(std::string_view("ON\0X", 4)));
}

TEST(ParseBoolean, ThrowsTheWholeReplyForAnythingElse)
{
    const std::vector<std::string> replies = {
        "",  "2", "on", "Off", "ONOFF", "10",  "01",   "11", "00",       "OFFF",
        "O", "N", "OF", "ON1", "\n",    " ON", "TRUE", "-1", "OFF0\r\n", std::string(4096, 'O')};
    for (const std::string& reply : replies) {
        SCOPED_TRACE(testing::PrintToString(reply));
        EXPECT_TRUE(
            throwsExactly<std::invalid_argument>("Visa::parseBool Unknown ret:" + reply, [&] { parseBoolean(reply); }));
    }
}

// ---- Numbers

struct Number
{
    const char* text;
    double value;
};

TEST(ParseDouble, ReadsEverySpellingExactly)
{
    static constexpr Number kReplies[] = {{"5", 5.0},
                                          {"5.000000", 5.0},
                                          {"12.5", 12.5},
                                          {"-0.1", -0.1},
                                          {"+3.2", 3.2},
                                          {".5", 0.5},
                                          {"5.", 5.0},
                                          {"-0", -0.0},
                                          {"0.0", 0.0},
                                          {"1e3", 1000.0},
                                          {"1E-3", 0.001},
                                          {"1.5e+2", 150.0},
                                          {"1e", 1.0},
                                          {"1e+", 1.0},
                                          {"1ex", 1.0},
                                          {" \t\n\v\f\r7", 7.0},
                                          {"7 ", 7.0},
                                          {"7\r\n", 7.0},
                                          {"7V", 7.0},
                                          {"7,8", 7.0},
                                          {"1.2.3", 1.2},
                                          {"1_000", 1.0},
                                          {"0x10", 16.0},
                                          {"0X1.8p3", 12.0},
                                          {"-0xA.8", -10.5},
                                          {"0x.8", 0.5},
                                          {"0x", 0.0},
                                          {"0xg", 0.0},
                                          {"0x.", 0.0},
                                          {"0xp1", 0.0},
                                          {"0x1p", 1.0},
                                          {"0x-1", 0.0},
                                          {"0xinf", 0.0},
                                          {"0xnan", 0.0},
                                          {"0x0x1", 0.0},
                                          {"0x1p+-3", 1.0},
                                          {"0x1p--3", 1.0},
                                          {"1e+-3", 1.0},
                                          {"1.7976931348623157e308", std::numeric_limits<double>::max()},
                                          {"2.2250738585072014e-308", std::numeric_limits<double>::min()},
                                          {"inf", std::numeric_limits<double>::infinity()},
                                          {"INF", std::numeric_limits<double>::infinity()},
                                          {"-infinity", -std::numeric_limits<double>::infinity()},
                                          {"+Infinite", std::numeric_limits<double>::infinity()},
                                          {"0e999999999999999999", 0.0},
                                          {"0.1000000000000000055511151231257827021181583404541015625", 0.1}};
    for (const Number& number : kReplies) {
        SCOPED_TRACE(number.text);
        EXPECT_EQ(parseDouble(number.text), number.value);
        EXPECT_EQ(std::signbit(parseDouble(number.text)), std::signbit(number.value));
    }
}

TEST(ParseDouble, ReadsNoNumberAsNaN)
{
    for (const char* text : {"nan", "NaN", "+nan", "-NAN", "nan(12)", "nano", " nan"})
        EXPECT_TRUE(std::isnan(parseDouble(text))) << text;
}

TEST(ParseDouble, ReadsLongDigitStrings)
{
    EXPECT_EQ(parseDouble(std::string(100000, '0') + "1.5"), 1.5);
    EXPECT_EQ(parseDouble("0." + std::string(100000, '0') + "1e100001"), 1.0);
    EXPECT_EQ(parseDouble("1" + std::string(300, '0')), 1e300);
    EXPECT_TRUE(throwsExactly<std::out_of_range>("stod argument out of range",
                                                 [] { parseDouble("1" + std::string(100000, '0')); }));
}

TEST(ParseDouble, ThrowsForNoNumber)
{
    const std::vector<std::string> replies = {"",
                                              " ",
                                              "\r\n",
                                              "V",
                                              "-",
                                              "+",
                                              ".",
                                              "-.",
                                              "e5",
                                              ".e5",
                                              "+-5",
                                              "-+5",
                                              "--5",
                                              "++5",
                                              "- 5",
                                              "+ 5",
                                              "in",
                                              "na",
                                              ",5",
                                              "x10",
                                              std::string("\0005", 2),
                                              std::string(4096, ' ')};
    for (const std::string& reply : replies) {
        SCOPED_TRACE(testing::PrintToString(reply));
        EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stod argument", [&] { parseDouble(reply); }));
    }
}

TEST(ParseDouble, ThrowsForANumberOutOfRange)
{
    for (const char* reply :
         {"1e309", "-1e309", "1.8e308", "1e-400", "-1e-400", "1e999999999999999999", "1e-999999999999999999",
          "0x1p1024", "0x1p-1100", "0x1p99999999999999999999", "-0x1p-99999999999999999999"})
    {
        SCOPED_TRACE(reply);
        EXPECT_TRUE(throwsExactly<std::out_of_range>("stod argument out of range", [&] { parseDouble(reply); }));
    }
}

struct Integer
{
    const char* text;
    ViInt32 value;
};

TEST(ParseIntegers, ReadInDecimal)
{
    static constexpr Integer kReplies[] = {{"0", 0},
                                           {"32", 32},
                                           {"-113", -113},
                                           {"+7", 7},
                                           {" \t\n\v\f\r7", 7},
                                           {"007", 7},
                                           {"08", 8},
                                           {"0x10", 0},
                                           {"7.9", 7},
                                           {"1e3", 1},
                                           {"7\r\n", 7},
                                           {"7,8", 7},
                                           {"7 8", 7},
                                           {"-0", 0},
                                           {"2147483647", 2147483647},
                                           {"-2147483648", -2147483647 - 1},
                                           {"0000000000000000000000012", 12}};
    for (const Integer& number : kReplies) {
        SCOPED_TRACE(number.text);
        EXPECT_EQ(parseInt(number.text), number.value);
        EXPECT_EQ(parseLong(number.text), number.value);
    }
}

TEST(ParseIntegers, ThrowForNoNumber)
{
    const std::vector<std::string> replies = {"",
                                              " ",
                                              "\r\n",
                                              "x",
                                              "-",
                                              "+",
                                              "+-5",
                                              "-+5",
                                              "--5",
                                              "++5",
                                              "- 5",
                                              "+ 5",
                                              ".5",
                                              "inf",
                                              "nan",
                                              ",5",
                                              "\"5\"",
                                              std::string("\0005", 2),
                                              std::string(4096, ' ')};
    for (const std::string& reply : replies) {
        SCOPED_TRACE(testing::PrintToString(reply));
        EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stoi argument", [&] { parseInt(reply); }));
        EXPECT_TRUE(throwsExactly<std::invalid_argument>("invalid stol argument", [&] { parseLong(reply); }));
    }
}

TEST(ParseIntegers, ThrowForMoreThanThirtyTwoBits)
{
    const std::vector<std::string> replies = {
        "2147483648",          "-2147483649",          "+2147483648",          "4294967296",
        "9223372036854775808", "-9223372036854775809", std::string(4096, '9'), "-" + std::string(4096, '9')};
    for (const std::string& reply : replies) {
        SCOPED_TRACE(testing::PrintToString(reply));
        EXPECT_TRUE(throwsExactly<std::out_of_range>("stoi argument out of range", [&] { parseInt(reply); }));
        EXPECT_TRUE(throwsExactly<std::out_of_range>("stol argument out of range", [&] { parseLong(reply); }));
    }
}

// ---- Comparison with the C library, in the C locale that every test program starts in

enum class ReadAs
{
    Value,
    Invalid,
    OutOfRange,
};

template <class Value>
struct Result
{
    ReadAs outcome;
    Value value;
};

template <class Value, class Parse>
Result<Value> resultOf(Parse parse, const std::string& text)
{
    try {
        return {ReadAs::Value, parse(text)};
    } catch (const std::invalid_argument&) {
        return {ReadAs::Invalid, Value()};
    } catch (const std::out_of_range&) {
        return {ReadAs::OutOfRange, Value()};
    }
}

/// strtod's verdict. A subnormal result is a value: that some of its digits are lost does not put it out of range.
Result<double> strtodResult(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    if (end == text.c_str())
        return {ReadAs::Invalid, 0.0};
    if (errno == ERANGE && (value == 0.0 || std::isinf(value)))
        return {ReadAs::OutOfRange, 0.0};
    return {ReadAs::Value, value};
}

Result<ViInt32> strtolResult(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str())
        return {ReadAs::Invalid, 0};
    if (errno == ERANGE || value < std::numeric_limits<ViInt32>::min() || value > std::numeric_limits<ViInt32>::max())
        return {ReadAs::OutOfRange, 0};
    return {ReadAs::Value, static_cast<ViInt32>(value)};
}

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

bool sameNumber(double left, double right)
{
    return (std::isnan(left) && std::isnan(right)) || bitsOf(left) == bitsOf(right);
}

void expectAsTheCLibrary(const std::string& text)
{
    const Result<double> expected = strtodResult(text);
    const Result<double> actual = resultOf<double>(parseDouble, text);
    ASSERT_EQ(actual.outcome, expected.outcome) << "as a double: " << testing::PrintToString(text);
    ASSERT_TRUE(sameNumber(actual.value, expected.value))
        << testing::PrintToString(text) << ": " << actual.value << ", not " << expected.value;

    const Result<ViInt32> expectedInteger = strtolResult(text);
    for (const auto parse : {parseInt, parseLong}) {
        const Result<ViInt32> integer = resultOf<ViInt32>(parse, text);
        ASSERT_EQ(integer.outcome, expectedInteger.outcome) << "as an integer: " << testing::PrintToString(text);
        ASSERT_EQ(integer.value, expectedInteger.value) << testing::PrintToString(text);
    }
}

class Texts
{
public:
    explicit Texts(std::uint32_t seed) : random_(seed) {}

    std::size_t below(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

    /// A text of pieces that numbers are made of.
    std::string pieces()
    {
        static const std::vector<std::string> kPieces = {
            "0",  "1",   "2",   "5",        "9",   "00",  "12345678", "9999999999", ".",  ".",  "e",
            "E",  "e-3", "e+3", "e3",       "p",   "p3",  "p-",       "P9",         "+",  "-",  "x",
            "0x", "0X",  "a",   "F",        "g",   " ",   "\t",       ",",          "\n", "\r", "_",
            "(",  ")",   "inf", "Infinity", "nan", "NaN", "e308",     "e-308"};
        std::string text;
        for (std::size_t count = below(9); count > 0; --count)
            text += kPieces[below(kPieces.size())];
        return text;
    }

    double anyDouble()
    {
        const std::uint64_t bits = std::uniform_int_distribution<std::uint64_t>()(random_);
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    std::string spelled(double value)
    {
        static constexpr const char* kFormats[] = {"%.17g", "%.6f", "%.3e", "%a", "%.20a", "%.25e", "%g"};
        char text[512];
        std::snprintf(text, sizeof text, kFormats[below(std::size(kFormats))], value);
        return text;
    }

    /// One byte changed, removed or put in.
    std::string mutated(std::string text)
    {
        const std::size_t at = below(text.size() + 1);
        const char byte = static_cast<char>(below(256));
        switch (below(3)) {
        case 0:
            text.insert(at, 1, byte);
            break;
        case 1:
            if (at < text.size())
                text.erase(at, 1);
            break;
        default:
            if (at < text.size())
                text[at] = byte;
            break;
        }
        return text;
    }

private:
    std::mt19937 random_;
};

TEST(ParseNumbers, AgreeWithTheCLibraryOnGeneratedTexts)
{
    Texts texts(20240611);
    for (int i = 0; i < 20000 && !testing::Test::HasFatalFailure(); ++i)
        expectAsTheCLibrary(texts.pieces());
}

TEST(ParseNumbers, AgreeWithTheCLibraryOnRandomDoubles)
{
    Texts texts(20240612);
    for (int i = 0; i < 50000 && !testing::Test::HasFatalFailure(); ++i)
        expectAsTheCLibrary(texts.spelled(texts.anyDouble()));
}

TEST(ParseNumbers, AgreeWithTheCLibraryOnDecimalsOfEveryLength)
{
    Texts texts(20240614);
    for (std::size_t count = 1; count <= 20; ++count)
        for (int i = 0; i < 2000 && !testing::Test::HasFatalFailure(); ++i) {
            std::string text;
            for (std::size_t digit = 0; digit < count; ++digit)
                text += static_cast<char>('0' + texts.below(10));
            text.insert(texts.below(count + 1), 1, '.');
            expectAsTheCLibrary(text);
        }
}

TEST(ParseNumbers, AgreeWithTheCLibraryOnMutatedDoubles)
{
    Texts texts(20240613);
    for (int i = 0; i < 50000 && !testing::Test::HasFatalFailure(); ++i)
        expectAsTheCLibrary(texts.mutated(texts.mutated(texts.spelled(texts.anyDouble()))));
}

TEST(ParseNumbers, AgreeWithTheCLibraryAroundTheLimitsOfIntegers)
{
    for (const std::int64_t middle : {std::int64_t{0}, std::int64_t{INT32_MAX}, std::int64_t{INT32_MIN},
                                      std::int64_t{UINT32_MAX}, std::int64_t{1} << 53})
        for (std::int64_t offset = -300; offset <= 300 && !testing::Test::HasFatalFailure(); ++offset)
            expectAsTheCLibrary(std::to_string(middle + offset));
}

// ---- Fields

TEST(ReplyFields, AreNoneInAnEmptyReply)
{
    const ReplyFields fields("");
    EXPECT_EQ(fields.count(), 0U);
    EXPECT_TRUE(throwsExactly<std::out_of_range>("invalid vector subscript", [&] { fields[0]; }));
}

TEST(ReplyFields, AreOneMoreThanTheCommas)
{
    EXPECT_EQ(ReplyFields("5").count(), 1U);
    EXPECT_EQ(ReplyFields(",").count(), 2U);
    EXPECT_EQ(ReplyFields("a,b,c,d").count(), 4U);
    EXPECT_EQ(ReplyFields(",,").count(), 3U);
    EXPECT_EQ(ReplyFields(std::string(1000, ',')).count(), 1001U);
}

TEST(ReplyFields, StandAsTheyAreInTheReply)
{
    const ReplyFields fields("RUNNING, 1.5 ,,7\r");
    EXPECT_EQ(fields[0], "RUNNING");
    EXPECT_EQ(fields[1], " 1.5 ");
    EXPECT_EQ(fields[2], "");
    EXPECT_EQ(fields[3], "7\r");
}

TEST(ReplyFields, OfALoneCommaAreTwoEmptyOnes)
{
    const ReplyFields fields(",");
    EXPECT_EQ(fields[0], "");
    EXPECT_EQ(fields[1], "");
}

TEST(ReplyFields, ThrowForAFieldThatIsMissing)
{
    const ReplyFields fields("5,1");
    EXPECT_EQ(fields[1], "1");
    for (const std::size_t index : {std::size_t{2}, std::size_t{3}, std::numeric_limits<std::size_t>::max()})
        EXPECT_TRUE(throwsExactly<std::out_of_range>("invalid vector subscript", [&] { fields[index]; })) << index;
}

} // namespace
