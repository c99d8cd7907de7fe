#pragma once

#include <windows.h>

#include <array>
#include <atomic>

/// Where the platform's libraries are on Windows, for the driver and for programs that ask the same ones.
///
/// A library is searched for in the folders of the program, of the system and of PATH, then beside the file that this
/// is part of, and so is what it needs; once found it stays loaded. The current folder, which may be a shared one with
/// anybody's files, does not count, nor does a relative one of PATH. While it is missing, each question searches anew.
/// Any thread may ask.
namespace binding
{

inline constexpr bool kIs64Bit = sizeof(void*) == 8;

/// A library of the platform, under any of the names that it may have.
class PlatformLibrary
{
public:
    explicit constexpr PlatformLibrary(const wchar_t* name, const wchar_t* otherName = nullptr)
        : names_{name, otherName}
    {
    }

    /// Null when the library or the function is missing.
    FARPROC find(const char* function);

private:
    HMODULE load() const;

    std::array<const wchar_t*, 2> names_;
    std::atomic<HMODULE> module_ = nullptr;
};

extern PlatformLibrary sessionService;
extern PlatformLibrary configServer;
extern PlatformLibrary visa;

} // namespace binding
