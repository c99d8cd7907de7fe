#include "api/KVX2800T.h"

#include "api/arguments.h"
#include "api/attribute_table.h"
#include "runtime/attribute_dispatch.h"

namespace
{

template <class Value>
ViStatus getValue(ViSession vi, ViConstString channel, ViAttr id, Value* value, std::string_view function)
{
    const ViStatus status = api::checkPointers(vi, function, "AttributeValue", value);
    return status < 0 ? status : drivekit::getAttribute(api::attributeRegistry(), vi, channel, id, value);
}

template <class Value, class Argument>
ViStatus setValue(ViSession vi, ViConstString channel, ViAttr id, Argument value)
{
    return drivekit::setAttribute<Value>(api::attributeRegistry(), vi, channel, id, value);
}

} // namespace

ViStatus _VI_FUNC KVX2800T_GetAttributeViInt32(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                               ViInt32* AttributeValue)
{
    return getValue(Vi, RepCapIdentifier, AttributeID, AttributeValue, __func__);
}

ViStatus _VI_FUNC KVX2800T_GetAttributeViReal64(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViReal64* AttributeValue)
{
    return getValue(Vi, RepCapIdentifier, AttributeID, AttributeValue, __func__);
}

ViStatus _VI_FUNC KVX2800T_GetAttributeViBoolean(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViBoolean* AttributeValue)
{
    return getValue(Vi, RepCapIdentifier, AttributeID, AttributeValue, __func__);
}

ViStatus _VI_FUNC KVX2800T_GetAttributeViSession(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViSession* AttributeValue)
{
    return getValue(Vi, RepCapIdentifier, AttributeID, AttributeValue, __func__);
}

ViStatus _VI_FUNC KVX2800T_GetAttributeViString(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViInt32 AttributeValueBufferSize, ViChar AttributeValue[])
{
    return drivekit::getStringAttribute(api::attributeRegistry(), Vi, RepCapIdentifier, AttributeID,
                                        AttributeValueBufferSize, AttributeValue);
}

ViStatus _VI_FUNC KVX2800T_SetAttributeViInt32(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                               ViInt32 AttributeValue)
{
    return setValue<ViInt32>(Vi, RepCapIdentifier, AttributeID, AttributeValue);
}

ViStatus _VI_FUNC KVX2800T_SetAttributeViReal64(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViReal64 AttributeValue)
{
    return setValue<ViReal64>(Vi, RepCapIdentifier, AttributeID, AttributeValue);
}

ViStatus _VI_FUNC KVX2800T_SetAttributeViBoolean(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViBoolean AttributeValue)
{
    return setValue<ViBoolean>(Vi, RepCapIdentifier, AttributeID, AttributeValue);
}

ViStatus _VI_FUNC KVX2800T_SetAttributeViSession(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                 ViSession AttributeValue)
{
    return setValue<ViSession>(Vi, RepCapIdentifier, AttributeID, AttributeValue);
}

ViStatus _VI_FUNC KVX2800T_SetAttributeViString(ViSession Vi, ViConstString RepCapIdentifier, ViAttr AttributeID,
                                                ViConstString AttributeValue)
{
    return setValue<ViString>(Vi, RepCapIdentifier, AttributeID, AttributeValue);
}
