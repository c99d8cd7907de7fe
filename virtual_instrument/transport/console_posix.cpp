#include "virtual_instrument/transport/console.h"

#include <csignal>

namespace kvxvirtual
{

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM};
}

void writePlainLineFeeds() {}

} // namespace kvxvirtual
