#include "tools/kvx2800t/command_line/platform/functions.h"

#include "binding/platform_library_windows.h"
#include "platform/common/windows_text.h"

namespace command_line
{

void* platformFunction(Library library, const char* name)
{
    binding::PlatformLibrary& found = library == Library::Visa ? binding::visa : binding::configServer;
    return reinterpret_cast<void*>(found.find(name));
}

std::string libraryFile(const void* function)
{
    constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    if (function == nullptr || GetModuleHandleExW(kByAddress, static_cast<LPCWSTR>(function), &module) == 0)
        return "";
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return platform::utf8Text(path.c_str());
}

} // namespace command_line
