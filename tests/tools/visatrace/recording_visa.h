#pragma once

#include <visa.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kvxtest
{

/// A call that the library behind the trace has received: numbers with their sign extended, pointers as numbers.
struct RecordedCall
{
    std::string function;
    std::vector<std::uint64_t> arguments;
    int errnoBefore;

    bool operator==(const RecordedCall&) const = default;
};

/// What the library of recording_visa.cpp has received from this thread, and how it answers this thread.
struct Recording
{
    std::vector<RecordedCall> calls;
    /// What the formatted functions have written, and what those that scan find.
    std::string written;
    std::string found;

    ViStatus status = VI_SUCCESS;
    int errnoAfter = 0;
    /// Stores what a call is to store where its arguments say.
    std::function<void(const std::vector<std::uint64_t>& arguments)> store;
};

/// How the library exports it.
using RecordingOfThread = Recording&();

} // namespace kvxtest
