#pragma once

#include "platform/config_server/element.h"

#include <string>
#include <string_view>

namespace config_server
{

/// Largest store file that is read, in bytes. Ten thousand driver sessions with virtual names and settings take about
/// half.
inline constexpr std::size_t kLargestFile = std::size_t{64} * 1024 * 1024;

/// Deepest nesting of elements that is read.
inline constexpr std::size_t kDeepestNesting = 64;

/// Most elements, attributes and other pieces of markup that are read: each takes some hundred bytes of memory, but as
/// few as four in the file. Ten thousand driver sessions have about half as many.
inline constexpr std::size_t kMostElements = 2'000'000;

/// Reads a store file. Null when it is missing, beyond these limits or not a well-formed store.
Document loadStoreFile(const std::string& path);

/// The same for the text of a file.
Document parseStore(std::string text);

/// The store as a first installation leaves it, without entries.
Document emptyStore();

} // namespace config_server
