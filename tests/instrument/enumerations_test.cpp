#include "instrument/enumerations.h"

#include "tests/support/thrown.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using kvxtest::kInvalidKey;
using kvxtest::throwsExactly;
using namespace TSRO;

struct Entry
{
    ViInt32 value;
    std::vector<std::string> keywords;
};

struct Table
{
    std::string name;
    const KeywordTable* table;
    std::vector<Entry> entries;
};

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

/// "Normal", "sEr": the letter case changes from letter to letter.
std::string mixed(std::string text)
{
    for (std::size_t i = 1; i < text.size(); i += 2)
        text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    return text;
}

const std::vector<Table>& tables()
{
    static const std::vector<Table> all = {
        {"SourceMode", &kKeywordTable<SourceMode>, {{0, {"NORMAL"}}, {1, {"SER"}}, {2, {"PARA"}}}},
        {"ChannelName",
         &kChannelNames,
         {{1, {"CH1"}}, {2, {"CH2"}}, {3, {"CH3"}}, {4, {"CH4"}}, {5, {"SER", "CH5"}}, {6, {"PAR", "CH6"}}}},
        {"RegulationState", &kKeywordTable<RegulationState>, {{0, {"CV"}}, {1, {"CC"}}}},
        {"CurrentRange", &kKeywordTable<CurrentRange>, {{0, {"AUTO"}}, {1, {"LOW"}}, {2, {"HIGH"}}}},
        {"CurrentRate", &kKeywordTable<CurrentRate>, {{0, {"62"}}, {1, {"4000", "4K"}}, {2, {"8000", "8K"}}}},
        {"OutputGroup", &kKeywordTable<OutputGroup>, {{1, {"D1"}}, {2, {"D2"}}, {3, {"D3"}}, {4, {"D4"}}}},
        {"ProtectionDelayMode", &kKeywordTable<ProtectionDelayMode>, {{0, {"ANY"}}, {1, {"SCH"}}}},
        {"PowerOnState", &kKeywordTable<PowerOnState>, {{0, {"RST"}}, {1, {"LAST"}}, {2, {"LOFF"}}}},
        {"Pairing", &kKeywordTable<Pairing>, {{0, {"OFF"}}, {1, {"SER"}}, {2, {"PAR"}}}},
        {"OutputOffMode", &kKeywordTable<OutputOffMode>, {{0, {"BLEON"}}, {1, {"BLEOFF"}}}},
        {"ListRunState",
         &kKeywordTable<ListRunState>,
         {{0, {"STOPPED"}}, {1, {"READY"}}, {2, {"RUNNING"}}, {3, {"PAUSED"}}}},
        {"ListEndState", &kKeywordTable<ListEndState>, {{0, {"OFF"}}, {1, {"LAST"}}}},
        {"ListWaveform",
         &kKeywordTable<ListWaveform>,
         {{0, {"SINE"}},
          {1, {"PULSE"}},
          {2, {"RAMP"}},
          {3, {"UP"}},
          {4, {"DN"}},
          {5, {"UPDN"}},
          {6, {"RISE"}},
          {7, {"FALL"}}}},
        {"ListTemplateObject", &kKeywordTable<ListTemplateObject>, {{0, {"V"}}, {1, {"C"}}}},
        {"DelayRunState", &kKeywordTable<DelayRunState>, {{0, {"STOPPED"}}, {1, {"RUNNING"}}}},
        {"DelayEndState", &kKeywordTable<DelayEndState>, {{0, {"OFF"}}, {1, {"ON"}}, {2, {"LAST"}}}},
        {"DelayGenerateMode", &kKeywordTable<DelayGenerateMode>, {{0, {"FIX"}}, {1, {"INC"}}, {2, {"DEC"}}}},
        {"DelayPattern", &kKeywordTable<DelayPattern>, {{0, {"01P"}}, {1, {"10P"}}}},
    };
    return all;
}

class Keywords : public testing::TestWithParam<Table>
{
};

TEST_P(Keywords, SendTheFirstOfEachValue)
{
    for (const Entry& entry : GetParam().entries)
        EXPECT_EQ(GetParam().table->keyword(entry.value), entry.keywords.front());
}

TEST_P(Keywords, ReadEachAsItsValueWhateverTheLetterCase)
{
    for (const Entry& entry : GetParam().entries)
        for (const std::string& keyword : entry.keywords) {
            EXPECT_EQ(GetParam().table->value(keyword), entry.value) << keyword;
            EXPECT_EQ(GetParam().table->value(lower(keyword)), entry.value) << lower(keyword);
            EXPECT_EQ(GetParam().table->value(mixed(keyword)), entry.value) << mixed(keyword);
        }
}

TEST_P(Keywords, ReadNothingFromAReplyThatHasMoreThanTheKeyword)
{
    for (const Entry& entry : GetParam().entries)
        for (const std::string& keyword : entry.keywords)
            for (const std::string& reply :
                 {keyword + "\n", keyword + "\r", keyword + " ", " " + keyword, "\"" + keyword + "\"", keyword + ",",
                  keyword + keyword, keyword + std::string(1, '\0')})
                EXPECT_EQ(GetParam().table->value(reply), std::nullopt) << reply;
}

TEST_P(Keywords, ReadNothingFromAnEmptyOrForeignReply)
{
    for (const char* reply : {"", "\n", "?", "NORMALLY", "3", ".*", "CH7", "CH0", "D5"})
        EXPECT_EQ(GetParam().table->value(reply), std::nullopt) << reply;
}

TEST_P(Keywords, KnowNoValueOutsideTheTable)
{
    const ViInt32 below = GetParam().entries.front().value - 1;
    const ViInt32 above = GetParam().entries.back().value + 1;
    for (const ViInt32 value : {below, above, std::numeric_limits<ViInt32>::min(), std::numeric_limits<ViInt32>::max()})
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [value] { GetParam().table->keyword(value); }))
            << value;
}

INSTANTIATE_TEST_SUITE_P(Tables, Keywords, testing::ValuesIn(tables()),
                         [](const testing::TestParamInfo<Table>& table) { return table.param.name; });

TEST(KeywordTable, TakesTheFirstOfTwoEntriesWithTheSameKeyword)
{
    static constexpr KeywordEntry kEntries[] = {{3, "A"}, {5, "B", "X"}, {7, "x"}};
    EXPECT_EQ(KeywordTable(kEntries).value("x"), 5);
}

template <class Enumeration>
std::string_view sent(Enumeration value)
{
    return kKeywordTable<Enumeration>.keyword(static_cast<ViInt32>(value));
}

TEST(Enumerators, NameTheirKeywords)
{
    EXPECT_EQ(sent(SourceMode::Normal), "NORMAL");
    EXPECT_EQ(sent(SourceMode::Series), "SER");
    EXPECT_EQ(sent(SourceMode::Parallel), "PARA");
    EXPECT_EQ(sent(RegulationState::ConstantVoltage), "CV");
    EXPECT_EQ(sent(RegulationState::ConstantCurrent), "CC");
    EXPECT_EQ(sent(CurrentRange::Auto), "AUTO");
    EXPECT_EQ(sent(CurrentRange::Low), "LOW");
    EXPECT_EQ(sent(CurrentRange::High), "HIGH");
    EXPECT_EQ(sent(CurrentRate::Rate62), "62");
    EXPECT_EQ(sent(CurrentRate::Rate4000), "4000");
    EXPECT_EQ(sent(CurrentRate::Rate8000), "8000");
    EXPECT_EQ(sent(OutputGroup::D1), "D1");
    EXPECT_EQ(sent(OutputGroup::D4), "D4");
    EXPECT_EQ(sent(ProtectionDelayMode::Any), "ANY");
    EXPECT_EQ(sent(ProtectionDelayMode::Scheduled), "SCH");
    EXPECT_EQ(sent(PowerOnState::Reset), "RST");
    EXPECT_EQ(sent(PowerOnState::Last), "LAST");
    EXPECT_EQ(sent(PowerOnState::LastOff), "LOFF");
    EXPECT_EQ(sent(Pairing::Off), "OFF");
    EXPECT_EQ(sent(Pairing::Series), "SER");
    EXPECT_EQ(sent(Pairing::Parallel), "PAR");
    EXPECT_EQ(sent(OutputOffMode::BleOn), "BLEON");
    EXPECT_EQ(sent(OutputOffMode::BleOff), "BLEOFF");
    EXPECT_EQ(sent(ListRunState::Stopped), "STOPPED");
    EXPECT_EQ(sent(ListRunState::Ready), "READY");
    EXPECT_EQ(sent(ListRunState::Running), "RUNNING");
    EXPECT_EQ(sent(ListRunState::Paused), "PAUSED");
    EXPECT_EQ(sent(ListEndState::Off), "OFF");
    EXPECT_EQ(sent(ListEndState::Last), "LAST");
    EXPECT_EQ(sent(ListWaveform::Sine), "SINE");
    EXPECT_EQ(sent(ListWaveform::Pulse), "PULSE");
    EXPECT_EQ(sent(ListWaveform::Ramp), "RAMP");
    EXPECT_EQ(sent(ListWaveform::Up), "UP");
    EXPECT_EQ(sent(ListWaveform::Down), "DN");
    EXPECT_EQ(sent(ListWaveform::UpDown), "UPDN");
    EXPECT_EQ(sent(ListWaveform::Rise), "RISE");
    EXPECT_EQ(sent(ListWaveform::Fall), "FALL");
    EXPECT_EQ(sent(ListTemplateObject::Voltage), "V");
    EXPECT_EQ(sent(ListTemplateObject::Current), "C");
    EXPECT_EQ(sent(DelayRunState::Stopped), "STOPPED");
    EXPECT_EQ(sent(DelayRunState::Running), "RUNNING");
    EXPECT_EQ(sent(DelayEndState::Off), "OFF");
    EXPECT_EQ(sent(DelayEndState::On), "ON");
    EXPECT_EQ(sent(DelayEndState::Last), "LAST");
    EXPECT_EQ(sent(DelayGenerateMode::Fixed), "FIX");
    EXPECT_EQ(sent(DelayGenerateMode::Increasing), "INC");
    EXPECT_EQ(sent(DelayGenerateMode::Decreasing), "DEC");
    EXPECT_EQ(sent(DelayPattern::OffOn), "01P");
    EXPECT_EQ(sent(DelayPattern::OnOff), "10P");
}

} // namespace
