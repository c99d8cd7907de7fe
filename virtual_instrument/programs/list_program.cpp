#include "virtual_instrument/programs/list_program.h"

#include <algorithm>

namespace kvxvirtual
{
namespace
{

bool fits(const ListGroup& group, const ChannelLimits& limits)
{
    return ValueRange<double>{0.0, limits.volts}.holds(group.volts) &&
           ValueRange<double>{0.0, limits.amperes}.holds(group.amperes) && ranges::kSeconds.holds(group.seconds);
}

} // namespace

ErrorCode ListProgram::setGroup(int number, const ListGroup& group)
{
    return fits(group, *limits_) ? putGroup(number, group) : ErrorCode::DataOutOfRange;
}

ErrorCode ListProgram::construct(int number)
{
    auto error = shape.check(*limits_);
    if (error == ErrorCode::None)
        error = putGroupsFrom(number, shape);
    return error == ErrorCode::None ? setCycles(shape.cycles) : error;
}

double ListProgram::highestTemplateLevel() const
{
    return std::max(limits_->volts, limits_->amperes);
}

} // namespace kvxvirtual
