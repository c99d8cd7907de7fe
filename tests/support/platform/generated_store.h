#pragma once

#include <cstddef>
#include <string>

namespace kvxtest
{

/// A well-formed store with one software module and any number of benches, numbered from 1: each has a hardware asset
/// "Asset <n>" at "TCPIP0::127.0.0.1::<n>::SOCKET", a driver session "Session<n>" with three virtual names and four
/// settings (the integer "Number" is n), and a logical name "Bench<n>".
std::string generateStore(std::size_t benches);

} // namespace kvxtest
