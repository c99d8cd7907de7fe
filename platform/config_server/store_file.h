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

/// Reads a store file. Null when it is missing, too large or not a well-formed store.
Document loadStoreFile(const std::string& path);

/// The same for the text of a file.
Document parseStore(std::string text);

/// The store as a first installation leaves it, without entries.
Document emptyStore();

} // namespace config_server
