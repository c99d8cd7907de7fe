#pragma once

#include "api/guarded_frame.h"

/// What the functions of list and delay mode have in common.
namespace api
{

/// The most groups that a list or a delay program has.
inline constexpr ViInt32 kMostGroups = 512;

/// Refuses a number of groups that no program has; `function` is the name in the record.
inline ViStatus checkGroupCount(drivekit::DriverSession& session, std::string_view function, ViInt32 count)
{
    if (count >= 0 && count <= kMostGroups)
        return VI_SUCCESS;
    return refuseCount(session, count, function, "Count");
}

} // namespace api
