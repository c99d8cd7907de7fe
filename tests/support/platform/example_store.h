#pragma once

namespace kvxtest
{

/// A bench as a configuration tool leaves it: one driver with six outputs and four settings, one instrument, its driver
/// session "KVX2800T" with virtual names and settings, and the logical name "BenchSupply".
extern const char* const kExampleStore;

} // namespace kvxtest
