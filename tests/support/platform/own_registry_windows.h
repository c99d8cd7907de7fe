#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>

namespace kvxtest
{

/// The registry's view for programs of this many bits.
enum class View : DWORD
{
    Bits32 = KEY_WOW64_32KEY,
    Bits64 = KEY_WOW64_64KEY
};

/// Shows this process, and nobody else, a local machine's registry that is empty but for what the test writes. Throws
/// when that cannot be had, so that no test writes to the machine's own.
class OwnRegistry
{
public:
    OwnRegistry();
    ~OwnRegistry();
    OwnRegistry(const OwnRegistry&) = delete;
    OwnRegistry& operator=(const OwnRegistry&) = delete;

    /// Whether the two views can differ here; not where the host keeps them apart for its own keys only.
    static bool hasTwoViews();

    /// The value that names the folder of the master store.
    static void setFolder(DWORD type, const void* value, std::size_t bytes);
    static void setFolder(const std::wstring& folder, DWORD type = REG_SZ);

    /// The value that names the master store's file.
    static void setStore(View view, DWORD type, const void* value, std::size_t bytes);
    static void setStore(View view, const std::wstring& path, DWORD type = REG_SZ);

private:
    struct KeyCloser
    {
        void operator()(HKEY key) const { RegCloseKey(key); }
    };
    using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

    struct Place
    {
        const wchar_t* key;
        const wchar_t* name;
        DWORD view;
    };

    static Key makeKey(HKEY parent, const std::wstring& name, DWORD access);
    static void set(const Place& place, DWORD type, const void* value, std::size_t bytes);

    std::wstring name_ = L"Software\\kvx-test-" + std::to_wstring(GetCurrentProcessId());
};

} // namespace kvxtest
