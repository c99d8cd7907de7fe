#pragma once

#include <IviVisaType.h>

#include <iomanip>
#include <ostream>
#include <string>
#include <vector>

namespace kvxtest
{

/// Lines that an instrument has received.
using Lines = std::vector<std::string>;

/// The error recorded on a session, or on VI_NULL, and its text.
struct RecordedError
{
    ViStatus code;
    std::string text;

    bool operator==(const RecordedError&) const = default;
};

/// For messages of failed assertions.
inline void PrintTo(const RecordedError& error, std::ostream* stream)
{
    *stream << "0x" << std::hex << static_cast<ViUInt32>(error.code) << " \"" << error.text << '"';
}

/// A status by its published bit pattern.
constexpr ViStatus status(ViUInt32 bits)
{
    return static_cast<ViStatus>(bits);
}

} // namespace kvxtest
