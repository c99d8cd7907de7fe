#include "virtual_instrument/transport/console.h"

#include <windows.h>

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

void outliveReaders() {}

void writeTo(StandardOutput output, std::string_view bytes)
{
    const HANDLE handle = GetStdHandle(output == StandardOutput::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    DWORD count = 0;
    while (!bytes.empty() && WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != 0)
        bytes.remove_prefix(count);
}

} // namespace kvxvirtual
