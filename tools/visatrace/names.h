#pragma once

#include <visa.h>

#include <string_view>

/// VISA's own names of its numbers, as visa.h spells them. A number that it does not define has an empty one.
namespace visatrace
{

std::string_view statusName(ViStatus status);
std::string_view eventName(ViEventType type);

/// What viGetAttribute stores for an attribute. Of an unknown one not even the size is known.
enum class ValueType
{
    Unknown,
    Unsigned8,
    Unsigned16,
    Signed16,
    Unsigned32,
    Signed32,
    Unsigned64,
    Event,
    Status,
    Pointer,
    Text
};

struct Attribute
{
    std::string_view name;
    ValueType type;
};

Attribute attributeOf(ViAttr attribute);

} // namespace visatrace
