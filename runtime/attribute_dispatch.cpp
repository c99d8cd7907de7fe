#include "runtime/attribute_dispatch.h"

#include <cstring>

namespace drivekit
{

ViStatus getStringAttribute(const AttributeRegistry& registry, ViSession vi, ViConstString channel, ViAttr id,
                            ViInt32 bufferSize, ViChar value[])
{
    const auto found = findAttribute<ViString>(registry, vi, id, Direction::Get);
    if (found.accessors == nullptr)
        return found.status;
    // The message names the size, not the buffer.
    if (value == nullptr && bufferSize != 0)
        return ReportError(vi, base::kErrorNullPointer, {"GetAttributeViString", "AttributeValueBufferSize"});
    if (bufferSize == 0)
        return kLargestTextSize;
    if (bufferSize < 0)
        return found.accessors->getter(vi, channel, kLargestTextSize, value);
    const ViStatus status = found.accessors->getter(vi, channel, bufferSize, value);
    if (status < 0)
        return status;
    return std::strlen(value) + 1 == static_cast<std::size_t>(bufferSize) ? kLargestTextSize : status;
}

} // namespace drivekit
