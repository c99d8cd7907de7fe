#include "platform/config_server/kinds.h"

#include <algorithm>
#include <array>

namespace config_server
{
namespace
{

struct KindName
{
    std::string_view element;
    Kinds kind;
};

constexpr std::array<KindName, 15> kKindNames{{
    {"IviConfigStore", kStore},
    {"IviHardwareAsset", kHardwareAsset},
    {"IviSoftwareModule", kSoftwareModule},
    {"IviSession", kSession},
    {"IviDriverSession", kDriverSession},
    {"IviLogicalName", kLogicalName},
    {"IviPhysicalName", kPhysicalName},
    {"IviVirtualName", kVirtualName},
    {"IviVirtualRange", kVirtualRange},
    {"IviBoolean", kBoolean},
    {"IviInteger", kInteger},
    {"IviReal", kReal},
    {"IviString", kString},
    {"IviStructure", kStructure},
    {"IviAPIReference", kApiReference},
}};

} // namespace

Kinds kindOf(std::string_view elementName)
{
    // Most elements of a file are properties.
    if (!elementName.starts_with("Ivi"))
        return 0;
    const auto* const found = std::ranges::find(kKindNames, elementName, &KindName::element);
    return found == kKindNames.end() ? 0 : found->kind;
}

} // namespace config_server
