#pragma once

#include "virtual_instrument/common/error_code.h"

#include <string_view>
#include <vector>

namespace kvxvirtual
{

/// One node of a header as it was sent: `SOUR3` is the name SOUR with the suffix 3.
struct HeaderNode
{
    std::string_view name;
    /// The digits behind the name, empty without.
    std::string_view suffix;
};

/// One program message unit with its header completed from the path that stood before it.
struct MessageUnit
{
    /// InvalidCharacter or SyntaxError when the unit cannot be read; the rest then means nothing.
    ErrorCode error = ErrorCode::None;
    std::vector<HeaderNode> header;
    bool isQuery = false;
    /// The parameters without the blanks around them; a string keeps its quotes.
    std::vector<std::string_view> parameters;
};

/// Reads a message (without its line feed) by the rules of SCPI-99 and IEEE 488.2: units are separated by ";", a header
/// without a leading ":" continues from the parent of the one before it, a common command leaves that path, quoted
/// strings keep what they hold. Empty units are left out. The views refer to `message`.
std::vector<MessageUnit> parseMessage(std::string_view message);

/// Whether one of the units asks for a reply.
bool holdsQuery(const std::vector<MessageUnit>& units);

} // namespace kvxvirtual
