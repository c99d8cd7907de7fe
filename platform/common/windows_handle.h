#pragma once

// For sources of Windows only.
#include <windows.h>

#include <memory>
#include <string>

namespace platform
{

struct HandleCloser
{
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

/// Owner of a handle; null where Windows has INVALID_HANDLE_VALUE.
using Handle = std::unique_ptr<void, HandleCloser>;

/// Takes over what CreateFileW and its like return.
inline Handle owned(HANDLE handle)
{
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// What CreateFileW is asked for.
struct Opening
{
    DWORD access;
    DWORD sharing;
    DWORD disposition;
    DWORD flags;
};

/// Null on a failure, which GetLastError tells. Should it be a pipe, its other end learns who opens it but cannot act
/// in that name.
inline Handle open(const std::wstring& path, const Opening& opening)
{
    return owned(CreateFileW(path.c_str(), opening.access, opening.sharing, nullptr, opening.disposition,
                             opening.flags | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
}

struct LocalMemoryReleaser
{
    void operator()(void* memory) const { LocalFree(memory); }
};

/// Owner of memory that Windows has allocated for its caller.
template <class Content>
using LocalMemory = std::unique_ptr<Content, LocalMemoryReleaser>;

} // namespace platform
