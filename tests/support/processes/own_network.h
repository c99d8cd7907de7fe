#pragma once

#include <string>

namespace kvxtest
{

/// Moves this process, and what it starts from now on, into a network of its own, where every port is free and may be
/// listened to. It has the loopback interface. To be called while there is one thread.
/// Only the first call does anything.
/// @return nothing, or why there is no such network here
std::string enterOwnNetwork();

} // namespace kvxtest
