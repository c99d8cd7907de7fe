#include "runtime/driver_identity.h"

#include "runtime/text_list.h"

namespace drivekit
{

std::string_view familyOfModel(std::string_view model)
{
    std::size_t index = 0;
    while (const auto supported = listEntry(kSupportedModels, index++))
        if (*supported == model)
            return kModelFamily;
    return {};
}

} // namespace drivekit
