#pragma once

#include <IviVisaType.h>

#include <array>
#include <string>

namespace kvxtest
{

/// What a channel takes: from 0 to these.
struct ChannelMaximum
{
    int number;
    /// How commands that name the channel call it.
    const char* keyword;
    const char* sourceMode;
    ViReal64 volts;
    ViReal64 amperes;

    std::string name() const { return "OutputChannel" + std::to_string(number); }
    std::string source() const { return ":SOUR" + std::to_string(number); }
    /// Whether a source mode is needed at all.
    bool needsMode() const { return number != 3 && number != 4; }
};

inline constexpr std::array kChannelMaxima = {
    ChannelMaximum{1, "CH1", "NORMAL", 33.0, 3.2}, ChannelMaximum{2, "CH2", "NORMAL", 33.0, 3.2},
    ChannelMaximum{3, "CH3", "NORMAL", 16.0, 3.2}, ChannelMaximum{4, "CH4", "NORMAL", 6.2, 10.5},
    ChannelMaximum{5, "SER", "SER", 66.0, 3.2},    ChannelMaximum{6, "PAR", "PARA", 33.0, 6.4},
};

} // namespace kvxtest
