#include "platform/config_server/files.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace config_server
{

bool isFile(const std::string& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

bool isMissing(const std::string& path)
{
    std::error_code error;
    return std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found;
}

std::optional<std::string> readFile(const std::string& path, std::size_t largest)
{
    // Only files: a pipe or a terminal would keep the caller waiting.
    if (!isFile(path))
        return std::nullopt;
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || size > largest)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string text(static_cast<std::size_t>(size), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file || file.gcount() != static_cast<std::streamsize>(text.size()))
        return std::nullopt;
    return text;
}

} // namespace config_server
