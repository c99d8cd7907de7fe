#include "tools/kvx2800t/command_line/platform/host_name.h"

#include "platform/common/windows_text.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <array>
#include <memory>
#include <string_view>

namespace command_line
{
namespace
{

/// Windows' sockets for as long as it lives.
class WindowsSockets
{
public:
    WindowsSockets()
    {
        WSADATA data;
        error_ = WSAStartup(MAKEWORD(2, 2), &data);
    }
    ~WindowsSockets()
    {
        if (error_ == 0)
            WSACleanup();
    }
    WindowsSockets(const WindowsSockets&) = delete;
    WindowsSockets& operator=(const WindowsSockets&) = delete;

    int error() const { return error_; }

private:
    int error_ = 0;
};

/// Windows' words for one of its errors.
std::string errorText(int error)
{
    std::array<wchar_t, 512> text{};
    const DWORD size =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(error),
                       0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::wstring words(text.data(), size);
    words.erase(words.find_last_not_of(L"\r\n. ") + 1);
    return words.empty() ? "Windows error " + std::to_string(error) : platform::utf8Text(words.c_str());
}

} // namespace

Resolution resolveHost(const std::string& name)
{
    const WindowsSockets sockets;
    if (sockets.error() != 0)
        return {{}, errorText(sockets.error())};
    ADDRINFOW wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    ADDRINFOW* first = nullptr;
    if (const int error = GetAddrInfoW(platform::wideText(name).value_or(L"").c_str(), nullptr, &wanted, &first);
        error != 0)
        return {{}, errorText(error)};
    const std::unique_ptr<ADDRINFOW, decltype(&FreeAddrInfoW)> all(first, FreeAddrInfoW);
    Resolution resolution;
    for (const ADDRINFOW* entry = first; entry != nullptr; entry = entry->ai_next) {
        std::array<wchar_t, NI_MAXHOST> text{};
        if (GetNameInfoW(entry->ai_addr, static_cast<socklen_t>(entry->ai_addrlen), text.data(),
                         static_cast<DWORD>(text.size()), nullptr, 0, NI_NUMERICHOST) == 0)
            resolution.addresses.push_back(platform::utf8Text(text.data()));
    }
    return resolution;
}

} // namespace command_line
