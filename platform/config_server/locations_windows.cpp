#include "platform/config_server/locations.h"

#include "platform/common/windows_environment.h"
#include "platform/common/windows_text.h"
#include "platform/config_server/files.h"

#include <windows.h>

#include <shlobj.h>

#include <cwchar>
#include <memory>
#include <optional>
#include <utility>

namespace config_server
{
namespace
{

using platform::utf8Text;

constexpr std::size_t kLongestPath = 32768;
constexpr auto kFileName = L"\\IviConfigurationStore.xml";

/// The variable's value; empty when it is not set.
std::wstring environment(const wchar_t* name)
{
    return platform::environmentVariable(name).value_or(L"");
}

/// A text that installers register for the machine.
struct RegistryValue
{
    const wchar_t* key;
    const wchar_t* name;
    DWORD view; ///< that for programs of 32 or 64 bits; 0 for this process's own
};

constexpr RegistryValue kStoreFor64Bits{L"SOFTWARE\\IVI\\CONFIGURATIONSERVER", L"MasterStore", RRF_SUBKEY_WOW6464KEY};
constexpr RegistryValue kStoreFor32Bits{kStoreFor64Bits.key, kStoreFor64Bits.name, RRF_SUBKEY_WOW6432KEY};
constexpr RegistryValue kFolder{L"SOFTWARE\\IVI", L"IviDataDir", 0};

/// Empty when there is no such text.
std::wstring registered(const RegistryValue& value)
{
    std::wstring text(kLongestPath, L'\0');
    auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, value.key, value.name, RRF_RT_REG_SZ | value.view, nullptr,
                                        text.data(), &bytes);
    text.resize(status == ERROR_SUCCESS ? std::wcslen(text.c_str()) : 0);
    return text;
}

/// Letter case tells no files apart.
bool isSamePath(const std::wstring& one, const std::wstring& other)
{
    return CompareStringOrdinal(one.c_str(), -1, other.c_str(), -1, TRUE) == CSTR_EQUAL;
}

/// The file that the standard's installers register; empty when they do not. Nothing when there are two.
std::optional<std::wstring> registeredStore()
{
    std::wstring for64Bits = registered(kStoreFor64Bits);
    std::wstring for32Bits = registered(kStoreFor32Bits);
    if (for32Bits.empty() || isSamePath(for64Bits, for32Bits))
        return for64Bits;
    return for64Bits.empty() ? std::optional(std::move(for32Bits)) : std::nullopt;
}

/// What is named as the master store, be there a file or not; an empty path when nothing is.
MasterLocation namedLocation()
{
    std::string chosen = utf8Text(environment(L"IVI_MASTER_STORE"));
    if (!chosen.empty())
        return {std::move(chosen), VI_SUCCESS, "IVI_MASTER_STORE"};
    constexpr std::string_view kRegistry = "the registry";
    const auto store = registeredStore();
    if (!store)
        return {{}, IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT, kRegistry};
    return store->empty() ? MasterLocation{} : MasterLocation{utf8Text(*store), VI_SUCCESS, kRegistry};
}

/// The folder that the standard's installers register; empty when none is.
std::wstring registeredFolder()
{
    std::wstring value = registered(kFolder);
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

MasterLocation masterLocation()
{
    MasterLocation named = namedLocation();
    if (named.status >= 0 && named.path.empty())
        return {systemLocation()};
    if (named.status >= 0 && !isFile(named.path))
        return {{}, IVICONFIG_ERROR_MASTER_NOT_FOUND, named.namedBy};
    return named;
}

MasterLocation locationForNewStore()
{
    MasterLocation named = namedLocation();
    if (named.status >= 0 && named.path.empty())
        named.path = systemLocation();
    return named;
}

std::string systemLocation()
{
    const std::wstring folder = registeredFolder();
    const std::wstring usual = folder.empty() ? programData() + L"\\IVI Foundation\\IVI" : folder;
    return utf8Text(usual + kFileName);
}

std::string locationOf(const char* text)
{
    if (platform::wideText(text))
        return text;
    const int size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), size);
    return utf8Text(wide.c_str());
}

} // namespace config_server
