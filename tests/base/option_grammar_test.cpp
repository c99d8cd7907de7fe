#include "base/option_grammar.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using base::lowerCased;
using base::nextDriverSetupOption;
using base::nextInherentOption;
using base::OptionPair;
using base::OptionText;
using base::parseOptionValue;
using base::splitOptionString;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs all(std::optional<OptionPair> (*next)(std::string_view&), std::string_view text)
{
    Pairs pairs;
    while (const auto pair = next(text))
        pairs.emplace_back(pair->name, pair->value);
    return pairs;
}

std::size_t count(std::optional<OptionPair> (*next)(std::string_view&), std::string_view text)
{
    std::size_t pairs = 0;
    while (next(text))
        ++pairs;
    return pairs;
}

Pairs inherent(std::string_view text)
{
    return all(nextInherentOption, text);
}

Pairs setup(std::string_view text)
{
    return all(nextDriverSetupOption, text);
}

// ---- The two parts

TEST(OptionString, WithoutDriverSetupIsAllInherent)
{
    for (const char* text : {"", "Simulate=1", "Simulate=1, DriverSetup", "DriverSetup Model=A", "Setup=A",
                             "Driver Setup=A", "DriverSetup:A"})
    {
        const base::OptionText parts = base::splitOptionString(text);
        EXPECT_EQ(parts.inherent, text);
        EXPECT_EQ(parts.driverSetup, std::nullopt) << text;
    }
}

TEST(OptionString, EndsItsInherentPartInFrontOfTheBlanksBeforeDriverSetup)
{
    const base::OptionText parts = base::splitOptionString("RangeCheck=0, DriverSetup=Model:KVX2833T, Foo=Bar");
    EXPECT_EQ(parts.inherent, "RangeCheck=0,");
    EXPECT_EQ(parts.driverSetup, "Model:KVX2833T, Foo=Bar");
}

TEST(OptionString, FindsDriverSetupInAnyLetterCaseAndWithBlanksBeforeTheSign)
{
    EXPECT_EQ(base::splitOptionString("driversetup=A").driverSetup, "A");
    EXPECT_EQ(base::splitOptionString("DRIVERSETUP =A").driverSetup, "A");
    EXPECT_EQ(base::splitOptionString("xDriverSetup\t\n= A").driverSetup, " A");
    EXPECT_EQ(base::splitOptionString("xDriverSetup\t\n= A").inherent, "x");
}

TEST(OptionString, HasAnEmptyDriverSetupBehindALoneSign)
{
    EXPECT_EQ(base::splitOptionString("DriverSetup=").driverSetup, "");
    EXPECT_EQ(base::splitOptionString("DriverSetup=\nA").driverSetup, "");
}

TEST(OptionString, EndsItsDriverSetupAtTheEndOfTheLine)
{
    EXPECT_EQ(base::splitOptionString("DriverSetup=A\nB").driverSetup, "A");
    EXPECT_EQ(base::splitOptionString("DriverSetup=A\rB").driverSetup, "A");
}

TEST(OptionString, TakesTheFirstDriverSetupThatHasASign)
{
    const base::OptionText parts = base::splitOptionString("DriverSetup, DriverSetup=A, DriverSetup=B");
    EXPECT_EQ(parts.inherent, "DriverSetup,");
    EXPECT_EQ(parts.driverSetup, "A, DriverSetup=B");
}

// ---- Inherent options

TEST(InherentOptions, AreNamesAndWords)
{
    EXPECT_THAT(inherent("simulate=1, rangecheck = vi_false ,cache=true"),
                ElementsAre(Pair("simulate", "1"), Pair("rangecheck", "vi_false"), Pair("cache", "true")));
}

TEST(InherentOptions, ThatFormNoPairAreSkipped)
{
    EXPECT_THAT(inherent("simulate, rangecheck=0"), ElementsAre(Pair("rangecheck", "0")));
    EXPECT_THAT(inherent("simulate=, rangecheck=0"), ElementsAre(Pair("rangecheck", "0")));
    EXPECT_THAT(inherent("=1, ==, a b=2"), ElementsAre(Pair("b", "2")));
    EXPECT_THAT(inherent(""), IsEmpty());
    EXPECT_THAT(inherent(" ,;:= \n"), IsEmpty());
}

TEST(InherentOptions, NeedNoCommaBetweenThem)
{
    EXPECT_THAT(inherent("a=1 b=2;c=3"), ElementsAre(Pair("a", "1"), Pair("b", "2"), Pair("c", "3")));
    EXPECT_THAT(inherent("a=b=c"), ElementsAre(Pair("a", "b")));
}

TEST(InherentOptions, EndTheirWordAtTheFirstOtherCharacter)
{
    EXPECT_THAT(inherent("a=1.5"), ElementsAre(Pair("a", "1")));
    EXPECT_THAT(inherent("a-b=1"), ElementsAre(Pair("b", "1")));
    EXPECT_THAT(inherent("a=\xC3\xA4"), IsEmpty());
}

TEST(InherentOptions, AreSixFlags)
{
    using base::InherentOptions;
    EXPECT_EQ(base::inherentOption("cache"), &base::InherentOptions::cache);
    EXPECT_EQ(base::inherentOption("interchangecheck"), &base::InherentOptions::interchangeCheck);
    EXPECT_EQ(base::inherentOption("queryinstrstatus"), &base::InherentOptions::queryInstrumentStatus);
    EXPECT_EQ(base::inherentOption("rangecheck"), &base::InherentOptions::rangeCheck);
    EXPECT_EQ(base::inherentOption("recordcoercions"), &base::InherentOptions::recordCoercions);
    EXPECT_EQ(base::inherentOption("simulate"), &base::InherentOptions::simulate);
    for (const char* name : {"", "Cache", "cach", "cachex", "driversetup", "model", "queryinstrumentstatus"})
        EXPECT_EQ(base::inherentOption(name), nullptr) << name;
}

TEST(InherentOptions, AreOffButForTheCacheAndTheRangeCheck)
{
    EXPECT_TRUE(base::kDefaultOptions.cache);
    EXPECT_TRUE(base::kDefaultOptions.rangeCheck);
    EXPECT_FALSE(base::kDefaultOptions.interchangeCheck);
    EXPECT_FALSE(base::kDefaultOptions.queryInstrumentStatus);
    EXPECT_FALSE(base::kDefaultOptions.recordCoercions);
    EXPECT_FALSE(base::kDefaultOptions.simulate);
}

TEST(InherentOptions, AreTrueOrFalseByThreeWordsEach)
{
    for (const char* word : {"true", "vi_true", "1"})
        EXPECT_EQ(base::parseOptionValue(word), true) << word;
    for (const char* word : {"false", "vi_false", "0"})
        EXPECT_EQ(base::parseOptionValue(word), false) << word;
    for (const char* word : {"", "yes", "True", "VI_TRUE", "on", "10", "01", "true ", "vi_", "2"})
        EXPECT_EQ(base::parseOptionValue(word), std::nullopt) << word;
}

TEST(LowerCased, ChangesLettersOfAsciiOnly)
{
    EXPECT_EQ(base::lowerCased("SIMULATE=VI_TRUE"), "simulate=vi_true");
    EXPECT_EQ(base::lowerCased("\xC4@[`{aZ"), "\xC4@[`{az");
    EXPECT_EQ(base::lowerCased(std::string_view("A\0B", 3)), std::string("a\0b", 3));
}

// ---- DriverSetup

TEST(DriverSetup, NamesTheModelByTheKeyModel)
{
    EXPECT_EQ(base::kModelKey, "Model");
}

TEST(DriverSetup, HasPairsWithEitherSign)
{
    EXPECT_THAT(setup("Model:KVX2833T, Foo=Bar"), ElementsAre(Pair("Model", "KVX2833T"), Pair("Foo", "Bar")));
    EXPECT_THAT(setup("model=KVX2803T"), ElementsAre(Pair("model", "KVX2803T")));
    EXPECT_THAT(setup("Model:A,Model:B"), ElementsAre(Pair("Model", "A"), Pair("Model", "B")));
}

TEST(DriverSetup, ValuesRunToTheNextComma)
{
    EXPECT_THAT(setup("a: b c ,d=1"), ElementsAre(Pair("a", "b c "), Pair("d", "1")));
    EXPECT_THAT(setup("a:b=c:d"), ElementsAre(Pair("a", "b=c:d")));
    EXPECT_THAT(setup("a=\"x\ny\"\n"), ElementsAre(Pair("a", "\"x\ny\"\n")));
}

TEST(DriverSetup, NamesAreWordsAndPlusSigns)
{
    EXPECT_THAT(setup("x-a+b_1 = 2"), ElementsAre(Pair("a+b_1", "2")));
    EXPECT_THAT(setup("+:1"), ElementsAre(Pair("+", "1")));
}

TEST(DriverSetup, ThatFormsNoPairIsSkipped)
{
    EXPECT_THAT(setup(""), IsEmpty());
    EXPECT_THAT(setup(",,, a, :b, =c, d:,e=1"), ElementsAre(Pair("e", "1")));
    EXPECT_THAT(setup("a:"), IsEmpty());
    EXPECT_THAT(setup("a b c:d"), ElementsAre(Pair("c", "d")));
}

TEST(DriverSetup, ValueOfBlanksIsTheLastOfThem)
{
    EXPECT_THAT(setup("a: \t,b:1"), ElementsAre(Pair("a", "\t"), Pair("b", "1")));
    EXPECT_THAT(setup("a: "), ElementsAre(Pair("a", " ")));
}

// ---- Comparison with regular expressions, in the C locale that every test program starts in

base::OptionText splitByRegularExpression(const std::string& text)
{
    static const std::regex kDriverSetup(R"(\s*DriverSetup\s*=(.*))", std::regex::icase);
    std::smatch match;
    if (!std::regex_search(text, match, kDriverSetup))
        return {text, std::nullopt};
    const std::string_view whole = text;
    return {whole.substr(0, static_cast<std::size_t>(match.position(0))),
            whole.substr(static_cast<std::size_t>(match.position(1)), static_cast<std::size_t>(match.length(1)))};
}

Pairs pairsByRegularExpression(const std::string& text, const std::regex& expression)
{
    Pairs pairs;
    for (std::sregex_iterator match(text.begin(), text.end(), expression); match != std::sregex_iterator(); ++match)
        pairs.emplace_back((*match)[1], (*match)[2]);
    return pairs;
}

Pairs setupByRegularExpression(const std::string& text)
{
    static const std::regex kPair(R"(([\w+_]+)\s*(?:=|:)\s*([^,]+))");
    return pairsByRegularExpression(text, kPair);
}

Pairs inherentByRegularExpression(const std::string& text)
{
    static const std::regex kOption(R"(\s*(\w+)\s*=\s*(\w+)\s*,?)");
    return pairsByRegularExpression(text, kOption);
}

void expectAsTheRegularExpressions(const std::string& text)
{
    SCOPED_TRACE(testing::PrintToString(text));
    const base::OptionText expected = splitByRegularExpression(text);
    const base::OptionText parts = base::splitOptionString(text);
    ASSERT_EQ(parts.inherent, expected.inherent);
    ASSERT_EQ(parts.driverSetup, expected.driverSetup);
    ASSERT_EQ(setup(text), setupByRegularExpression(text));
    ASSERT_EQ(inherent(text), inherentByRegularExpression(text));
}

class Texts
{
public:
    explicit Texts(std::uint32_t seed) : random_(seed) {}

    std::string generated()
    {
        static const std::vector<std::string> kPieces = {"DriverSetup", "driversetup", "DRIVERSETUP ",
                                                         "Driver",      "Setup",       "Model",
                                                         "Simulate",    "RangeCheck",  "cache",
                                                         "=",           "=",           "=",
                                                         ":",           ",",           ",",
                                                         " ",           "  ",          "\t",
                                                         "\n",          "\r",          "1",
                                                         "0",           "TRUE",        "a",
                                                         "_",           "+",           ";"};
        std::string text;
        for (std::size_t count = below(14); count > 0; --count)
            text += kPieces[below(kPieces.size())];
        return text;
    }

    std::string mutated()
    {
        static const std::vector<std::string> kTexts = {
            "Simulate=1, RangeCheck=0, DriverSetup=Model:KVX2833T", "cache=1,driversetup = Model=A , Foo:B",
            "QueryInstrStatus=VI_TRUE,RecordCoercions=false", "DriverSetup=Model:A,Model:B", "a+b: c,d = e, f"};
        std::string text = kTexts[below(kTexts.size())];
        for (std::size_t count = 1 + below(6); count > 0; --count)
            mutate(text);
        return text;
    }

private:
    std::size_t below(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

    /// Mostly the characters of the grammar, sometimes any byte.
    char character()
    {
        static constexpr std::string_view kCharacters = "=:, \t\n\r+_a1\v\f;";
        return below(4) == 0 ? static_cast<char>(below(256)) : kCharacters[below(kCharacters.size())];
    }

    void mutate(std::string& text)
    {
        const std::size_t at = below(text.size() + 1);
        switch (below(3)) {
        case 0:
            text.insert(at, 1, character());
            break;
        case 1:
            text.erase(at, below(3));
            break;
        default:
            if (at < text.size())
                text[at] = character();
            break;
        }
    }

    std::mt19937 random_;
};

TEST(OptionGrammar, AgreesWithItsRegularExpressionsOnGeneratedTexts)
{
    Texts texts(20240611);
    for (int i = 0; i < 10000 && !testing::Test::HasFailure(); ++i)
        expectAsTheRegularExpressions(texts.generated());
}

TEST(OptionGrammar, AgreesWithItsRegularExpressionsOnMutatedTexts)
{
    Texts texts(20240612);
    for (int i = 0; i < 10000 && !testing::Test::HasFailure(); ++i)
        expectAsTheRegularExpressions(texts.mutated());
}

// ---- Long texts, where a grammar that tries again from every place would never end

constexpr std::size_t kLong = 10U << 20U;

std::string repeated(std::string_view piece)
{
    std::string text;
    text.reserve(kLong + piece.size());
    while (text.size() < kLong)
        text += piece;
    return text;
}

struct Piece
{
    std::string name;
    std::string text;
};

class LongOptionText : public testing::TestWithParam<Piece>
{
};

TEST_P(LongOptionText, WithoutPairsIsReadToItsEnd)
{
    const std::string text = repeated(GetParam().text);
    EXPECT_EQ(base::splitOptionString(text).driverSetup, std::nullopt);
    EXPECT_THAT(inherent(text), IsEmpty());
    EXPECT_THAT(setup(text), IsEmpty());
}

TEST_P(LongOptionText, LeavesThePairsBehindItReadable)
{
    const std::string text = repeated(GetParam().text) + ",cache=1,DriverSetup=Model:A";
    EXPECT_EQ(base::splitOptionString(text).driverSetup, "Model:A");
    EXPECT_THAT(inherent(text), ElementsAre(Pair("cache", "1"), Pair("DriverSetup", "Model")));
    EXPECT_THAT(setup(text), ElementsAre(Pair("cache", "1"), Pair("DriverSetup", "Model:A")));
}

INSTANTIATE_TEST_SUITE_P(Pieces, LongOptionText,
                         testing::Values(Piece{"Letters", "a"}, Piece{"Blanks", " "}, Piece{"Commas", ","},
                                         Piece{"Words", "a "}, Piece{"EqualSigns", "=,"}, Piece{"Colons", ":,"},
                                         Piece{"DriverSetups", "DriverSetup "}),
                         [](const testing::TestParamInfo<Piece>& piece) { return piece.param.name; });

TEST(LongDriverSetup, MayHaveOneLongValueOrMillionsOfPairs)
{
    const std::string value = repeated("x");
    EXPECT_THAT(setup("a:" + value), ElementsAre(Pair("a", value)));
    const std::string pairs = repeated("a=1,");
    EXPECT_EQ(count(nextDriverSetupOption, pairs), kLong / 4);
    EXPECT_EQ(count(nextInherentOption, pairs), kLong / 4);
}

} // namespace
