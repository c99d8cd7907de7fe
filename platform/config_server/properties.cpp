#include "platform/config_server/properties.h"

#include "platform/config_server/values.h"

#include <algorithm>
#include <array>

namespace config_server
{
namespace
{

/// The path for programs of this one's pointer width.
constexpr std::string_view kModulePath = sizeof(void*) == 8 ? "ModulePath64" : "ModulePath";

using enum PropertyType;

constexpr std::array kProperties{
    PropertyRow{kStore, IVICONFIG_VAL_CONFIG_STORE_NAME, Text, "Name"},
    PropertyRow{kStore, IVICONFIG_VAL_CONFIG_STORE_DESCRIPTION, Text, "Description"},
    PropertyRow{kStore, IVICONFIG_VAL_CONFIG_STORE_REVISION, Text, "Revision"},
    PropertyRow{kStore, IVICONFIG_VAL_CONFIG_STORE_VENDOR, Text, "Vendor"},
    PropertyRow{kStore, IVICONFIG_VAL_CONFIG_STORE_SPEC_MAJOR_VERSION, Integer, "SpecificationMajorVersion"},
    PropertyRow{kStore, IVICONFIG_VAL_CONFIG_STORE_SPEC_MINOR_VERSION, Integer, "SpecificationMinorVersion"},

    PropertyRow{kConfigComponent, IVICONFIG_VAL_CONFIG_COMPONENT_NAME, Text, "Name"},
    PropertyRow{kConfigComponent, IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION, Text, "Description"},

    PropertyRow{kHardwareAsset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR, Text, "IOResourceDescriptor"},

    PropertyRow{kSoftwareModule, IVICONFIG_VAL_SW_MODULE_PATH, Text, kModulePath},
    PropertyRow{kSoftwareModule, IVICONFIG_VAL_SW_MODULE_PREFIX, Text, "Prefix"},
    PropertyRow{kSoftwareModule, IVICONFIG_VAL_SW_MODULE_PROGID, Text, "ProgID"},
    PropertyRow{kSoftwareModule, IVICONFIG_VAL_SW_MODULE_SUPPORTED_INSTR_MODELS, Text, "SupportedInstrumentModels"},
    PropertyRow{kSoftwareModule, IVICONFIG_VAL_SW_MODULE_PATH_32, Text, "ModulePath"},
    PropertyRow{kSoftwareModule, IVICONFIG_VAL_SW_MODULE_PATH_64, Text, "ModulePath64"},
    PropertyRow{kSoftwareModule, IVICONFIG_VAL_SW_MODULE_ASMBLY_QLFD_CLASS_NAME, Text, "AssemblyQualifiedClassName"},

    PropertyRow{kAnySession, IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME, Text, "SoftwareModuleName"},
    PropertyRow{kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_CACHE, Flag, "Cache"},
    PropertyRow{kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK, Flag, "InterchangeCheck"},
    PropertyRow{kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS, Flag, "QueryInstrStatus"},
    PropertyRow{kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK, Flag, "RangeCheck"},
    PropertyRow{kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS, Flag, "RecordCoercions"},
    PropertyRow{kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_SIMULATE, Flag, "Simulate"},
    PropertyRow{kDriverSession, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP, Text, "DriverSetup"},

    PropertyRow{kLogicalName, IVICONFIG_VAL_LOGICAL_NAME_NAME, Text, "Name"},
    PropertyRow{kLogicalName, IVICONFIG_VAL_LOGICAL_NAME_DESCRIPTION, Text, "Description"},

    PropertyRow{kPhysicalName, IVICONFIG_VAL_PHYSICAL_NAME_NAME, Text, "Name"},
    PropertyRow{kPhysicalName, IVICONFIG_VAL_PHYSICAL_NAME_RCNAME, Text, "RCName"},

    PropertyRow{kVirtualName, IVICONFIG_VAL_VIRTUAL_NAME_NAME, Text, "Name"},
    PropertyRow{kVirtualName, IVICONFIG_VAL_VIRTUAL_NAME_MAPTO, Text, "MapTo"},
    PropertyRow{kVirtualRange, IVICONFIG_VAL_VIRTUAL_RANGE_NAME, Text, "Name"},
    PropertyRow{kVirtualRange, IVICONFIG_VAL_VIRTUAL_RANGE_MIN, Integer, "Min"},
    PropertyRow{kVirtualRange, IVICONFIG_VAL_VIRTUAL_RANGE_MAX, Integer, "Max"},
    PropertyRow{kVirtualRange, IVICONFIG_VAL_VIRTUAL_RANGE_START_PHYSICAL_INDEX, Integer, "StartingPhysicalIndex"},

    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_NAME, Text, "Name"},
    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_DESCRIPTION, Text, "Description"},
    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_HELP_CONTEXT_ID, Integer, "HelpContextID"},
    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_HELP_FILE_PATH, Text, "HelpFilePath"},
    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_READ_ONLY, Flag, "ReadOnly"},
    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_SW_MODULE_KEY, Text, "SoftwareModuleKey"},
    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_TYPE, Text, "Type"},
    PropertyRow{kDataComponent, IVICONFIG_VAL_DATA_COMPONENT_USED_IN_SESSION, Text, "UsedInSession"},
    PropertyRow{kBoolean, IVICONFIG_VAL_DATA_COMPONENT_VALUE, Flag, "Value"},
    PropertyRow{kInteger, IVICONFIG_VAL_DATA_COMPONENT_VALUE, Integer, "Value"},
    PropertyRow{kReal, IVICONFIG_VAL_DATA_COMPONENT_VALUE, Real, "Value"},
    PropertyRow{kString, IVICONFIG_VAL_DATA_COMPONENT_VALUE, Text, "Value", true},
    PropertyRow{kApiReference, IVICONFIG_VAL_DATA_COMPONENT_VALUE, Text, "Value"},
    PropertyRow{kInteger | kReal, IVICONFIG_VAL_DATA_COMPONENT_UNITS, Text, "Units"},
};

bool isValid(std::string_view text, PropertyType type)
{
    switch (type) {
    case Flag:
        return parseFlag(text).has_value();
    case Integer:
        return parseInteger(text).has_value();
    case Real:
        return parseReal(text).has_value();
    case Text:
        break;
    }
    return true;
}

} // namespace

const PropertyRow* findProperty(Kinds kind, ViInt32 number, PropertyType type)
{
    const auto* const found = std::ranges::find_if(kProperties, [kind, number, type](const PropertyRow& row) {
        return (row.kinds & kind) != 0 && row.number == number && row.type == type;
    });
    return found == kProperties.end() ? nullptr : found;
}

std::string_view textOf(const Element& object, const PropertyRow& row)
{
    return row.verbatim ? object.verbatimTextOf(row.element) : object.textOf(row.element);
}

bool hasValidProperties(const Element& object)
{
    const Kinds kind = kindOf(object.name);
    return kind == 0 || std::ranges::all_of(kProperties, [kind, &object](const PropertyRow& row) {
               const bool applies = (row.kinds & kind) != 0 && row.type != Text;
               return !applies || isValid(textOf(object, row), row.type);
           });
}

} // namespace config_server
