#include "tools/kvx2800t/panel/host.h"

#include <csignal>
#include <windows.h>
// Behind windows.h, which it needs.
#include <shellapi.h>

namespace panel
{

void openBrowser(const std::string& address)
{
    // An address has only characters that are the same in UTF-16.
    const std::wstring wide(address.begin(), address.end());
    ::ShellExecuteW(nullptr, L"open", wide.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM, SIGBREAK};
}

} // namespace panel
