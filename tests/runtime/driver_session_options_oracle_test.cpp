#include "tests/support/driver/runtime_fixture.h"

#include <rapidcheck/gtest.h>

#include <cctype>
#include <iterator>
#include <map>
#include <ostream>
#include <regex>

// The session's reading of option strings against a plain one with regular expressions, on texts that are made up and
// on texts that are nearly right.

namespace
{

using namespace kvxtest;

using Texts = std::map<std::string, std::string, std::less<>>;

/// All that option strings change.
struct OptionState
{
    std::map<std::string, bool> flags = {
        {"cache", false},      {"interchangecheck", false}, {"queryinstrstatus", false},
        {"rangecheck", false}, {"recordcoercions", false},  {"simulate", false}};
    std::string driverSetup;
    std::string model;
    Texts inherent;
    Texts setup;

    bool operator==(const OptionState&) const = default;
};

void showValue(const OptionState& state, std::ostream& stream)
{
    stream << testing::PrintToString(state.flags) << " setup \"" << state.driverSetup << "\" model \"" << state.model
           << "\" inherent " << testing::PrintToString(state.inherent) << " setup "
           << testing::PrintToString(state.setup);
}

const ErrorEntry kSuccess;

ErrorEntry failure(ViUInt32 status, std::string text)
{
    return {code(status), std::move(text)};
}

std::string inLowerCase(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

ErrorEntry readSetup(OptionState& state, const std::string& text)
{
    static const std::regex kPair(R"(([\w+_]+)\s*(?:=|:)\s*([^,]+))");
    state.setup.clear();
    state.driverSetup = text;
    for (std::sregex_iterator match(text.begin(), text.end(), kPair); match != std::sregex_iterator(); ++match) {
        const std::string name = (*match)[1];
        if (inLowerCase(name) == "model")
            state.model = (*match)[2];
        if (!state.setup.emplace(name, (*match)[2]).second)
            return failure(0xBFFA0000,
                           "Failure cannot recover.  DriverSetup option '" + name + "' appears more than once.");
    }
    return kSuccess;
}

ErrorEntry readValue(const std::string& word, bool& flag)
{
    static const std::map<std::string, bool> kWords = {{"true", true},   {"vi_true", true},   {"1", true},
                                                       {"false", false}, {"vi_false", false}, {"0", false}};
    const auto found = kWords.find(word);
    if (found == kWords.end())
        return failure(0xBFFA004C, "The '" + word + "' value in the option string is unknown.");
    flag = found->second;
    return kSuccess;
}

ErrorEntry readInherentOptions(OptionState& state, const std::string& options)
{
    static const std::regex kOption(R"(\s*(\w+)\s*=\s*(\w+)\s*,?)");
    const std::string text = inLowerCase(options);
    for (std::sregex_iterator match(text.begin(), text.end(), kOption); match != std::sregex_iterator(); ++match) {
        const std::string name = (*match)[1];
        const auto flag = state.flags.find(name);
        if (flag == state.flags.end())
            return failure(0xBFFA004B, "The '" + name + "' name in the option string is unknown.");
        const ErrorEntry read = readValue((*match)[2], flag->second);
        if (read != kSuccess)
            return read;
        if (!state.inherent.emplace(name, (*match)[2]).second)
            return failure(0xBFFA0000,
                           "Failure cannot recover.  Inherent option '" + name + "' appears more than once.");
    }
    return kSuccess;
}

/// Changes `state` as an option string does; what is recorded.
ErrorEntry readOptions(OptionState& state, const std::string& text)
{
    static const std::regex kDriverSetup(R"(\s*DriverSetup\s*=(.*))", std::regex::icase);
    std::smatch match;
    if (!std::regex_search(text, match, kDriverSetup))
        return readInherentOptions(state, text);
    const ErrorEntry setup = readSetup(state, match[1]);
    return setup == kSuccess ? readInherentOptions(state, match.prefix()) : setup;
}

OptionState stateOf(const drivekit::DriverSession& session)
{
    OptionState state;
    state.flags = {{"cache", session.cache()},
                   {"interchangecheck", session.interchangeCheck()},
                   {"queryinstrstatus", session.queryInstrumentStatus()},
                   {"rangecheck", session.rangeCheck()},
                   {"recordcoercions", session.recordCoercions()},
                   {"simulate", session.simulate()}};
    state.driverSetup = session.driverSetup();
    state.model = session.model();
    state.inherent = session.inherentOptionTable();
    state.setup = session.driverSetupOptions();
    return state;
}

/// RapidCheck makes a hundred cases of a property; each has so many texts.
constexpr std::size_t kTexts = 20;

/// Texts made of what option strings are made of, in any order.
rc::Gen<std::string> piecedTexts()
{
    static const std::vector<std::string> kPieces = {"DriverSetup",
                                                     "driversetup",
                                                     "DRIVERSETUP ",
                                                     "Driver",
                                                     "Model",
                                                     "model",
                                                     "Simulate",
                                                     "RangeCheck",
                                                     "cache",
                                                     "InterchangeCheck",
                                                     "QueryInstrStatus",
                                                     "RECORDCOERCIONS",
                                                     "=",
                                                     "=",
                                                     "=",
                                                     "=",
                                                     ":",
                                                     ",",
                                                     ",",
                                                     ",",
                                                     " ",
                                                     "  ",
                                                     "\t",
                                                     "\n",
                                                     "\r",
                                                     "1",
                                                     "0",
                                                     "TRUE",
                                                     "vi_false",
                                                     "yes",
                                                     "a",
                                                     "_",
                                                     "+",
                                                     ";"};
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(kPieces)),
                        [](const std::vector<std::string>& pieces) {
                            std::string text;
                            for (const std::string& piece : pieces)
                                text += piece;
                            return text;
                        });
}

/// Lists of options, most of them right, with and without DriverSetup behind them.
rc::Gen<std::string> optionStrings()
{
    static const std::vector<std::string> kNames = {"Simulate",         "RangeCheck ",     "cache",  "InterchangeCheck",
                                                    "QueryInstrStatus", "recordcoercions", "Unknown"};
    static const std::vector<std::string> kValues = {"=1", "=0", " = True", "=VI_FALSE", "=\tfalse", "=maybe", "="};
    static const std::vector<std::string> kSetups = {"",
                                                     "DriverSetup=Model:KVX2833T",
                                                     " driversetup = model=A b , Trace:1",
                                                     ",DriverSetup=A:1,A:2",
                                                     "DriverSetup=",
                                                     "DriverSetup= Model : ,x"};
    return rc::gen::exec([] {
        std::string text;
        const auto count = *rc::gen::element(0, 1, 2, 3, 4);
        for (int i = 0; i < count; ++i)
            text += *rc::gen::elementOf(kNames) + *rc::gen::elementOf(kValues) +
                    *rc::gen::element<std::string>(",", ", ", " ");
        return text + *rc::gen::elementOf(kSetups);
    });
}

/// Option strings with a character too many, too few or wrong, mostly one that means something.
rc::Gen<std::string> mutants()
{
    static const std::string kCharacters = "=:, \t\n\r+_a1\v\f;\xE4";
    return rc::gen::exec([] {
        std::string text = *optionStrings();
        const auto changes = *rc::gen::element(1, 2, 3);
        for (int i = 0; i < changes; ++i) {
            const auto at = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(0, text.size() + 1));
            const auto removed = *rc::gen::element<std::size_t>(0, 1, 2);
            text.replace(at, removed, *rc::gen::element<std::size_t>(0, 1), *rc::gen::elementOf(kCharacters));
        }
        return text;
    });
}

std::vector<std::string> several(std::size_t count, rc::Gen<std::string> gen)
{
    return *rc::gen::container<std::vector<std::string>>(count, std::move(gen));
}

class OptionOracle : public RuntimeTest
{
public:
    /// Parses `text` on `session`, whose state is `state`.
    void expectAsTheReference(TestSession& session, OptionState& state, const std::string& text)
    {
        const ErrorEntry expected = readOptions(state, text);
        const ViStatus status = session.ParseOptionString(text);
        const ErrorEntry found = recorded();
        if (status != expected.code || found != expected || stateOf(session) != state)
            RC_LOG() << "options: " << testing::PrintToString(text) << '\n';
        RC_ASSERT(status == expected.code);
        RC_ASSERT(found.code == expected.code);
        RC_ASSERT(found.text == expected.text);
        RC_ASSERT(stateOf(session) == state);
        IviSession_ClearError(vi);
    }

    void expectEachAsTheReference(const std::vector<std::string>& texts)
    {
        for (const std::string& text : texts) {
            TestSession session(vi);
            OptionState state;
            expectAsTheReference(session, state, text);
        }
    }
};

RC_GTEST_FIXTURE_PROP(OptionOracle, OptionStringsAreReadAsTheReferenceReadsThem, ())
{
    expectEachAsTheReference(several(kTexts, optionStrings()));
}

RC_GTEST_FIXTURE_PROP(OptionOracle, MutatedOptionStringsAreReadAsTheReferenceReadsThem, ())
{
    expectEachAsTheReference(several(kTexts, mutants()));
}

RC_GTEST_FIXTURE_PROP(OptionOracle, AnyTextsAreReadAsTheReferenceReadsThem, ())
{
    expectEachAsTheReference(several(kTexts, rc::gen::oneOf(piecedTexts(), rc::gen::string<std::string>())));
}

RC_GTEST_FIXTURE_PROP(OptionOracle, OptionStringsOfOneSessionAreReadAsTheReferenceReadsThem, ())
{
    TestSession session(vi);
    OptionState state;
    for (const std::string& text : several(5, rc::gen::oneOf(optionStrings(), mutants())))
        expectAsTheReference(session, state, text);
}

} // namespace
