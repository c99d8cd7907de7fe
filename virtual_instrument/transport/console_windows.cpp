#include "virtual_instrument/transport/console.h"

#include <fcntl.h>
#include <io.h>

#include <csignal>
#include <cstdio>

namespace kvxvirtual
{

std::vector<int> stopSignals()
{
    // The last is Ctrl-Break. It tells of the closing of the console as well, after which Windows does not wait.
    return {SIGINT, SIGTERM, SIGBREAK};
}

void writePlainLineFeeds()
{
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

} // namespace kvxvirtual
