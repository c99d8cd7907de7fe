#include "visa/transport/serial/find_serial_ports.h"

#include "platform/common/windows_text.h"
#include "visa/transport/serial/configured_port.h"

#include <windows.h>

#include <array>
#include <memory>
#include <set>
#include <string_view>
#include <type_traits>

namespace visa
{
namespace
{

struct KeyCloser
{
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

struct EnvironmentReleaser
{
    void operator()(wchar_t* strings) const { FreeEnvironmentStringsW(strings); }
};

ConfiguredPorts configuredPorts()
{
    ConfiguredPorts ports;
    const std::unique_ptr<wchar_t, EnvironmentReleaser> strings(GetEnvironmentStringsW());
    const wchar_t* entry = strings.get();
    while (entry != nullptr && *entry != L'\0') {
        const std::wstring_view text(entry);
        addConfiguredPort(platform::utf8Text(text), ports);
        entry += text.size() + 1;
    }
    return ports;
}

/// "COM20" for "\\.\com20" too.
std::string deviceName(std::string_view device)
{
    constexpr std::string_view kPrefix = "\\\\.\\";
    if (device.starts_with(kPrefix))
        device.remove_prefix(kPrefix.size());
    std::string name(device);
    for (char& c : name)
        c = upper(c);
    return name;
}

/// The number of a port "COM<n>" that the drivers of serial ports have told of.
std::optional<ViUInt16> portNumber(std::wstring_view value)
{
    constexpr std::string_view kPort = "COM";
    const std::string name = deviceName(platform::utf8Text(value.substr(0, value.find(L'\0'))));
    return name.starts_with(kPort) ? plainNumber(std::string_view(name).substr(kPort.size())) : std::nullopt;
}

std::set<ViUInt16> hostPorts()
{
    std::set<ViUInt16> ports;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_QUERY_VALUE, &opened) !=
        ERROR_SUCCESS)
        return ports;
    const Key key(opened);
    std::array<wchar_t, 256> name{};
    std::array<wchar_t, 256> value{};
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = static_cast<DWORD>(name.size());
        DWORD valueBytes = static_cast<DWORD>((value.size() - 1) * sizeof(wchar_t));
        DWORD type = 0;
        const LONG result = RegEnumValueW(key.get(), index, name.data(), &nameSize, nullptr, &type,
                                          reinterpret_cast<BYTE*>(value.data()), &valueBytes);
        // What does not fit is no port's name.
        if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA)
            return ports;
        if (result == ERROR_MORE_DATA || type != REG_SZ)
            continue;
        if (const auto number = portNumber({value.data(), valueBytes / sizeof(wchar_t)}))
            ports.insert(*number);
    }
}

} // namespace

std::vector<std::string> findSerialPorts()
{
    std::vector<std::string> names;
    std::set<std::string> told;
    const ConfiguredPorts configured = configuredPorts();
    for (const auto& [number, device] : configured) {
        // Whether such a device is there, opening it would tell.
        if (told.insert(deviceName(device)).second)
            names.push_back(numberedPortName(number));
    }
    for (const ViUInt16 number : hostPorts()) {
        // A number that a variable has taken stands for that variable's device.
        if (!configured.contains(number) && told.insert("COM" + std::to_string(number)).second)
            names.push_back(numberedPortName(number));
    }
    return names;
}

} // namespace visa
