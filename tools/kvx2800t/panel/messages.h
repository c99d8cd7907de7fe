#pragma once

#include "tools/kvx2800t/panel/action.h"
#include "tools/kvx2800t/panel/state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

/// The JSON between pages and the panel. README.md has the protocol.
namespace panel
{

/// What a page asks for; `id` is what it calls it.
struct PageRequest
{
    std::int64_t id = 0;
    Action action;
};

/// Why a message is no request.
struct Refusal
{
    bool isObject = true;           ///< no JSON object at all comes from no page of ours
    std::optional<std::int64_t> id; ///< where it could be read
    std::string text;
};

/// Reads a message of a page to the letter: exactly the members of its action, each with its type. Numbers are finite;
/// whether the instrument takes them is for the driver to say. Never throws but for lack of memory.
std::variant<PageRequest, Refusal> readRequest(std::string_view text);

/// @name Messages to pages; texts that are no UTF-8 get replacement characters
/// @{
std::string helloMessage(std::string_view version, std::string_view resource, bool simulated);
std::string stateMessage(const Snapshot& snapshot);
std::string errorsMessage(const ErrorReport& report);
std::string resultMessage(const Result& result);
std::string refusalMessage(const Refusal& refusal);
/// @param own  whether it was the click of the page that it goes to
std::string linesMessage(const Lines& lines, bool own);
std::string listMessage(const LoadedList& list);
/// @}

} // namespace panel
