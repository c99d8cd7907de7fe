#pragma once

#include "virtual_instrument/scpi/virtual_instrument.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kvxvirtual
{

/// What the command line asks for.
struct Options
{
    /// Ports: 0 is any free one.
    unsigned short port = 5025;
    std::string bindAddress = "127.0.0.1";
    std::optional<unsigned short> hislipPort;
    std::optional<unsigned short> vxi11Port;
    bool mdns = false;
    std::optional<unsigned short> controlPort;
    /// With one the test control is at `bindAddress`, for those who show it; without one on the loopback interface.
    std::optional<std::string> controlToken;
    bool serial = false;
    bool trace = false;
    bool untilStdinCloses = false;
    /// Channels and the ohms connected to them; nothing is open.
    std::vector<std::pair<int, std::optional<double>>> loads;
    InstrumentSettings instrument;
};

/// The options, or nothing when the program has done all that was asked for (help, version, command list, a complaint
/// about the command line) and is to end with `exitCode`.
struct CommandLine
{
    std::optional<Options> options;
    int exitCode = 0;
};

CommandLine parseCommandLine(int argumentCount, const char* const* arguments);

} // namespace kvxvirtual
