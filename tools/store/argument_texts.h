#pragma once

#include "tools/store/session_entry.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace store_tool
{

/// Why a text of the command line may not get into a store; empty when it may.
std::string complaintAboutText(const std::string& text);

/// The same for one that must not be empty.
std::string complaintAboutName(const std::string& text);

/// Reads Name=MapTo; nothing for any other text.
std::optional<VirtualName> parseVirtualName(std::string_view text);

/// Reads Name=MapTo:min-max@start, such as Rail=OutputChannel:1-3@2; the names may be empty.
std::optional<VirtualName> parseVirtualRange(std::string_view text);

/// Reads type:Name=Value, such as real:Settling Time=0.25.
std::optional<Setting> parseSetting(std::string_view text);

/// Puts ranges of one virtual name together. The order is that of the first mention.
std::vector<VirtualName> merged(const std::vector<VirtualName>& names);

} // namespace store_tool
