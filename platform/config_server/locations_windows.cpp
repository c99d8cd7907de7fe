#include "locations.h"

#include "files.h"
#include "windows_text.h"

#include <windows.h>

#include <shlobj.h>

#include <cwchar>
#include <memory>
#include <utility>

namespace config_server
{

namespace
{

constexpr std::size_t kLongestPath = 32768;
constexpr auto kFileName = L"\\IviConfigurationStore.xml";

/// The variable's value; empty when it is not set. Asked of the system: each C library in the process keeps its own
/// copy of the environment, which later changes do not reach.
std::wstring environment(const wchar_t* name)
{
    std::wstring value;
    DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    // Another thread may lengthen it between two calls.
    while (size > value.size()) {
        value.resize(size);
        size = GetEnvironmentVariableW(name, value.data(), size);
    }
    value.resize(size);
    return value;
}

/// The folder that the standard's installers register; empty when none is. A 32-bit process is shown its own view.
std::wstring registeredFolder()
{
    std::wstring value(kLongestPath, L'\0');
    auto bytes = static_cast<DWORD>(value.size() * sizeof(wchar_t));
    const LSTATUS status =
        RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\IVI", L"IviDataDir", RRF_RT_REG_SZ, nullptr, value.data(), &bytes);
    if (status != ERROR_SUCCESS)
        return {};
    value.resize(std::wcslen(value.c_str()));
    while (value.ends_with(L'\\') || value.ends_with(L'/'))
        value.pop_back();
    return value;
}

struct TaskMemoryReleaser
{
    void operator()(wchar_t* text) const { CoTaskMemFree(text); }
};

/// The common folder for data.
std::wstring programData()
{
    wchar_t* path = nullptr;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_ProgramData, KF_FLAG_DEFAULT, nullptr, &path);
    const std::unique_ptr<wchar_t, TaskMemoryReleaser> owner(path);
    return SUCCEEDED(result) ? std::wstring(path) : environment(L"ProgramData");
}

} // namespace

std::string processDefaultLocation()
{
    return utf8Text(environment(L"IVICONFIGSERVERDEFAULT"));
}

std::optional<std::string> masterLocation()
{
    std::string registered = utf8Text(environment(L"IVI_MASTER_STORE"));
    if (registered.empty())
        return systemLocation();
    return isFile(registered) ? std::optional(std::move(registered)) : std::nullopt;
}

std::string locationForNewStore()
{
    std::string registered = utf8Text(environment(L"IVI_MASTER_STORE"));
    return registered.empty() ? systemLocation() : registered;
}

std::string systemLocation()
{
    const std::wstring registered = registeredFolder();
    const std::wstring folder = registered.empty() ? programData() + L"\\IVI Foundation\\IVI" : registered;
    return utf8Text(folder + kFileName);
}

std::string locationOf(const char* text)
{
    if (wideText(text))
        return text;
    const int size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), size);
    return utf8Text(wide.c_str());
}

} // namespace config_server
