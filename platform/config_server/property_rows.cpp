#include "property_rows.h"

#include <algorithm>
#include <array>

namespace config_server
{

namespace
{

constexpr Kinds kComponent = kHardwareAsset | kAnySession;

constexpr std::array<PropertyRow, 15> kProperties{{
    {kStore, IVICONFIG_VAL_CONFIG_STORE_NAME, PropertyType::Text, "Name"},
    {kStore, IVICONFIG_VAL_CONFIG_STORE_DESCRIPTION, PropertyType::Text, "Description"},
    {kStore, IVICONFIG_VAL_CONFIG_STORE_REVISION, PropertyType::Text, "Revision"},
    {kStore, IVICONFIG_VAL_CONFIG_STORE_VENDOR, PropertyType::Text, "Vendor"},
    {kComponent, IVICONFIG_VAL_CONFIG_COMPONENT_NAME, PropertyType::Text, "Name"},
    {kComponent, IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION, PropertyType::Text, "Description"},
    {kHardwareAsset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR, PropertyType::Text, "IOResourceDescriptor"},
    {kAnySession, IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME, PropertyType::Text, "SoftwareModuleName"},
    {kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_CACHE, PropertyType::Flag, "Cache"},
    {kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK, PropertyType::Flag, "InterchangeCheck"},
    {kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS, PropertyType::Flag, "QueryInstrStatus"},
    {kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK, PropertyType::Flag, "RangeCheck"},
    {kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS, PropertyType::Flag, "RecordCoercions"},
    {kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_SIMULATE, PropertyType::Flag, "Simulate"},
    {kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP, PropertyType::Text, "DriverSetup"},
}};

struct KindName
{
    std::string_view element;
    Kinds kind;
};

constexpr std::array<KindName, 4> kKindNames{{
    {"IviConfigStore", kStore},
    {"IviHardwareAsset", kHardwareAsset},
    {"IviSession", kSession},
    {"IviDriverSession", kDriverSession},
}};

struct FlagWord
{
    std::string_view word;
    ViBoolean value;
};

constexpr std::array<FlagWord, 5> kFlagWords{{
    {"", VI_FALSE},
    {"0", VI_FALSE},
    {"1", VI_TRUE},
    {"false", VI_FALSE},
    {"true", VI_TRUE},
}};

} // namespace

const PropertyRow* findProperty(Kinds kind, ViInt32 number, PropertyType type)
{
    const auto* const row =
        std::find_if(kProperties.begin(), kProperties.end(), [kind, number, type](const PropertyRow& candidate) {
            return (candidate.kinds & kind) != 0 && candidate.number == number && candidate.type == type;
        });
    return row == kProperties.end() ? nullptr : row;
}

std::optional<ViBoolean> parseFlag(std::string_view text)
{
    const auto* const found = std::find_if(kFlagWords.begin(), kFlagWords.end(),
                                           [text](const FlagWord& candidate) { return candidate.word == text; });
    return found == kFlagWords.end() ? std::nullopt : std::optional(found->value);
}

Kinds kindOf(std::string_view elementName)
{
    const auto* const found =
        std::find_if(kKindNames.begin(), kKindNames.end(),
                     [elementName](const KindName& candidate) { return candidate.element == elementName; });
    return found == kKindNames.end() ? 0 : found->kind;
}

bool hasValidProperties(const Element& element)
{
    const Kinds kind = kindOf(element.name);
    return std::all_of(kProperties.begin(), kProperties.end(), [kind, &element](const PropertyRow& row) {
        const bool applies = (row.kinds & kind) != 0 && row.type == PropertyType::Flag;
        return !applies || parseFlag(element.textOf(row.element)).has_value();
    });
}

} // namespace config_server
