#include "api/KVX2800T.h"

#include "api/arguments.h"
#include "api/attribute_accessors.h"
#include "runtime/attribute_dispatch.h"

#include <array>

namespace
{

using drivekit::Accessors;
using drivekit::AttributeInfo;

// In ascending order of the IDs.
constexpr std::array kAttributes = {
    AttributeInfo{KVX2800T_ATTR_VOLTAGE_LEVEL, "KVX2800T_ATTR_VOLTAGE_LEVEL",
                  Accessors<ViReal64>{.getter = api::KVX2800T_get_VOLTAGE_LEVEL}},
    AttributeInfo{KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, "KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR",
                  Accessors<ViInt32>{.getter = api::KVX2800T_get_CURRENT_LIMIT_BEHAVIOR}},
    AttributeInfo{KVX2800T_ATTR_CURRENT_LIMIT, "KVX2800T_ATTR_CURRENT_LIMIT",
                  Accessors<ViReal64>{.getter = api::KVX2800T_get_CURRENT_LIMIT}},
    AttributeInfo{KVX2800T_ATTR_OUTPUT_ENABLED, "KVX2800T_ATTR_OUTPUT_ENABLED",
                  Accessors<ViBoolean>{.getter = api::KVX2800T_get_OUTPUT_ENABLED}},
};

static_assert(std::is_sorted(kAttributes.begin(), kAttributes.end(),
                             [](const AttributeInfo& a, const AttributeInfo& b) { return a.id < b.id; }));

constexpr drivekit::AttributeRegistry kRegistry{kAttributes};

template <class Value>
ViStatus getValue(ViSession vi, ViConstString channel, ViAttr id, Value* value, std::string_view function)
{
    const ViStatus status = api::checkPointers(vi, function, "AttributeValue", value);
    return status < 0 ? status : drivekit::getAttribute(kRegistry, vi, channel, id, value);
}

} // namespace

ViStatus _VI_FUNC KVX2800T_GetAttributeViInt32(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                               ViInt32* AttributeValue)
{
    return getValue(Vi, RepCapIdentifier, AttributeID, AttributeValue, "KVX2800T_GetAttributeViInt32");
}

ViStatus _VI_FUNC KVX2800T_GetAttributeViReal64(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViReal64* AttributeValue)
{
    return getValue(Vi, RepCapIdentifier, AttributeID, AttributeValue, "KVX2800T_GetAttributeViReal64");
}

ViStatus _VI_FUNC KVX2800T_GetAttributeViBoolean(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViBoolean* AttributeValue)
{
    return getValue(Vi, RepCapIdentifier, AttributeID, AttributeValue, "KVX2800T_GetAttributeViBoolean");
}
