#pragma once

#include "runtime/selector.h"
#include "tests/support/driver/runtime_fixture.h"

#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kvxtest
{

/// All that comes of resolving a selector: names, or a status with the recorded text, or an exception's text.
struct SelectorResult
{
    ViStatus status = VI_SUCCESS;
    std::string text;
    std::vector<std::string> names;
    std::string exception;

    bool operator==(const SelectorResult&) const = default;
};

inline SelectorResult namesAre(std::vector<std::string> names)
{
    return {VI_SUCCESS, "", std::move(names), ""};
}

inline SelectorResult refusal(ViStatus status, std::string text)
{
    return {status, std::move(text), {}, ""};
}

inline SelectorResult exceptionIs(std::string text)
{
    return {VI_SUCCESS, "", {}, std::move(text)};
}

inline void PrintTo(const SelectorResult& result, std::ostream* stream)
{
    *stream << result.status << " \"" << result.text << "\" " << testing::PrintToString(result.names) << ' '
            << result.exception;
}

/// Resolves a selector; takes the recorded text off the session.
inline SelectorResult resolve(drivekit::DriverSession& session, ViConstString selector)
{
    SelectorResult result;
    drivekit::OutputSelection selection;
    try {
        result.status = drivekit::resolveSelector(session, selector, selection);
    } catch (const std::out_of_range& error) {
        return exceptionIs(error.what());
    }
    if (result.status == VI_SUCCESS)
        for (const auto& name : selection)
            result.names.emplace_back(name.text());
    result.text = errorOf(session.GetViSession()).text;
    IviSession_ClearError(session.GetViSession());
    return result;
}

} // namespace kvxtest
