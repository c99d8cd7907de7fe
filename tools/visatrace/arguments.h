#pragma once

#include "tools/visatrace/line.h"

#include <visa.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace visatrace
{

/// How an argument is shown. What a function stores is shown behind the call, when it has succeeded.
enum class How
{
    Skip,
    Number,
    Signed,
    Hex,
    Text,
    Status,
    Event,
    Attribute,
    /// The value for the attribute that is the argument before.
    AttributeState,
    /// As many bytes as the argument after says, or the one before.
    Bytes,
    BytesCountedBefore,

    Stored8,
    Stored16,
    Stored32,
    Stored64,
    StoredSigned16,
    StoredPointer,
    StoredText,
    StoredEvent,
    StoredBusAddress = sizeof(ViBusAddress) == sizeof(ViUInt64) ? Stored64 : Stored32,
    /// The value of the attribute that is the argument before.
    StoredAttributeState = StoredEvent + 1,
    /// The key of a shared lock, the second argument's kind; for other locks there is none.
    StoredKey,
    /// Bytes: at most as many as the argument after says, and as many as the one behind that has stored. They are there
    /// after a time-out as well.
    StoredBytes,
    /// Bytes: at most as many as the argument before says, and as many as the one after has stored, 16 bits wide.
    StoredBytesCountedBefore
};

/// An argument of a call: numbers with their sign extended, pointers as numbers, 0 for a list of further arguments.
using Argument = std::uint64_t;

/// The arguments of one call with the names that its function gives them.
struct Arguments
{
    std::span<const std::string_view> names;
    std::span<const How> hows;
    std::span<const Argument> values;
};

/// "vi=1, cnt=3": what is known before the call.
void describeGiven(Line& line, const Arguments& arguments);

/// ", retCnt=3, buf=\"abc\"": what the call has stored, when its status says so; each with what separates it from
/// before.
void describeStored(Line& line, const Arguments& arguments, ViStatus status);

/// "0xBFFF0015 VI_ERROR_TMO".
void describeStatus(Line& line, ViStatus status);

} // namespace visatrace
