#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace kvxvirtual
{

/// One value's keyword as the instrument normally answers it and, where it has one, its other spelling.
struct Keyword
{
    std::string_view usual;
    std::string_view alternate{};
};

/// The keywords of one setting; a keyword's place is the setting's value.
using KeywordTable = std::span<const Keyword>;

/// The place of the keyword that is `text` in either spelling, ignoring case.
std::optional<int> keywordIndex(KeywordTable table, std::string_view text);

namespace keywords
{
/// Place 0 is channel 1.
inline constexpr Keyword kChannels[] = {{"CH1"}, {"CH2"}, {"CH3"}, {"CH4"}, {"SER", "CH5"}, {"PAR", "CH6"}};
inline constexpr Keyword kSourceMode[] = {{"NORMAL"}, {"SER"}, {"PARA"}};
inline constexpr Keyword kRegulation[] = {{"CV"}, {"CC"}};
inline constexpr Keyword kCurrentRange[] = {{"AUTO"}, {"LOW"}, {"HIGH"}};
inline constexpr Keyword kCurrentRate[] = {{"62"}, {"4000", "4K"}, {"8000", "8K"}};
inline constexpr Keyword kProtectionDelayMode[] = {{"ANY"}, {"SCH"}};
inline constexpr Keyword kPowerOnState[] = {{"RST"}, {"LAST"}, {"LOFF"}};
inline constexpr Keyword kPairing[] = {{"OFF"}, {"SER"}, {"PAR"}};
inline constexpr Keyword kOutputOffMode[] = {{"BLEON"}, {"BLEOFF"}};
inline constexpr Keyword kListRunState[] = {{"STOPPED"}, {"READY"}, {"RUNNING"}, {"PAUSED"}};
inline constexpr Keyword kListEndState[] = {{"OFF"}, {"LAST"}};
inline constexpr Keyword kListWaveform[] = {{"SINE"}, {"PULSE"}, {"RAMP"}, {"UP"},
                                            {"DN"},   {"UPDN"},  {"RISE"}, {"FALL"}};
inline constexpr Keyword kListObject[] = {{"V"}, {"C"}};
inline constexpr Keyword kDelayRunState[] = {{"STOPPED"}, {"RUNNING"}};
inline constexpr Keyword kDelayEndState[] = {{"OFF"}, {"ON"}, {"LAST"}};
inline constexpr Keyword kDelayMode[] = {{"FIX"}, {"INC"}, {"DEC"}};
inline constexpr Keyword kDelayPattern[] = {{"01P"}, {"10P"}};
} // namespace keywords

/// The number of the channel that `text` names, 1 to 6.
std::optional<int> channelNamed(std::string_view text);

} // namespace kvxvirtual
