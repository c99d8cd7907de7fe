#include "virtual_instrument/programs/delay_program.h"

namespace kvxvirtual
{

ErrorCode DelayProgram::setGroup(int number, const DelayGroup& group)
{
    return ranges::kSeconds.holds(group.seconds) ? putGroup(number, group) : ErrorCode::DataOutOfRange;
}

ErrorCode DelayProgram::construct(int number)
{
    const auto error = generator.check();
    return error == ErrorCode::None ? putGroupsFrom(number, generator) : error;
}

} // namespace kvxvirtual
