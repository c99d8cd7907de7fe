#pragma once

#include <IviVisaType.h>

#include <array>
#include <ostream>
#include <string>
#include <string_view>

namespace kvxtest
{

/// One attribute, as a program sees it.
struct AttributeRow
{
    /// Without the prefix of its constant.
    const char* name;
    ViAttr id;
    std::string_view type;
    bool canBeSet;
    bool ofChannel;
    /// What it reads in every session; null when that depends.
    const char* value = nullptr;

    std::string constant() const { return std::string("KVX2800T_ATTR_") + name; }
};

inline void PrintTo(const AttributeRow& row, std::ostream* stream)
{
    *stream << row.name;
}

inline constexpr std::array kAttributeRows = {
    AttributeRow{"SPECIFIC_DRIVER_DESCRIPTION", 1050514, "ViString", false, false, "IVI-C Driver for KVX2800T"},
    AttributeRow{"SPECIFIC_DRIVER_PREFIX", 1050302, "ViString", false, false, "KVX2800T"},
    AttributeRow{"SPECIFIC_DRIVER_VENDOR", 1050513, "ViString", false, false, "Tessaro Instruments"},
    AttributeRow{"SPECIFIC_DRIVER_REVISION", 1050551, "ViString", false, false, "1.0.0.0"},
    AttributeRow{"SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION", 1050515, "ViInt32", false, false, "3"},
    AttributeRow{"SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION", 1050516, "ViInt32", false, false, "0"},
    AttributeRow{"RANGE_CHECK", 1050002, "ViBoolean", true, false, "1"},
    AttributeRow{"QUERY_INSTRUMENT_STATUS", 1050003, "ViBoolean", true, false},
    AttributeRow{"CACHE", 1050004, "ViBoolean", true, false, "0"},
    AttributeRow{"SIMULATE", 1050005, "ViBoolean", true, false},
    AttributeRow{"RECORD_COERCIONS", 1050006, "ViBoolean", true, false, "0"},
    AttributeRow{"INTERCHANGE_CHECK", 1050021, "ViBoolean", true, false, "0"},
    AttributeRow{"LOGICAL_NAME", 1050305, "ViString", false, false},
    AttributeRow{"IO_RESOURCE_DESCRIPTOR", 1050304, "ViString", false, false},
    AttributeRow{"DRIVER_SETUP", 1050007, "ViString", false, false},
    AttributeRow{"GROUP_CAPABILITIES", 1050401, "ViString", false, false, "IviDCPwrBase,IviDCPwrMeasurement"},
    AttributeRow{"SUPPORTED_INSTRUMENT_MODELS", 1050327, "ViString", false, false, "KVX2833T"},
    AttributeRow{"INSTRUMENT_FIRMWARE_REVISION", 1050510, "ViString", false, false},
    AttributeRow{"INSTRUMENT_MANUFACTURER", 1050511, "ViString", false, false},
    AttributeRow{"INSTRUMENT_MODEL", 1050512, "ViString", false, false},
    AttributeRow{"CURRENT_LIMIT_BEHAVIOR", 1250004, "ViInt32", true, true},
    AttributeRow{"CURRENT_LIMIT", 1250005, "ViReal64", true, true},
    AttributeRow{"OUTPUT_ENABLED", 1250006, "ViBoolean", true, true},
    AttributeRow{"OVP_ENABLED", 1250002, "ViBoolean", true, true},
    AttributeRow{"OVP_LIMIT", 1250003, "ViReal64", true, true},
    AttributeRow{"VOLTAGE_LEVEL", 1250001, "ViReal64", true, true},
    AttributeRow{"CHANNEL_COUNT", 1050203, "ViInt32", false, false, "6"},
};
static_assert(kAttributeRows.size() == 27);

} // namespace kvxtest
