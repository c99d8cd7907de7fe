#pragma once

#include "runtime/attribute_registry.h"
#include "runtime/error_messages.h"

#include <type_traits>

/// From an attribute ID and a value type to the attribute's functions. The dispatch neither resolves the session nor
/// locks it: the functions it calls do. What it refuses is recorded on `vi` and returned, in this order: an unknown ID,
/// another value type, a missing function.
namespace drivekit
{

enum class Direction
{
    Get,
    Set,
};

/// A row of the registry and its functions; null, with the recorded status, when the dispatch refuses.
template <class Value>
struct FoundAttribute
{
    ViStatus status = VI_SUCCESS;
    const Accessors<Value>* accessors = nullptr;
};

/// The functions of an attribute, if its values have the type `Value`.
template <class Value>
const Accessors<Value>* accessorsOf(const AttributeInfo& info)
{
    if constexpr (std::is_same_v<Value, ViSession>)
        return nullptr;
    else
        return std::get_if<Accessors<Value>>(&info.accessors);
}

/// Finds the attribute `id` with values of the type `Value` and a function for `direction`.
template <class Value>
FoundAttribute<Value> findAttribute(const AttributeRegistry& registry, ViSession vi, ViAttr id, Direction direction)
{
    const bool isGet = direction == Direction::Get;
    const AttributeInfo* const info = registry.find(id);
    if (info == nullptr)
        return {ReportError(vi, base::kErrorInvalidAttribute, {DecimalArgument(id)})};
    const auto* const accessors = accessorsOf<Value>(*info);
    if (accessors == nullptr)
        return {ReportError(vi, base::kErrorTypesDoNotMatch,
                            {isGet ? "Get" : "Set", kTypeName<Value>, info->name, info->typeName()})};
    if (isGet && accessors->getter == nullptr)
        return {ReportError(vi, base::kErrorIviAttrNotReadable, {info->name})};
    if (!isGet && accessors->setter == nullptr)
        return {ReportError(vi, base::kErrorIviAttrNotWritable, {info->name})};
    return {VI_SUCCESS, accessors};
}

template <class Value>
ViStatus getAttribute(const AttributeRegistry& registry, ViSession vi, ViConstString channel, ViAttr id, Value* value)
{
    const auto found = findAttribute<Value>(registry, vi, id, Direction::Get);
    return found.accessors == nullptr ? found.status : found.accessors->getter(vi, channel, value);
}

template <class Value, class Argument = Value>
ViStatus setAttribute(const AttributeRegistry& registry, ViSession vi, ViConstString channel, ViAttr id, Argument value)
{
    const auto found = findAttribute<Value>(registry, vi, id, Direction::Set);
    return found.accessors == nullptr ? found.status : found.accessors->setter(vi, channel, value);
}

/// The size that is reported for every text that a buffer does not hold, and the size of a buffer of unknown size.
inline constexpr ViInt32 kLargestTextSize = 4096;

/// Reads a text attribute with the buffer protocol of IVI-3.2 section 3.1.2.1. kLargestTextSize, a positive number,
/// asks for a larger buffer: for a size of 0, and when the text fills the buffer to the last byte, which is also what a
/// cut text looks like. A negative size says that the buffer holds any text.
ViStatus getStringAttribute(const AttributeRegistry& registry, ViSession vi, ViConstString channel, ViAttr id,
                            ViInt32 bufferSize, ViChar value[]);

} // namespace drivekit
