#pragma once

#include "virtual_instrument/common/channel_limits.h"
#include "virtual_instrument/programs/list_template.h"
#include "virtual_instrument/programs/program.h"

namespace kvxvirtual
{

/// In the order of the instrument's keywords.
enum class ListEndState
{
    Off,
    Last
};

/// A sequence of output levels for one channel, and the template that fills it.
class ListProgram : public Program<ListGroup>
{
public:
    /// `limits` must outlive the program.
    explicit ListProgram(const ChannelLimits& limits) : limits_(&limits) {}

    /// The number behind the last group appends one: TooMuchData beyond 512. DataOutOfRange for any other number and
    /// for values that the channel or a group does not take.
    ErrorCode setGroup(int number, const ListGroup& group);

    /// Makes the template the list from group `number` on, and its cycles those of the list.
    ErrorCode construct(int number);

    /// What construct() uses. May change at any time.
    ListTemplate shape;

    /// Levels of the template go this far, because its object may still change: to the larger of the channel's limits.
    double highestTemplateLevel() const;

private:
    const ChannelLimits* limits_;
};

} // namespace kvxvirtual
