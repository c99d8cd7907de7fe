#pragma once

#include "runtime/attribute_registry.h"
#include "runtime/error_messages.h"

/// From an attribute ID and a value type to the attribute's functions. The dispatch neither resolves the session nor
/// locks it: the functions it calls do. What it refuses is recorded on `vi` and returned, in this order: an unknown ID,
/// another value type, a missing function.
namespace drivekit
{

/// A row of the registry and its functions; null, with the recorded status, when the dispatch refuses.
template <class Value>
struct FoundAttribute
{
    ViStatus status = VI_SUCCESS;
    const AttributeInfo* info = nullptr;
    const Accessors<Value>* accessors = nullptr;
};

/// Finds `id` if its values have the type `Value`; `direction` is "Get" or "Set".
template <class Value>
FoundAttribute<Value> findAttribute(const AttributeRegistry& registry, ViSession vi, ViAttr id,
                                    std::string_view direction)
{
    const AttributeInfo* const info = registry.find(id);
    if (info == nullptr)
        return {ReportError(vi, kErrorInvalidAttribute, {DecimalArgument(id)})};
    const auto* const accessors = std::get_if<Accessors<Value>>(&info->accessors);
    if (accessors == nullptr)
        return {ReportError(vi, kErrorTypesDoNotMatch, {direction, kTypeName<Value>, info->name, info->typeName()})};
    return {VI_SUCCESS, info, accessors};
}

template <class Value>
ViStatus getAttribute(const AttributeRegistry& registry, ViSession vi, ViConstString channel, ViAttr id, Value* value)
{
    const auto found = findAttribute<Value>(registry, vi, id, "Get");
    if (found.accessors == nullptr)
        return found.status;
    if (found.accessors->getter == nullptr)
        return ReportError(vi, kErrorAttributeNotReadable, {found.info->name});
    return found.accessors->getter(vi, channel, value);
}

} // namespace drivekit
