#pragma once

#include "tests/support/driver/attribute_rows.h"

#include "api/KVX2800T.h"

#include <array>
#include <string>

namespace kvxtest
{

template <class Value, class Get>
std::string readNumber(ViSession vi, ViConstString channel, ViAttr id, Get get)
{
    Value value{};
    const ViStatus status = get(vi, channel, id, &value);
    return status == VI_SUCCESS ? std::to_string(value) : "status " + std::to_string(status);
}

/// An attribute's value, read through the function of its type, as text; "status" and the status when that is not 0.
inline std::string readAttribute(ViSession vi, ViConstString channel, const AttributeRow& row)
{
    if (row.type == "ViInt32")
        return readNumber<ViInt32>(vi, channel, row.id, KVX2800T_GetAttributeViInt32);
    if (row.type == "ViReal64")
        return readNumber<ViReal64>(vi, channel, row.id, KVX2800T_GetAttributeViReal64);
    if (row.type == "ViBoolean")
        return readNumber<ViBoolean>(vi, channel, row.id, KVX2800T_GetAttributeViBoolean);
    std::array<ViChar, 256> text{};
    const ViStatus status =
        KVX2800T_GetAttributeViString(vi, channel, row.id, static_cast<ViInt32>(text.size()), text.data());
    return status == VI_SUCCESS ? text.data() : "status " + std::to_string(status);
}

} // namespace kvxtest
