#include "tests/support/platform/library_exports.h"

#include <windows.h>

#include <filesystem>
#include <span>

namespace kvxtest
{
namespace
{

/// Something in a loaded library, by its distance from the beginning.
template <class Part>
const Part* at(HMODULE library, DWORD distance)
{
    return reinterpret_cast<const Part*>(reinterpret_cast<const char*>(library) + distance);
}

} // namespace

std::vector<std::string> exportsOf(const std::string& library)
{
    HMODULE const loaded = LoadLibraryW(std::filesystem::path(library).c_str());
    if (loaded == nullptr)
        return {};
    const auto* const dosHeader = at<IMAGE_DOS_HEADER>(loaded, 0);
    const auto* const headers = at<IMAGE_NT_HEADERS>(loaded, static_cast<DWORD>(dosHeader->e_lfanew));
    const auto& location = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* const directory = at<IMAGE_EXPORT_DIRECTORY>(loaded, location.VirtualAddress);
    std::vector<std::string> names;
    for (const DWORD name : std::span(at<DWORD>(loaded, directory->AddressOfNames), directory->NumberOfNames))
        names.emplace_back(at<char>(loaded, name));
    FreeLibrary(loaded);
    return names;
}

} // namespace kvxtest
