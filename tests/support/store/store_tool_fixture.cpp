#include "tests/support/store/store_tool_fixture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace kvxtest
{

std::string exampleStore()
{
    return readFile(KVX_EXAMPLE_STORE);
}

std::string settingsStore()
{
    return readFile(KVX_SETTINGS_STORE);
}

std::string installedStore()
{
    return readFile(KVX_INSTALLED_STORE);
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return place == std::string::npos ? text : text.replace(place, from.size(), to);
}

std::string blanks(std::size_t count)
{
    std::string text;
    text.resize(count, ' ');
    return text;
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void writeFile(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    EXPECT_TRUE(file.flush()) << path;
}

} // namespace kvxtest
