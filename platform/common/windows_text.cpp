#include "platform/common/windows_text.h"

#include <windows.h>

#include <limits>

namespace platform
{
namespace
{

constexpr std::size_t kLongestPath = 32767 - std::wstring_view(LR"(\\?\UNC\)").size();
constexpr std::size_t kLongestText = std::numeric_limits<int>::max();

/// The path after steps such as "..", with the current folder or drive before a relative one; empty on a failure.
std::wstring fullPath(const std::wstring& path)
{
    std::wstring full;
    DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    // Another thread may change the current folder between two calls.
    while (size > full.size()) {
        full.resize(size);
        size = GetFullPathNameW(path.c_str(), size, full.data(), nullptr);
    }
    full.resize(size);
    return full;
}

} // namespace

std::optional<std::wstring> wideText(std::string_view utf8)
{
    if (utf8.empty())
        return std::wstring();
    if (utf8.size() > kLongestText)
        return std::nullopt;
    const int bytes = static_cast<int>(utf8.size());
    const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), bytes, nullptr, 0);
    if (size == 0)
        return std::nullopt;
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), bytes, wide.data(), size);
    return wide;
}

std::string utf8Text(std::wstring_view wide)
{
    if (wide.empty() || wide.size() > kLongestText)
        return {};
    const int units = static_cast<int>(wide.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, text.data(), size, nullptr, nullptr);
    return text;
}

std::wstring systemPath(std::string_view utf8)
{
    const auto wide = wideText(utf8);
    // A terminator inside would cut the path short.
    if (!wide || wide->empty() || wide->find(L'\0') != std::wstring::npos)
        return {};
    std::wstring full = fullPath(*wide);
    const bool isPlain = full.starts_with(LR"(\\?\)") || full.starts_with(LR"(\\.\)");
    if (full.size() > kLongestPath)
        return {};
    if (full.empty() || isPlain)
        return full;
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC\)" + full.substr(2) : LR"(\\?\)" + full;
}

} // namespace platform
