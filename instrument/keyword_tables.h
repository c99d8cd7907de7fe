#pragma once

#include "base/ascii.h"
#include "instrument/enumerations.h"

#include <optional>
#include <span>
#include <string_view>

/// The keywords of every enumerated setting, as the instrument writes them. The tables are constants; any thread may
/// read them.
namespace TSRO
{

/// One value of a setting. `keyword` is sent; `keyword` and `alternate` are understood in replies.
struct KeywordEntry
{
    ViInt32 value;
    std::string_view keyword;
    std::string_view alternate = {};
};

/// The values of one setting, in ascending order.
class KeywordTable
{
public:
    constexpr explicit KeywordTable(std::span<const KeywordEntry> entries) : entries_(entries) {}

    /// The keyword to send for `value`.
    /// @throws std::out_of_range "invalid map<K, T> key" when the table has no such value.
    std::string_view keyword(ViInt32 value) const;

    /// The value that `reply`, as a whole and whatever its letter case, names; nothing when no keyword is equal.
    constexpr std::optional<ViInt32> value(std::string_view reply) const
    {
        for (const KeywordEntry& entry : entries_)
            if (names(entry.keyword, reply) || names(entry.alternate, reply))
                return entry.value;
        return std::nullopt;
    }

private:
    static constexpr bool names(std::string_view keyword, std::string_view reply)
    {
        return !keyword.empty() && base::ascii::equalIgnoringCase(keyword, reply);
    }

    std::span<const KeywordEntry> entries_;
};

namespace keywords
{
inline constexpr KeywordEntry kSourceMode[] = {{0, "NORMAL"}, {1, "SER"}, {2, "PARA"}};
inline constexpr KeywordEntry kChannelName[] = {{1, "CH1"}, {2, "CH2"},        {3, "CH3"},
                                                {4, "CH4"}, {5, "SER", "CH5"}, {6, "PAR", "CH6"}};
inline constexpr KeywordEntry kRegulationState[] = {{0, "CV"}, {1, "CC"}};
inline constexpr KeywordEntry kCurrentRange[] = {{0, "AUTO"}, {1, "LOW"}, {2, "HIGH"}};
inline constexpr KeywordEntry kCurrentRate[] = {{0, "62"}, {1, "4000", "4K"}, {2, "8000", "8K"}};
inline constexpr KeywordEntry kOutputGroup[] = {{1, "D1"}, {2, "D2"}, {3, "D3"}, {4, "D4"}};
inline constexpr KeywordEntry kProtectionDelayMode[] = {{0, "ANY"}, {1, "SCH"}};
inline constexpr KeywordEntry kPowerOnState[] = {{0, "RST"}, {1, "LAST"}, {2, "LOFF"}};
inline constexpr KeywordEntry kPairing[] = {{0, "OFF"}, {1, "SER"}, {2, "PAR"}};
inline constexpr KeywordEntry kOutputOffMode[] = {{0, "BLEON"}, {1, "BLEOFF"}};
inline constexpr KeywordEntry kListRunState[] = {{0, "STOPPED"}, {1, "READY"}, {2, "RUNNING"}, {3, "PAUSED"}};
inline constexpr KeywordEntry kListEndState[] = {{0, "OFF"}, {1, "LAST"}};
inline constexpr KeywordEntry kListWaveform[] = {{0, "SINE"}, {1, "PULSE"}, {2, "RAMP"}, {3, "UP"},
                                                 {4, "DN"},   {5, "UPDN"},  {6, "RISE"}, {7, "FALL"}};
inline constexpr KeywordEntry kListTemplateObject[] = {{0, "V"}, {1, "C"}};
inline constexpr KeywordEntry kDelayRunState[] = {{0, "STOPPED"}, {1, "RUNNING"}};
inline constexpr KeywordEntry kDelayEndState[] = {{0, "OFF"}, {1, "ON"}, {2, "LAST"}};
inline constexpr KeywordEntry kDelayGenerateMode[] = {{0, "FIX"}, {1, "INC"}, {2, "DEC"}};
inline constexpr KeywordEntry kDelayPattern[] = {{0, "01P"}, {1, "10P"}};
} // namespace keywords

/// The names that commands use for the channels: 1 to 4 the outputs, 5 their series, 6 their parallel combination.
inline constexpr KeywordTable kChannelNames{keywords::kChannelName};

/// The table of an enumeration.
template <class Enumeration>
inline constexpr KeywordTable kKeywordTable{std::span<const KeywordEntry>()};

template <>
inline constexpr KeywordTable kKeywordTable<SourceMode>{keywords::kSourceMode};
template <>
inline constexpr KeywordTable kKeywordTable<RegulationState>{keywords::kRegulationState};
template <>
inline constexpr KeywordTable kKeywordTable<CurrentRange>{keywords::kCurrentRange};
template <>
inline constexpr KeywordTable kKeywordTable<CurrentRate>{keywords::kCurrentRate};
template <>
inline constexpr KeywordTable kKeywordTable<OutputGroup>{keywords::kOutputGroup};
template <>
inline constexpr KeywordTable kKeywordTable<ProtectionDelayMode>{keywords::kProtectionDelayMode};
template <>
inline constexpr KeywordTable kKeywordTable<PowerOnState>{keywords::kPowerOnState};
template <>
inline constexpr KeywordTable kKeywordTable<Pairing>{keywords::kPairing};
template <>
inline constexpr KeywordTable kKeywordTable<OutputOffMode>{keywords::kOutputOffMode};
template <>
inline constexpr KeywordTable kKeywordTable<ListRunState>{keywords::kListRunState};
template <>
inline constexpr KeywordTable kKeywordTable<ListEndState>{keywords::kListEndState};
template <>
inline constexpr KeywordTable kKeywordTable<ListWaveform>{keywords::kListWaveform};
template <>
inline constexpr KeywordTable kKeywordTable<ListTemplateObject>{keywords::kListTemplateObject};
template <>
inline constexpr KeywordTable kKeywordTable<DelayRunState>{keywords::kDelayRunState};
template <>
inline constexpr KeywordTable kKeywordTable<DelayEndState>{keywords::kDelayEndState};
template <>
inline constexpr KeywordTable kKeywordTable<DelayGenerateMode>{keywords::kDelayGenerateMode};
template <>
inline constexpr KeywordTable kKeywordTable<DelayPattern>{keywords::kDelayPattern};

} // namespace TSRO
