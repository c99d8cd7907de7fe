#include "tests/support/platform/own_registry_windows.h"

#include <gtest/gtest.h>

#include <system_error>

namespace kvxtest
{
namespace
{

constexpr auto kFolderKey = L"SOFTWARE\\IVI";
constexpr auto kStoreKey = L"SOFTWARE\\IVI\\CONFIGURATIONSERVER";

void requireDone(LSTATUS status, const char* action)
{
    if (status != ERROR_SUCCESS)
        throw std::system_error(static_cast<int>(status), std::system_category(), action);
}

std::size_t bytesOf(const std::wstring& text)
{
    return (text.size() + 1) * sizeof(wchar_t);
}

} // namespace

OwnRegistry::OwnRegistry()
{
    const Key key = makeKey(HKEY_CURRENT_USER, name_, KEY_ALL_ACCESS);
    // What the view for 32 bits is kept in.
    makeKey(key.get(), L"SOFTWARE\\Wow6432Node", KEY_SET_VALUE | KEY_WOW64_64KEY);
    const LSTATUS status = RegOverridePredefKey(HKEY_LOCAL_MACHINE, key.get());
    if (status != ERROR_SUCCESS)
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
    requireDone(status, "override the registry");
}

OwnRegistry::~OwnRegistry()
{
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str()), ERROR_SUCCESS);
}

OwnRegistry::Key OwnRegistry::makeKey(HKEY parent, const std::wstring& name, DWORD access)
{
    HKEY key = nullptr;
    requireDone(RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE, access, nullptr, &key, nullptr),
                "make a key of the registry");
    return Key(key);
}

void OwnRegistry::set(const Place& place, DWORD type, const void* value, std::size_t bytes)
{
    const Key key = makeKey(HKEY_LOCAL_MACHINE, place.key, KEY_SET_VALUE | place.view);
    requireDone(
        RegSetValueExW(key.get(), place.name, 0, type, static_cast<const BYTE*>(value), static_cast<DWORD>(bytes)),
        "set a value of the registry");
}

bool OwnRegistry::hasTwoViews()
{
    constexpr auto kName = L"SOFTWARE\\kvx-test-view";
    makeKey(HKEY_LOCAL_MACHINE, kName, KEY_SET_VALUE | KEY_WOW64_32KEY);
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kName, 0, KEY_QUERY_VALUE | KEY_WOW64_64KEY, &key);
    const Key owner(key);
    return status == ERROR_FILE_NOT_FOUND;
}

void OwnRegistry::setFolder(DWORD type, const void* value, std::size_t bytes)
{
    set({kFolderKey, L"IviDataDir", 0}, type, value, bytes);
}

void OwnRegistry::setFolder(const std::wstring& folder, DWORD type)
{
    setFolder(type, folder.c_str(), bytesOf(folder));
}

void OwnRegistry::setStore(View view, DWORD type, const void* value, std::size_t bytes)
{
    set({kStoreKey, L"MasterStore", static_cast<DWORD>(view)}, type, value, bytes);
}

void OwnRegistry::setStore(View view, const std::wstring& path, DWORD type)
{
    setStore(view, type, path.c_str(), bytesOf(path));
}

} // namespace kvxtest
