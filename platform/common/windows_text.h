#pragma once

#include <optional>
#include <string>
#include <string_view>

// Texts and paths between this code, which has them in UTF-8, and Windows, which has them in UTF-16.
namespace platform
{

/// Nothing when the text is not UTF-8.
std::optional<std::wstring> wideText(std::string_view utf8);

/// Halves of surrogate pairs become U+FFFD.
std::string utf8Text(std::wstring_view wide);

/// The full path in the form that Windows takes at any length. Empty when there is no such path: no UTF-8, no text, or
/// more than Windows has room for.
std::wstring systemPath(std::string_view utf8);

} // namespace platform
