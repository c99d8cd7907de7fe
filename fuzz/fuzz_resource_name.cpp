// Any text as a VISA resource string: it is refused, or understood, and then the name that VISA tells of it is
// understood as the same resource. Nothing is opened.
#include "fuzz/input.h"
#include "visa/resource/resource_name.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace
{

using kvxfuzz::require;
using visa::ResourceName;

bool isSame(const ResourceName& name, const ResourceName& other)
{
    return name.kind == other.kind && name.board == other.board && name.address == other.address &&
           name.port == other.port && name.wantsSecure == other.wantsSecure && name.canonical == other.canonical;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto name = visa::parseResourceName({reinterpret_cast<const char*>(data), size});
    if (!name)
        return 0;
    // What is left out of a name is in the one that VISA tells, which has to fit an attribute.
    constexpr std::size_t kLongestText = 255;
    require(size <= visa::kLongestResourceName && name->canonical.size() <= kLongestText);
    if (name->canonical.size() > visa::kLongestResourceName)
        return 0;
    const auto again = visa::parseResourceName(name->canonical);
    require(again.has_value() && isSame(*name, *again));
    return 0;
}
