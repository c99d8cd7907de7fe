#pragma once

#include "tests/support/processes/virtual_instrument_process.h"

#include <string>

namespace kvxbenchmark
{

/// The instrument of all benchmarks over protocols of LAN instruments. It has the portmapper's port, at which clients
/// of VXI-11 ask, so this program has to be in a network of its own.
inline kvxtest::VirtualInstrumentProcess& lanInstrument()
{
    static kvxtest::VirtualInstrumentProcess process({"--hislip", "0", "--vxi11"});
    return process;
}

inline std::string hislipResource()
{
    return "TCPIP0::127.0.0.1::hislip0," + std::to_string(lanInstrument().hislipPort()) + "::INSTR";
}

inline std::string vxi11Resource()
{
    return "TCPIP0::127.0.0.1::inst0::INSTR";
}

inline constexpr const char* kSetLine = ":SOUR3:VOLT 5.000000\n";
inline constexpr const char* kQueryLine = ":SOUR3:VOLT?\n";

} // namespace kvxbenchmark
