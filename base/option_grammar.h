#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

/// The grammar of IVI option strings (IVI-3.2, "Initialize"): "Simulate=1, RangeCheck=0, DriverSetup=Model:KVX2833T".
/// Session and instrument read their options with it. Everything here takes time in proportion to the text and keeps
/// no state.
namespace base
{

/// The six inherent options that an option string can set.
struct InherentOptions
{
    bool cache = false;
    bool interchangeCheck = false;
    bool queryInstrumentStatus = false;
    bool rangeCheck = false;
    bool recordCoercions = false;
    bool simulate = false;
};

/// What holds where neither the configuration store nor the option string says otherwise (IVI-3.2 Table 6-1).
inline constexpr InherentOptions kDefaultOptions{.cache = true, .rangeCheck = true};

/// The name of an inherent option as the grammar compares it, in lower case, and the flag it sets.
struct InherentOptionName
{
    std::string_view name;
    bool InherentOptions::*flag;
};

inline constexpr std::array<InherentOptionName, 6> kInherentOptionNames = {{
    {"cache", &InherentOptions::cache},
    {"interchangecheck", &InherentOptions::interchangeCheck},
    {"queryinstrstatus", &InherentOptions::queryInstrumentStatus},
    {"rangecheck", &InherentOptions::rangeCheck},
    {"recordcoercions", &InherentOptions::recordCoercions},
    {"simulate", &InherentOptions::simulate},
}};

/// The flag that `name`, in lower case, sets; null for every other name.
bool InherentOptions::*inherentOption(std::string_view name);

/// The DriverSetup key that names the instrument model, compared ignoring case.
inline constexpr std::string_view kModelKey = "Model";

/// The parts of an option string; views of it.
struct OptionText
{
    /// What stands in front of DriverSetup: the inherent options.
    std::string_view inherent;
    /// What follows "DriverSetup=", up to the end of the line; nothing when there is no DriverSetup.
    std::optional<std::string_view> driverSetup;
};

OptionText splitOptionString(std::string_view optionString);

/// A name and its value; views of the text they were found in.
struct OptionPair
{
    std::string_view name;
    std::string_view value;
};

/// Takes the next "name=value" of the inherent options off `text`, passing over what forms no pair. Nothing when there
/// is none left.
std::optional<OptionPair> nextInherentOption(std::string_view& text);

/// The same for the "name:value" and "name=value" pairs of a DriverSetup text.
std::optional<OptionPair> nextDriverSetupOption(std::string_view& text);

/// "true", "vi_true", "1": true; "false", "vi_false", "0": false; nothing for every other word. Lower case only.
std::optional<bool> parseOptionValue(std::string_view word);

/// A copy in lower case.
std::string lowerCased(std::string_view text);

} // namespace base
