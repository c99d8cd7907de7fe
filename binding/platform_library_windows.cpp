#include "binding/platform_library_windows.h"

#include <algorithm>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace binding
{
namespace
{

/// Keeps the system from telling the user of a library that it cannot load.
class QuietErrors
{
public:
    QuietErrors() { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before_); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors() { SetThreadErrorMode(before_, nullptr); }

private:
    DWORD before_ = 0;
};

/// What `get(buffer, size)` writes of at most the longest path that Windows has; empty when it fails.
template <class Get>
std::wstring pathFrom(Get get)
{
    std::wstring path(32768, L'\0');
    const DWORD length = get(path.data(), static_cast<DWORD>(path.size()));
    path.resize(length < path.size() ? length : 0);
    return path;
}

/// The folder of a module's file; empty when it cannot be told.
std::wstring folderOf(HMODULE module)
{
    std::wstring path =
        pathFrom([module](wchar_t* buffer, DWORD size) { return GetModuleFileNameW(module, buffer, size); });
    path.resize(path.rfind(L'\\') + 1);
    return path;
}

std::wstring ownFolder()
{
    HMODULE self = nullptr;
    constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    const BOOL found = GetModuleHandleExW(kByAddress, reinterpret_cast<LPCWSTR>(&ownFolder), &self);
    return found == 0 ? std::wstring() : folderOf(self);
}

/// The folder of an installation that no other program's search comes across; empty when this is elsewhere.
std::wstring privateFolder()
{
    std::wstring root = ownFolder();
    if (root.empty())
        return root;
    root.pop_back();
    root.resize(root.rfind(L'\\') + 1);
    return root + L"Drivers\\KVX2800T\\Platform\\" + (kIs64Bit ? L"x64" : L"x86");
}

bool isAbsolute(std::wstring_view folder)
{
    constexpr std::size_t kDrive = 3;
    return folder.starts_with(L"\\\\") ||
           (folder.size() >= kDrive && folder[1] == L':' && (folder[2] == L'\\' || folder[2] == L'/'));
}

/// The absolute folders of PATH.
std::vector<std::wstring> foldersOfPath()
{
    const std::wstring path =
        pathFrom([](wchar_t* buffer, DWORD size) { return GetEnvironmentVariableW(L"PATH", buffer, size); });
    std::vector<std::wstring> folders;
    std::wstring_view rest = path;
    while (!rest.empty()) {
        const std::wstring_view folder = rest.substr(0, rest.find(L';'));
        rest.remove_prefix(std::min(rest.size(), folder.size() + 1));
        if (isAbsolute(folder))
            folders.emplace_back(folder);
    }
    return folders;
}

/// While it lives, libraries that are needed by one that is being loaded are looked for in these folders, too.
class FurtherFolders
{
public:
    explicit FurtherFolders(const std::vector<std::wstring>& folders)
    {
        for (const std::wstring& folder : folders)
            if (DLL_DIRECTORY_COOKIE const cookie = AddDllDirectory(folder.c_str()); cookie != nullptr)
                cookies_.push_back(cookie);
    }
    FurtherFolders(const FurtherFolders&) = delete;
    FurtherFolders& operator=(const FurtherFolders&) = delete;
    ~FurtherFolders()
    {
        for (DLL_DIRECTORY_COOKIE const cookie : cookies_)
            RemoveDllDirectory(cookie);
    }

private:
    std::vector<DLL_DIRECTORY_COOKIE> cookies_;
};

/// Loads the first library that has one of these names, folder after folder; one that the program has loaded is that.
HMODULE loadLibrary(std::span<const wchar_t* const> names)
{
    for (const wchar_t* const name : names)
        if (HMODULE loaded = nullptr; name != nullptr && GetModuleHandleExW(0, name, &loaded) != 0)
            return loaded;
    const std::vector<std::wstring> further = foldersOfPath();
    std::vector<std::wstring> folders = {folderOf(nullptr), pathFrom(GetSystemDirectoryW),
                                         pathFrom(GetWindowsDirectoryW)};
    folders.insert(folders.end(), further.begin(), further.end());
    folders.insert(folders.end(), {ownFolder(), privateFolder()});
    std::erase(folders, L"");
    const FurtherFolders needed(further);
    constexpr DWORD kWithNeeded = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
    for (const std::wstring& folder : folders)
        for (const wchar_t* const name : names)
            if (name != nullptr)
                if (HMODULE const module = LoadLibraryExW((folder + L'\\' + name).c_str(), nullptr, kWithNeeded))
                    return module;
    return nullptr;
}

} // namespace

FARPROC PlatformLibrary::find(const char* function)
{
    HMODULE module = module_.load(std::memory_order_acquire);
    if (module == nullptr) {
        module = load();
        module_.store(module, std::memory_order_release);
    }
    return module == nullptr ? nullptr : GetProcAddress(module, function);
}

HMODULE PlatformLibrary::load() const
{
    const QuietErrors quiet;
    try {
        return loadLibrary(names_);
    } catch (const std::bad_alloc&) {
        // No exception leaves a C function; the next call searches anew.
        return nullptr;
    }
}

constinit PlatformLibrary sessionService(kIs64Bit ? L"IviCShared_64.dll" : L"IviCShared.dll");
// IVI-3.17 names the first for both widths, IVI-3.5 the second for 64 bits.
constinit PlatformLibrary configServer(L"IviConfigServerCAPI.dll", kIs64Bit ? L"IviConfigServerCapi64.dll" : nullptr);
constinit PlatformLibrary visa(kIs64Bit ? L"visa64.dll" : L"visa32.dll");

} // namespace binding
