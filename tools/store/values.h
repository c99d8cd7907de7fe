#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace store_tool
{

/// Values as a store file writes them, whatever the locale; nothing for any other text.
std::optional<bool> parseBoolean(std::string_view text);
std::optional<std::int32_t> parseInteger(std::string_view text);
std::optional<double> parseReal(std::string_view text); ///< finite ones only

/// True when the two are the same but for the case of their letters.
bool sameWord(std::string_view one, std::string_view other);

/// True for the characters that a physical or virtual name may have.
bool isIdentifier(std::string_view text);

} // namespace store_tool
