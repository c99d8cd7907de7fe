#pragma once

#include "element.h"

#include <string>
#include <string_view>

namespace config_server
{

/// Largest store file that is read, in bytes.
inline constexpr std::size_t kLargestFile = std::size_t{16} * 1024 * 1024;

/// Deepest nesting of elements that is read.
inline constexpr std::size_t kDeepestNesting = 64;

/// Most elements that are read: each takes some hundred bytes of memory, but as few as four in the file.
inline constexpr std::size_t kMostElements = 100000;

/// Reads a store file. Null when it is missing, beyond these limits or not a well-formed store.
Document loadStoreFile(const std::string& path);

/// The same for the text of a file.
Document parseStore(std::string text);

/// The store as a first installation leaves it, without entries.
Document emptyStore();

} // namespace config_server
