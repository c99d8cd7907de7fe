#include "runtime/session_settings.h"

#include "base/ascii.h"
#include "base/option_grammar.h"
#include "base/status_codes.h"

#include <visa.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <span>

namespace drivekit
{
namespace
{

using base::ascii::equalIgnoringCase;
using base::ascii::trimmed;
using InstLink::IoSettings;

/// A word that a key takes, and what it stands for.
struct Word
{
    std::string_view word;
    ViInt32 value;
};

constexpr std::array<Word, 4> kFlags = {{{"1", 1}, {"0", 0}, {"true", 1}, {"false", 0}}};
constexpr std::array<Word, 1> kInfinite = {{{"Infinite", -1}}};
constexpr std::array<Word, 5> kParities = {{
    {"None", VI_ASRL_PAR_NONE},
    {"Odd", VI_ASRL_PAR_ODD},
    {"Even", VI_ASRL_PAR_EVEN},
    {"Mark", VI_ASRL_PAR_MARK},
    {"Space", VI_ASRL_PAR_SPACE},
}};
constexpr std::array<Word, 3> kStopBits = {{
    {"1", VI_ASRL_STOP_ONE},
    {"1.5", VI_ASRL_STOP_ONE5},
    {"2", VI_ASRL_STOP_TWO},
}};
constexpr std::array<Word, 4> kFlowControls = {{
    {"None", VI_ASRL_FLOW_NONE},
    {"XonXoff", VI_ASRL_FLOW_XON_XOFF},
    {"RtsCts", VI_ASRL_FLOW_RTS_CTS},
    {"DtrDsr", VI_ASRL_FLOW_DTR_DSR},
}};

std::optional<ViInt32> wordValue(std::span<const Word> words, std::string_view value)
{
    const auto found =
        std::find_if(words.begin(), words.end(), [&](const Word& word) { return equalIgnoringCase(word.word, value); });
    return found == words.end() ? std::nullopt : std::optional(found->value);
}

/// A decimal number from `lowest` to `highest`, digits alone.
std::optional<ViInt32> numberIn(std::string_view text, ViInt32 lowest, ViInt32 highest)
{
    ViInt32 number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < lowest || number > highest)
        return std::nullopt;
    return number;
}

// What keys do with their values; false for a value that a key does not take.

template <bool SessionSettings::*flag>
bool takeFlag(std::string_view value, SessionSettings& settings)
{
    const auto parsed = wordValue(kFlags, value);
    settings.*flag = parsed.value_or(settings.*flag) != 0;
    return parsed.has_value();
}

bool takeFreshReplies(std::string_view value, SessionSettings& settings)
{
    const auto parsed = wordValue(kFlags, value);
    settings.connection.freshReplies = parsed.value_or(settings.connection.freshReplies) != 0;
    return parsed.has_value();
}

bool takeProfile(std::string_view value, SessionSettings& settings)
{
    if (!equalIgnoringCase(value, "Bench"))
        return false;
    settings.safeErrors = settings.detailedErrors = settings.trueReadings = settings.checkedOptions = true;
    settings.statefulSimulation = settings.connection.freshReplies = true;
    return true;
}

constexpr ViInt32 kLargest = std::numeric_limits<ViInt32>::max();

bool takeMessageLog(std::string_view value, SessionSettings& settings)
{
    constexpr ViInt32 kMostRecords = 10000;
    const auto parsed = numberIn(value, 1, kMostRecords);
    settings.messageLog = parsed.value_or(settings.messageLog);
    return parsed.has_value();
}

template <auto parameter, ViInt32 lowest, ViInt32 highest>
bool takeNumber(std::string_view value, SessionSettings& settings)
{
    const auto parsed = numberIn(value, lowest, highest);
    settings.connection.io.*parameter = parsed.value_or(static_cast<ViInt32>(settings.connection.io.*parameter));
    return parsed.has_value();
}

template <auto parameter, const auto& words>
bool takeWord(std::string_view value, SessionSettings& settings)
{
    const auto parsed = wordValue(words, value);
    settings.connection.io.*parameter = parsed.value_or(static_cast<ViInt32>(settings.connection.io.*parameter));
    return parsed.has_value();
}

/// Milliseconds.
template <auto parameter>
bool takeTimeout(std::string_view value, SessionSettings& settings)
{
    return takeWord<parameter, kInfinite>(value, settings) || takeNumber<parameter, 0, kLargest>(value, settings);
}

struct Key
{
    std::string_view name;
    bool (*take)(std::string_view value, SessionSettings& settings);
};

// The profile stands in front of the keys that it switches on: they win.
constexpr std::array<Key, 15> kKeys = {{
    {"Profile", takeProfile},
    {"SafeErrors", takeFlag<&SessionSettings::safeErrors>},
    {"FreshReplies", takeFreshReplies},
    {"DetailedErrors", takeFlag<&SessionSettings::detailedErrors>},
    {"TrueReadings", takeFlag<&SessionSettings::trueReadings>},
    {"CheckedOptions", takeFlag<&SessionSettings::checkedOptions>},
    {"StatefulSimulation", takeFlag<&SessionSettings::statefulSimulation>},
    {"OpenTimeout", takeTimeout<&IoSettings::openTimeoutMs>},
    {"IoTimeout", takeTimeout<&IoSettings::timeoutMs>},
    {"BaudRate", takeNumber<&IoSettings::baudRate, 1, kLargest>},
    {"DataBits", takeNumber<&IoSettings::dataBits, 5, 8>},
    {"Parity", takeWord<&IoSettings::parity, kParities>},
    {"StopBits", takeWord<&IoSettings::stopBits, kStopBits>},
    {"FlowControl", takeWord<&IoSettings::flowControl, kFlowControls>},
    {"MessageLog", takeMessageLog},
}};

/// Takes what stands in front of the next comma off `text`, without blanks around it.
std::string_view takeItem(std::string_view& text)
{
    const std::string_view item = text.substr(0, text.find(','));
    text.remove_prefix(std::min(text.size(), item.size() + 1));
    return trimmed(item);
}

/// A name and what stands behind its sign, "" without one.
base::OptionPair split(std::string_view item, std::string_view signs)
{
    const std::size_t sign = item.find_first_of(signs);
    return {trimmed(item.substr(0, sign)), sign == std::string_view::npos ? "" : trimmed(item.substr(sign + 1))};
}

/// A key alone, which forms no pair, asks for something all the same.
bool isWithoutValue(const Key& key, std::string_view driverSetup)
{
    while (!driverSetup.empty()) {
        const base::OptionPair pair = split(takeItem(driverSetup), "=:");
        if (pair.value.empty() && equalIgnoringCase(pair.name, key.name))
            return true;
    }
    return false;
}

std::optional<OptionFault> takeKey(const Key& key, std::string_view driverSetup, SessionSettings& settings)
{
    if (isWithoutValue(key, driverSetup))
        return OptionFault{base::kErrorBadOptionValue, ""};
    bool isThere = false;
    while (const auto option = base::nextDriverSetupOption(driverSetup)) {
        if (!equalIgnoringCase(option->name, key.name))
            continue;
        if (isThere)
            return OptionFault{base::kErrorCannotRecover, option->name};
        isThere = true;
        const std::string_view value = trimmed(option->value);
        if (!key.take(value, settings))
            return OptionFault{base::kErrorBadOptionValue, value};
    }
    return std::nullopt;
}

// Reading to the letter.

bool isInherentOption(std::string_view name)
{
    return std::any_of(base::kInherentOptionNames.begin(), base::kInherentOptionNames.end(),
                       [name](const auto& option) { return equalIgnoringCase(option.name, name); });
}

bool isBoolean(std::string_view value)
{
    constexpr std::size_t kLongestWord = 8;
    std::array<char, kLongestWord> lower{};
    if (value.size() > lower.size())
        return false;
    std::transform(value.begin(), value.end(), lower.begin(), base::ascii::toLower);
    return base::parseOptionValue({lower.data(), value.size()}).has_value();
}

std::optional<OptionFault> findItemFault(std::string_view item)
{
    if (item.empty())
        return std::nullopt;
    const auto [name, value] = split(item, "=");
    if (name.empty())
        return OptionFault{base::kErrorMissingOptionName, name};
    if (!isInherentOption(name))
        return OptionFault{base::kErrorBadOptionName, name};
    if (value.empty())
        return OptionFault{base::kErrorMissingOptionValue, name};
    if (!isBoolean(value))
        return OptionFault{base::kErrorBadOptionValue, value};
    return std::nullopt;
}

} // namespace

std::optional<OptionFault> takeSettings(std::string_view driverSetup, SessionSettings& settings)
{
    for (const Key& key : kKeys)
        if (const auto fault = takeKey(key, driverSetup, settings))
            return fault;
    return std::nullopt;
}

std::optional<OptionFault> findOptionFault(std::string_view optionString, std::string_view driverSetup)
{
    for (std::string_view rest = base::splitOptionString(optionString).inherent; !rest.empty();)
        if (const auto fault = findItemFault(takeItem(rest)))
            return fault;
    while (!driverSetup.empty()) {
        const std::string_view name = split(takeItem(driverSetup), "=:").name;
        if (isInherentOption(name))
            return OptionFault{base::kErrorBadOptionName, name};
    }
    return std::nullopt;
}

} // namespace drivekit
