#include "tools/kvx2800t/panel/host.h"

#include <array>
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

void drainInput() noexcept
{
    std::array<char, 4096> dropped{};
    const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
    DWORD count = 0;
    while (::ReadFile(input, dropped.data(), static_cast<DWORD>(dropped.size()), &count, nullptr) != 0 && count > 0) {
    }
}

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM, SIGBREAK};
}

} // namespace panel
