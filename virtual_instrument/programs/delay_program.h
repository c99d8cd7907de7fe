#pragma once

#include "virtual_instrument/programs/delay_generator.h"
#include "virtual_instrument/programs/program.h"

namespace kvxvirtual
{

/// In the order of the instrument's keywords.
enum class DelayEndState
{
    Off,
    On,
    Last
};

/// A sequence in which one channel's output is switched on and off, and the generator that fills it.
class DelayProgram : public Program<DelayGroup>
{
public:
    /// The number behind the last group appends one: TooMuchData beyond 512. DataOutOfRange for any other number and
    /// for a time that a group may not last.
    ErrorCode setGroup(int number, const DelayGroup& group);

    /// Makes the generator's groups the program from group `number` on.
    ErrorCode construct(int number);

    /// What construct() uses. May change at any time.
    DelayGenerator generator;
};

} // namespace kvxvirtual
