#pragma once

#include <stdexcept>

namespace base
{

inline constexpr const char* kInvalidKey = "invalid map<K, T> key";

/// A value or a channel that its table does not hold.
[[noreturn]] inline void throwInvalidKey()
{
    throw std::out_of_range(kInvalidKey);
}

/// A field that a reply is too short for.
[[noreturn]] inline void throwMissingField()
{
    throw std::out_of_range("invalid vector subscript");
}

} // namespace base
