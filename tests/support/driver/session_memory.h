#pragma once

#include "tests/support/processes/virtual_instrument_process.h"

#include <cstddef>

namespace kvxtest
{

// The bytes that one open session holds, of a program with many. What the process makes on first use does not count.
// Aborts when a session does not open. For programs that count their allocations.

/// A simulated session.
std::size_t bytesOfSimulatedSession();

/// A session over TCP, without the bytes that VISA holds for a connection of its own.
std::size_t bytesOfConnectedSession(const VirtualInstrumentProcess& instrument);

/// A VISA connection, with its resource manager session.
std::size_t bytesOfVisaSession(const VirtualInstrumentProcess& instrument);

} // namespace kvxtest
