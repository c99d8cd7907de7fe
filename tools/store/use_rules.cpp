#include "tools/store/use_rules.h"

#include "base/option_grammar.h"
#include "base/status_codes.h"
#include "runtime/session_settings.h"
#include "tools/store/channel_targets.h"
#include "tools/store/plain_text.h"
#include "tools/store/resource_descriptor.h"
#include "tools/store/selector_names.h"
#include "tools/store/session_entry.h"
#include "tools/store/settings.h"
#include "tools/store/values.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>
#include <utility>

namespace store_tool
{
namespace
{

using Problems = std::vector<UseProblem>;

constexpr std::string_view kOwnModule = "KVX2800T";

bool isOwnModule(const XmlElement& element)
{
    return element.name == "IviSoftwareModule" &&
           (element.textOf("Name") == kOwnModule || element.textOf("Prefix") == kOwnModule);
}

/// The problem that a child has; none when there is no such child or no text.
Problems problemOfChild(const XmlElement& owner, std::string_view child, std::string (*problemOf)(std::string_view))
{
    const XmlElement* const element = owner.child(child);
    std::string text = element == nullptr ? std::string() : problemOf(trimmed(element->text));
    return text.empty() ? Problems() : Problems{{{element}, std::move(text)}};
}

// Hardware assets.

std::string problemOfDescriptor(std::string_view text)
{
    return isMalformedDescriptor(text) ? inQuotes(text) + " is no VISA resource name" : std::string();
}

Problems findDescriptorProblem(const XmlElement& asset)
{
    return problemOfChild(asset, "IOResourceDescriptor", problemOfDescriptor);
}

// The options of driver sessions.

/// The name of a status in the driver's header, and what it means for what is quoted with it.
struct FaultText
{
    ViStatus status;
    std::string_view name;
    std::string_view meaning;
};

constexpr std::array<FaultText, 3> kFaultTexts{{
    {base::kErrorCannotRecover, "IVI_ERROR_CANNOT_RECOVER", " is there more than once"},
    {base::kErrorBadOptionName, "IVI_ERROR_BAD_OPTION_NAME", " is an option, but no key of DriverSetup"},
    {base::kErrorBadOptionValue, "IVI_ERROR_BAD_OPTION_VALUE", " is no value of its key"},
}};

std::string failureToOpen(std::string_view reason, std::string_view statusName)
{
    return "no session opens with it: " + std::string(reason) + " (" + std::string(statusName) + ")";
}

std::string textOf(const drivekit::OptionFault& fault)
{
    const auto* const text = std::find_if(kFaultTexts.begin(), kFaultTexts.end(),
                                          [&fault](const FaultText& row) { return row.status == fault.status; });
    const bool isWithoutValue = fault.status == base::kErrorBadOptionValue && fault.quoted.empty();
    return failureToOpen(isWithoutValue ? "a key has no value" : inQuotes(fault.quoted) + std::string(text->meaning),
                         text->name);
}

/// The same key twice in one spelling, whatever the key.
std::optional<drivekit::OptionFault> findRepeatedKey(std::string_view driverSetup)
{
    std::unordered_set<std::string_view> names;
    while (const auto option = base::nextDriverSetupOption(driverSetup)) {
        if (!names.insert(option->name).second)
            return drivekit::OptionFault{base::kErrorCannotRecover, option->name};
    }
    return std::nullopt;
}

/// In the order in which opening a session looks at them.
std::string problemOfDriverSetup(std::string_view driverSetup)
{
    drivekit::SessionSettings settings;
    auto fault = findRepeatedKey(driverSetup);
    if (!fault)
        fault = drivekit::takeSettings(driverSetup, settings);
    if (!fault && settings.checkedOptions)
        fault = drivekit::findOptionFault("", driverSetup);
    return fault ? textOf(*fault) : std::string();
}

Problems findDriverSetupProblem(const XmlElement& session)
{
    return problemOfChild(session, "DriverSetup", problemOfDriverSetup);
}

std::string problemOfInterchangeCheck(std::string_view text)
{
    return parseBoolean(text).value_or(false)
               ? failureToOpen("the driver has no such check", "IVI_ERROR_BAD_OPTION_VALUE")
               : std::string();
}

Problems findInterchangeCheckProblem(const XmlElement& session)
{
    return problemOfChild(session, "InterchangeCheck", problemOfInterchangeCheck);
}

// Virtual names.

/// What the first index stands for that stands for no channel. There are few channels, so that it comes early.
std::string problemOfRange(std::string_view name, std::string_view mapTo, const XmlElement& item)
{
    const auto range = rangeOf(item);
    const auto start = parseInteger(item.textOf("StartingPhysicalIndex"));
    if (!range || !start)
        return {};
    const std::int64_t offset = std::int64_t{*start} - range->min;
    for (std::int64_t index = range->min; index <= range->max; ++index) {
        const std::string problem = problemOfChannels(std::string(mapTo) + std::to_string(index + offset));
        if (!problem.empty())
            return "maps " + inQuotes(std::string(name) + std::to_string(index)) + " to " + problem;
    }
    return {};
}

std::string problemOfTarget(const XmlElement& virtualName)
{
    const std::string_view mapTo = virtualName.textOf("MapTo");
    const auto& ranges = virtualName.itemsOf("VirtualRanges");
    if (mapTo.size() > kLongestText)
        return {};
    if (ranges.empty() && !mapTo.empty()) {
        const std::string problem = problemOfChannels(mapTo);
        return problem.empty() ? problem : "maps to " + problem;
    }
    for (const XmlElement& range : ranges) {
        std::string problem = problemOfRange(virtualName.textOf("Name"), mapTo, range);
        if (!problem.empty())
            return problem;
    }
    return {};
}

Problems findVirtualNameProblems(const XmlElement& session)
{
    Problems problems;
    for (const XmlElement& item : session.itemsOf("VirtualNames")) {
        std::string problem = item.name == "IviVirtualName" ? problemOfTarget(item) : std::string();
        if (!problem.empty())
            problems.push_back({{session.child("VirtualNames"), &item}, std::move(problem)});
    }
    return problems;
}

// Configurable initial settings.

bool isRead(const XmlElement& setting)
{
    return setting.name == "IviString" && setting.textOf("Name") == "model";
}

Problems findSettingProblems(const XmlElement& component)
{
    const XmlElement* const structure = settingsStructureOf(component);
    if (structure == nullptr)
        return {};
    Problems problems;
    for (const XmlElement& setting : structure->itemsOf("DataComponents")) {
        if (!isRead(setting))
            problems.push_back(
                {{component.child("DataComponents"), structure, structure->child("DataComponents"), &setting},
                 "has no effect: the driver reads the string 'model' alone"});
    }
    return problems;
}

struct UseRule
{
    std::string_view element;
    bool isOfOwnModule; ///< for what belongs to the driver's software module alone
    Problems (*find)(const XmlElement& element);
};

constexpr std::array<UseRule, 6> kRules{{
    {"IviSoftwareModule", true, findSettingProblems},
    {"IviHardwareAsset", false, findDescriptorProblem},
    {"IviDriverSession", true, findDriverSetupProblem},
    {"IviDriverSession", true, findInterchangeCheckProblem},
    {"IviDriverSession", true, findVirtualNameProblems},
    {"IviDriverSession", true, findSettingProblems},
}};

} // namespace

std::vector<UseProblem> useProblemsOf(const XmlElement& element, const XmlElement* softwareModule)
{
    const bool isOwn = isOwnModule(softwareModule == nullptr ? element : *softwareModule);
    Problems problems;
    for (const UseRule& rule : kRules) {
        if (rule.element != element.name || (rule.isOfOwnModule && !isOwn))
            continue;
        for (UseProblem& problem : rule.find(element))
            problems.push_back(std::move(problem));
    }
    return problems;
}

} // namespace store_tool
