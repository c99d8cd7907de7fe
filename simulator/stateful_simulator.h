#pragma once

#include "instrument/inst_base.h"

#include <chrono>
#include <functional>
#include <memory>

namespace TSRO
{

/// The time since some fixed moment; it never goes back.
using SimulatedTime = std::function<std::chrono::nanoseconds()>;

/// An instrument without hardware that remembers what it is told: a KVX2833T in this process, with channels, limits,
/// protections, source modes, programs and status registers, behind the commands that go to a real one. Nothing is
/// connected to its outputs.
///
/// open() takes the options, connects to an instrument that was just switched on, whatever the resource is, and reads
/// its identity; with close() it is gone, and everything that was set. Never calls VISA, starts no thread and does not
/// wait: a reply that does not come has timed out at once. No two share anything. Lists, delays and what else takes
/// time go by `time`, the steady clock when there is none.
std::shared_ptr<InstBase> makeStatefulSimulator(SimulatedTime time = {});

} // namespace TSRO
