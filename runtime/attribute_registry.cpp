#include "runtime/attribute_registry.h"

#include "runtime/driver_session.h"

namespace drivekit
{

void AttributeInfo::invalidate(DriverSession& session, bool allChannels, std::string_view channel) const
{
    std::visit(
        [&]<class Value>(const Accessors<Value>&) {
            auto& cache = session.attributeCache<Value>();
            if (allChannels)
                cache.invalidateAll(id);
            else
                cache.invalidate(id, channel);
        },
        accessors);
}

} // namespace drivekit
