/// The platform's C functions, for the driver on Windows: each is bound by its name when it is first called, so that
/// the driver loads, and simulates without VISA, on a machine that lacks them.
///
/// A library is searched for in the folders of the program, of the system and of PATH, then beside the driver's own
/// file, then in the folder where an installation has the libraries of our own, and so is what it needs; once found it
/// stays loaded. The current folder, which may be a shared one with
/// anybody's files, does not count, nor does a relative one of PATH. While it or its function is missing, a call
/// returns VI_ERROR_LIBRARY_NFOUND and does nothing else, and the next call searches anew. Any thread may call.

#include <IviCShared.h>
#include <IviConfigServer.h>
#include <visa.h>

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace
{

constexpr bool kIs64Bit = sizeof(void*) == 8;

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

/// The folder of an installation that no other program's search comes across; empty when the driver is elsewhere.
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

/// A library of the platform, under any of the names that it may have.
class PlatformLibrary
{
public:
    explicit constexpr PlatformLibrary(const wchar_t* name, const wchar_t* otherName = nullptr)
        : names_{name, otherName}
    {
    }

    /// Null when the library or the function is missing.
    FARPROC find(const char* function)
    {
        HMODULE module = module_.load(std::memory_order_acquire);
        if (module == nullptr) {
            module = load();
            module_.store(module, std::memory_order_release);
        }
        return module == nullptr ? nullptr : GetProcAddress(module, function);
    }

private:
    HMODULE load() const
    {
        const QuietErrors quiet;
        try {
            return loadLibrary(names_);
        } catch (const std::bad_alloc&) {
            // No exception leaves a C function; the next call searches anew.
            return nullptr;
        }
    }

    std::array<const wchar_t*, 2> names_;
    std::atomic<HMODULE> module_ = nullptr;
};

constinit PlatformLibrary sessionService(kIs64Bit ? L"IviCShared_64.dll" : L"IviCShared.dll");
// IVI-3.17 names the first for both widths, IVI-3.5 the second for 64 bits.
constinit PlatformLibrary configServer(L"IviConfigServerCAPI.dll", kIs64Bit ? L"IviConfigServerCapi64.dll" : nullptr);
constinit PlatformLibrary visa(kIs64Bit ? L"visa64.dll" : L"visa32.dll");

/// A function of the platform, bound by the first call that finds it.
template <class Function>
class Import;

template <class... Parameters>
class Import<ViStatus _VI_FUNC(Parameters...)>
{
public:
    constexpr Import(PlatformLibrary& library, const char* name) : library_(library), name_(name) {}

    ViStatus operator()(Parameters... arguments)
    {
        auto* function = function_.load(std::memory_order_acquire);
        if (function == nullptr) {
            function = bind();
            if (function == nullptr)
                return VI_ERROR_LIBRARY_NFOUND;
            function_.store(function, std::memory_order_release);
        }
        return function(arguments...);
    }

private:
    using Pointer = ViStatus(_VI_FUNC*)(Parameters...);

    Pointer bind() const
    {
        FARPROC found = library_.find(name_);
        // A library for x86 that was built without plain names has those that __stdcall makes.
        if (found == nullptr && !kIs64Bit)
            found = library_.find(decoratedName().c_str());
        return reinterpret_cast<Pointer>(reinterpret_cast<void*>(found));
    }

    std::string decoratedName() const
    {
        constexpr std::size_t kStackSlot = 4;
        constexpr std::size_t kStackBytes =
            (std::size_t{0} + ... + ((sizeof(Parameters) + kStackSlot - 1) / kStackSlot * kStackSlot));
        return '_' + std::string(name_) + '@' + std::to_string(kStackBytes);
    }

    PlatformLibrary& library_;
    const char* name_;
    std::atomic<Pointer> function_ = nullptr;
};

} // namespace

// One row for each function that the driver calls.
#define FORWARD(library, function, parameters, arguments)                                                              \
    ViStatus _VI_FUNC function parameters                                                                              \
    {                                                                                                                  \
        static constinit Import<decltype(function)> import(library, #function);                                        \
        return import arguments;                                                                                       \
    }

FORWARD(sessionService, IviSession_New, (ViSession * handle), (handle))
FORWARD(sessionService, IviSession_Dispose, (ViSession handle), (handle))
FORWARD(sessionService, IviSession_SetDataPtr, (ViSession handle, ViAddr dataPtr), (handle, dataPtr))
FORWARD(sessionService, IviSession_GetDataPtr, (ViSession handle, ViAddr* dataPtr), (handle, dataPtr))
FORWARD(sessionService, IviSession_Lock, (ViSession handle, ViBoolean* hasLock), (handle, hasLock))
FORWARD(sessionService, IviSession_Unlock, (ViSession handle, ViBoolean* hasLock), (handle, hasLock))
FORWARD(sessionService, IviSession_SetError, (ViSession handle, ViStatus code, ViConstString description),
        (handle, code, description))
FORWARD(sessionService, IviSession_GetError,
        (ViSession handle, ViInt32 bufferSize, ViStatus* code, ViChar description[]),
        (handle, bufferSize, code, description))
FORWARD(sessionService, IviSession_ClearError, (ViSession handle), (handle))

FORWARD(configServer, IviConfig_Initialize, (IviConfigStoreHandle * store), (store))
FORWARD(configServer, IviConfig_Close, (IviConfigStoreHandle store), (store))
FORWARD(configServer, IviConfig_DisposeHandle, (IviConfigHandle handle), (handle))
FORWARD(configServer, IviConfig_ClearError, (), ())
FORWARD(configServer, IviConfig_Deserialize, (IviConfigStoreHandle store, ViConstString location), (store, location))
FORWARD(configServer, IviConfig_GetConfigStorePropertyViString,
        (IviConfigStoreHandle store, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (store, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetDriverSession,
        (IviConfigStoreHandle store, ViConstString name, IviDriverSessionHandle* driverSession),
        (store, name, driverSession))
FORWARD(configServer, IviConfig_GetConfigStoreSoftwareModuleCollection,
        (IviConfigStoreHandle store, IviSoftwareModuleCollectionHandle* softwareModules), (store, softwareModules))
FORWARD(configServer, IviConfig_GetSoftwareModuleItemByName,
        (IviSoftwareModuleCollectionHandle softwareModules, ViConstString name,
         IviSoftwareModuleHandle* softwareModule),
        (softwareModules, name, softwareModule))
FORWARD(configServer, IviConfig_GetSoftwareModulePhysicalNameCollection,
        (IviSoftwareModuleHandle softwareModule, IviPhysicalNameCollectionHandle* physicalNames),
        (softwareModule, physicalNames))
FORWARD(configServer, IviConfig_GetPhysicalNameCount, (IviPhysicalNameCollectionHandle physicalNames, ViInt32* count),
        (physicalNames, count))
FORWARD(configServer, IviConfig_GetPhysicalNameItemByIndex,
        (IviPhysicalNameCollectionHandle physicalNames, ViInt32 index, IviPhysicalNameHandle* physicalName),
        (physicalNames, index, physicalName))
FORWARD(configServer, IviConfig_GetPhysicalNamePropertyViString,
        (IviPhysicalNameHandle physicalName, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (physicalName, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetSessionSoftwareModuleReference,
        (IviSessionHandle session, IviSoftwareModuleHandle* softwareModule), (session, softwareModule))
FORWARD(configServer, IviConfig_GetSessionHardwareAssetReference,
        (IviSessionHandle session, IviHardwareAssetHandle* hardwareAsset), (session, hardwareAsset))
FORWARD(configServer, IviConfig_GetHardwareAssetPropertyViString,
        (IviHardwareAssetHandle hardwareAsset, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (hardwareAsset, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetDriverSessionPropertyViBoolean,
        (IviDriverSessionHandle driverSession, ViInt32 propertyID, ViBoolean* value),
        (driverSession, propertyID, value))
FORWARD(configServer, IviConfig_GetDriverSessionPropertyViString,
        (IviDriverSessionHandle driverSession, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (driverSession, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetSessionVirtualNameCollection,
        (IviSessionHandle session, IviVirtualNameCollectionHandle* virtualNames), (session, virtualNames))
FORWARD(configServer, IviConfig_GetVirtualNameCount, (IviVirtualNameCollectionHandle virtualNames, ViInt32* count),
        (virtualNames, count))
FORWARD(configServer, IviConfig_GetVirtualNameItemByIndex,
        (IviVirtualNameCollectionHandle virtualNames, ViInt32 index, IviVirtualNameHandle* virtualName),
        (virtualNames, index, virtualName))
FORWARD(configServer, IviConfig_GetVirtualNamePropertyViString,
        (IviVirtualNameHandle virtualName, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (virtualName, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetVirtualNameVirtualRangeCollection,
        (IviVirtualNameHandle virtualName, IviVirtualRangeCollectionHandle* virtualRanges),
        (virtualName, virtualRanges))
FORWARD(configServer, IviConfig_GetVirtualRangeCount, (IviVirtualRangeCollectionHandle virtualRanges, ViInt32* count),
        (virtualRanges, count))
FORWARD(configServer, IviConfig_GetVirtualRangeItemByIndex,
        (IviVirtualRangeCollectionHandle virtualRanges, ViInt32 index, IviVirtualRangeHandle* virtualRange),
        (virtualRanges, index, virtualRange))
FORWARD(configServer, IviConfig_GetVirtualRangePropertyViInt32,
        (IviVirtualRangeHandle virtualRange, ViInt32 propertyID, ViInt32* value), (virtualRange, propertyID, value))
FORWARD(configServer, IviConfig_GetConfigComponentDataComponentCollection,
        (IviConfigComponentHandle component, IviDataComponentCollectionHandle* dataComponents),
        (component, dataComponents))
FORWARD(configServer, IviConfig_GetStructureDataComponentCollection,
        (IviStructureHandle structure, IviDataComponentCollectionHandle* dataComponents), (structure, dataComponents))
FORWARD(configServer, IviConfig_GetDataComponentItemByName,
        (IviDataComponentCollectionHandle dataComponents, ViConstString name, IviDataComponentHandle* dataComponent),
        (dataComponents, name, dataComponent))
FORWARD(configServer, IviConfig_GetDataComponentCount,
        (IviDataComponentCollectionHandle dataComponents, ViInt32* count), (dataComponents, count))
FORWARD(configServer, IviConfig_GetDataComponentItemByIndex,
        (IviDataComponentCollectionHandle dataComponents, ViInt32 index, IviDataComponentHandle* dataComponent),
        (dataComponents, index, dataComponent))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViString,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (dataComponent, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViInt32,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViInt32* value), (dataComponent, propertyID, value))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViReal64,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViReal64* value), (dataComponent, propertyID, value))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViBoolean,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViBoolean* value),
        (dataComponent, propertyID, value))

FORWARD(visa, viOpenDefaultRM, (ViPSession sesn), (sesn))
FORWARD(visa, viOpen, (ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi),
        (sesn, name, mode, timeout, vi))
FORWARD(visa, viClose, (ViObject vi), (vi))
FORWARD(visa, viSetAttribute, (ViObject vi, ViAttr attrName, ViAttrState attrValue), (vi, attrName, attrValue))
FORWARD(visa, viRead, (ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt))
FORWARD(visa, viWrite, (ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt))
FORWARD(visa, viSetBuf, (ViSession vi, ViUInt16 mask, ViUInt32 size), (vi, mask, size))
