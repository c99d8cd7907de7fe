#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace kvxtest
{

/// Whether placeOf() knows this compiler's pointers to virtual functions: those of the Itanium C++ ABI, of which ARM
/// has its own version.
#if defined(__GXX_ABI_VERSION) && !defined(__arm__) && !defined(__aarch64__)
inline constexpr bool kPlacesAreKnown = true;
#else
inline constexpr bool kPlacesAreKnown = false;
#endif

/// Where a virtual operation stands in its class; the destructor is 0. The pointer holds one more than the offset in
/// the table of virtual functions, which has two places for the destructor.
template <class Method>
std::size_t placeOf(Method operation)
{
    std::size_t offset = 0;
    static_assert(sizeof operation >= sizeof offset);
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / sizeof(void*) - 1;
}

/// What a call of the virtual operation in this place of the object's class leads to.
template <class Object>
const void* functionAt(const Object& object, std::size_t place)
{
    const void* const* functions = nullptr;
    static_assert(sizeof object >= sizeof functions);
    std::memcpy(&functions, static_cast<const void*>(&object), sizeof functions);
    return functions[place + 1];
}

/// Expects that these are the places behind the destructor, in order and without a gap.
inline void expectConsecutive(const std::vector<std::size_t>& places)
{
    for (std::size_t i = 0; i < places.size(); ++i)
        EXPECT_EQ(places[i], i + 1);
}

} // namespace kvxtest
