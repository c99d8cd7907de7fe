#include "platform/config_server/files.h"

#include "platform/common/windows_handle.h"
#include "platform/common/windows_text.h"

#include <algorithm>

namespace config_server
{
namespace
{

using platform::Handle;
using platform::systemPath;

bool readInto(HANDLE file, char* place, std::size_t count)
{
    // ReadFile takes 32 bits.
    constexpr std::size_t kMost = std::size_t{1} << 30;
    while (count > 0) {
        DWORD read = 0;
        const auto part = static_cast<DWORD>(std::min(count, kMost));
        if (ReadFile(file, place, part, &read, nullptr) == 0 || read == 0)
            return false;
        place += read;
        count -= read;
    }
    return true;
}

} // namespace

bool isFile(const std::string& path)
{
    // Most devices have no attributes and so are never opened; readFile() refuses the others, such as a pipe in use.
    const DWORD attributes = GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool isMissing(const std::string& path)
{
    const std::wstring place = systemPath(path);
    if (place.empty() || GetFileAttributesW(place.c_str()) != INVALID_FILE_ATTRIBUTES)
        return false;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

std::optional<std::string> readFile(const std::string& path, std::size_t largest)
{
    if (!isFile(path))
        return std::nullopt;
    const Handle file =
        platform::open(systemPath(path), {GENERIC_READ, platform::kShareAll, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN});
    LARGE_INTEGER size{};
    if (file == nullptr || GetFileType(file.get()) != FILE_TYPE_DISK || GetFileSizeEx(file.get(), &size) == 0)
        return std::nullopt;
    if (static_cast<ULONGLONG>(size.QuadPart) > largest)
        return std::nullopt;
    std::string text(static_cast<std::size_t>(size.QuadPart), '\0');
    if (!readInto(file.get(), text.data(), text.size()))
        return std::nullopt;
    return text;
}

} // namespace config_server
