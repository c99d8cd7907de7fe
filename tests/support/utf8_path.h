#pragma once

#include <filesystem>
#include <string>

namespace kvxtest
{

/// The path of a text in UTF-8, whatever encoding the host gives to plain strings.
inline std::filesystem::path fromUtf8(const std::string& text)
{
    return std::u8string(text.begin(), text.end());
}

inline std::string toUtf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace kvxtest
