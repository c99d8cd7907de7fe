#include "runtime/selector_grammar.h"
#include "tests/support/driver/reference_selector.h"

#include <rapidcheck/gtest.h>

#include <string_view>

// The driver's selectors against the reference, on selectors that are made up and on selectors that are nearly right.

namespace kvxtest
{

void showValue(const SelectorResult& result, std::ostream& stream)
{
    PrintTo(result, &stream);
}

void showValue(const StoredVirtualName& name, std::ostream& stream)
{
    stream << '"' << name.name << "\" -> \"" << name.mapTo << '"';
    for (const StoredVirtualRange& range : name.ranges)
        stream << " [" << range.minimum << ".." << range.maximum << " from " << range.startingPhysicalIndex << ']';
}

} // namespace kvxtest

namespace
{

using namespace kvxtest;

/// RapidCheck makes a hundred cases of a property; each has so many texts.
constexpr std::size_t kSelectors = 20;

// Draws inside of rc::gen::exec().

std::size_t below(std::size_t limit)
{
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(0, limit));
}

/// Draws shrink towards 0, and texts towards short ones.
bool oneIn(std::size_t chance)
{
    return below(chance) == chance - 1;
}

std::string oneOf(const std::vector<std::string>& texts)
{
    return *rc::gen::elementOf(texts);
}

/// What a writer makes its texts of.
struct Vocabulary
{
    std::vector<std::string> bases;
    std::vector<std::string> numbers;
};

const Vocabulary kPhysical = {{"OutputChannel"}, {"1", "2", "3", "4", "5", "6"}};
const Vocabulary kAliases = {{"CH", "OutputChannel"}, {"1", "2", "3", "4", "5", "6"}};
/// Without numbers beyond 32 bits: no mutation of it is a range too long to be written out.
const Vocabulary kWild = {
    {"OutputChannel", "OutputChannel", "outputchannel", "OUTPUTCHANNEL", "CH", "ch", "", "a", "A", "1x", "!_"},
    {"0", "1", "3", "6", "7", "02", "10", "11"}};
const Vocabulary kHuge = {{"OutputChannel", "a", ""}, {"1", "6", "2147483648", "00000000000000000006"}};
/// The virtual names that tables are made of, and their neighbours.
const Vocabulary kVirtual = {{"Core", "Rail", "Rail1", "rail", "", "CH", "OutputChannel", "!_"},
                             {"", "", "1", "2", "3", "5", "12", "01"}};

std::string blanks()
{
    return oneOf({"", "", "", " ", "\t", " \n", "\v\f\r"});
}

std::string secondBase(const Vocabulary& words, const std::string& first)
{
    if (oneIn(2))
        return "";
    return oneIn(3) ? oneOf(words.bases) : first;
}

std::string writeItem(const Vocabulary& words)
{
    const std::string base = oneOf(words.bases);
    const std::string single = blanks() + base + oneOf(words.numbers);
    return oneIn(2) ? single : single + blanks() + "-" + blanks() + secondBase(words, base) + oneOf(words.numbers);
}

std::string writeLevel(const Vocabulary& words)
{
    std::string text = blanks() + (oneIn(4) ? "[" : "") + writeItem(words);
    while (oneIn(2))
        text += blanks() + "," + writeItem(words);
    return text + blanks() + (oneIn(4) ? "]" : "");
}

std::string writeSelector(const Vocabulary& words)
{
    std::string text = writeLevel(words);
    while (oneIn(12))
        text += blanks() + ":" + writeLevel(words);
    return text;
}

void mutate(std::string& text)
{
    static const std::string kAlphabet = " \t,:-[]!_0129aAOlZ;.%\\\x01\xE9";
    const std::size_t at = below(text.size() + 1);
    const char c = *rc::gen::elementOf(kAlphabet);
    if (oneIn(3) && at < text.size())
        text.erase(at, 1);
    else if (oneIn(2) && at < text.size())
        text[at] = c;
    else
        text.insert(at, 1, c);
}

rc::Gen<std::string> selectorsOf(std::vector<Vocabulary> vocabularies)
{
    return rc::gen::exec([vocabularies] { return writeSelector(vocabularies[below(vocabularies.size())]); });
}

rc::Gen<std::string> mutantsOf(std::vector<Vocabulary> vocabularies)
{
    return rc::gen::exec([vocabularies] {
        std::string text = writeSelector(vocabularies[below(vocabularies.size())]);
        for (std::size_t changes = 1 + below(3); changes > 0; --changes)
            mutate(text);
        return text;
    });
}

rc::Gen<StoredVirtualRange> virtualRanges()
{
    return rc::gen::exec([] {
        const auto bound = [] { return static_cast<ViInt32>(below(15)) - 2; };
        return StoredVirtualRange{bound(), bound(), bound()};
    });
}

rc::Gen<StoredVirtualName> virtualNames()
{
    static const std::vector<std::string> kMapped = {"OutputChannel1",
                                                     "OutputChannel2",
                                                     "OutputChannel",
                                                     "OutputChannel",
                                                     "OutputChannel1,OutputChannel2",
                                                     "CH4",
                                                     "CH",
                                                     "CH6,CH1",
                                                     "CH2-3",
                                                     "xCH1",
                                                     "OutputChannel3-5",
                                                     "[OutputChannel4]",
                                                     "",
                                                     " OutputChannel6 ",
                                                     "Core",
                                                     "a:b",
                                                     "1",
                                                     "7,",
                                                     "OutputChannel1-OutputChannel"};
    return rc::gen::exec([] {
        StoredVirtualName name;
        name.name = oneOf(kVirtual.bases) + (oneIn(4) ? oneOf(kVirtual.numbers) : "");
        name.mapTo = oneOf(kMapped);
        while (oneIn(2))
            name.ranges.push_back(*virtualRanges());
        return name;
    });
}

template <class Element>
std::vector<Element> several(std::size_t count, rc::Gen<Element> gen)
{
    return *rc::gen::container<std::vector<Element>>(count, std::move(gen));
}

class SelectorOracle : public RuntimeTest
{
public:
    void expectAsTheReference(const std::vector<std::string>& selectors,
                              const std::vector<StoredVirtualName>& names = {})
    {
        configurationStore().driverSession.emplace().virtualNames = names;
        session.ResolveConfiguration("", "");
        for (const std::string& selector : selectors) {
            const SelectorResult wanted = referenceResolve(selector, names);
            const SelectorResult found = resolve(session, selector.c_str());
            if (found != wanted)
                RC_LOG() << "selector: " << testing::PrintToString(selector) << '\n';
            RC_ASSERT(found == wanted);
            clearLog();
        }
    }

    TestSession session{vi};
};

RC_GTEST_FIXTURE_PROP(SelectorOracle, SelectorsOfPhysicalNamesResolveAsTheReferenceSays, ())
{
    expectAsTheReference(several(kSelectors, selectorsOf({kPhysical, kAliases})));
}

RC_GTEST_FIXTURE_PROP(SelectorOracle, SelectorsOfAnyNamesResolveAsTheReferenceSays, ())
{
    expectAsTheReference(several(kSelectors, selectorsOf({kWild, kHuge})));
}

RC_GTEST_FIXTURE_PROP(SelectorOracle, MutatedSelectorsResolveAsTheReferenceSays, ())
{
    expectAsTheReference(several(kSelectors, mutantsOf({kPhysical, kAliases, kWild})));
}

RC_GTEST_FIXTURE_PROP(SelectorOracle, SelectorsOfVirtualNamesResolveAsTheReferenceSays, ())
{
    const auto names = several(1 + below(6), virtualNames());
    expectAsTheReference(several(kSelectors, selectorsOf({kVirtual, kPhysical})), names);
}

RC_GTEST_FIXTURE_PROP(SelectorOracle, MutatedSelectorsOfVirtualNamesResolveAsTheReferenceSays, ())
{
    const auto names = several(1 + below(6), virtualNames());
    expectAsTheReference(several(kSelectors, mutantsOf({kVirtual})), names);
}

RC_GTEST_PROP(SelectorGrammar, AcceptsWhatItsExpressionAccepts, ())
{
    const auto texts = several(kSelectors, rc::gen::oneOf(selectorsOf({kWild, kVirtual}), mutantsOf({kWild, kVirtual}),
                                                          rc::gen::string<std::string>()));
    for (const std::string& text : texts) {
        const bool fits = fitsSelectorGrammar(text);
        const bool isAccepted = drivekit::selector::isWellFormed(text);
        if (isAccepted != fits)
            RC_LOG() << "text: " << testing::PrintToString(text) << '\n';
        RC_ASSERT(isAccepted == fits);
    }
}

/// Counts through all texts of a length, as numbers whose digits are the alphabet's.
bool advance(std::string& text, std::string_view alphabet)
{
    for (char& c : text) {
        const std::size_t next = alphabet.find(c) + 1;
        c = alphabet[next % alphabet.size()];
        if (next < alphabet.size())
            return true;
    }
    return false;
}

TEST_F(SelectorOracle, AllShortTextsResolveAsTheReferenceSays)
{
    constexpr std::string_view kAlphabet = "a1-,:[] !";
    for (std::size_t length = 0; length <= 4; ++length) {
        std::string text(length, kAlphabet.front());
        do {
            ASSERT_EQ(resolve(session, text.c_str()), referenceResolve(text)) << testing::PrintToString(text);
            clearLog();
        } while (advance(text, kAlphabet));
    }
}

} // namespace
