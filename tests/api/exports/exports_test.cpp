#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <string>

// What the built shared library shows to the outside, as binutils read it.

namespace
{

using Names = std::set<std::string>;

std::string contentOf(const char* path)
{
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string outputOf(const std::string& command)
{
    const auto closePipe = [](std::FILE* pipe) { EXPECT_EQ(pclose(pipe), 0); };
    const std::unique_ptr<std::FILE, decltype(closePipe)> pipe(popen(command.c_str(), "r"), closePipe);
    std::string output;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get()))
        output.append(buffer.data(), count);
    return output;
}

/// The first group of every match.
Names allMatches(const std::string& text, const char* expression)
{
    const std::regex regex(expression);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        names.insert((*match)[1].str());
    return names;
}

/// The symbols with their versions; a version itself is an absolute one.
std::string symbols()
{
    return outputOf("nm -D --defined-only --no-demangle '" KVX_LIBRARY "'");
}

Names exportedSymbols()
{
    return allMatches(symbols(), R"([0-9a-f]+ [B-Za-z] ([^\s@]+))");
}

std::string headers()
{
    return contentOf(KVX_HEADER) + contentOf(KVX_INSTRUMENT_HEADER);
}

Names declaredFunctions()
{
    return allMatches(headers(), R"(_VI_FUNC\s+(KVX2800T_\w+)\s*\()");
}

Names listedFunctions()
{
    return allMatches(contentOf(KVX_EXPORTS), R"((\S+))");
}

TEST(Exports, TheLibraryExportsWhatTheHeaderDeclares)
{
    EXPECT_FALSE(declaredFunctions().empty());
    EXPECT_EQ(exportedSymbols(), declaredFunctions());
}

TEST(Exports, EveryFunctionHasTheVersionThatProgramsAskFor)
{
    EXPECT_EQ(allMatches(symbols(), R"( (\S+)@@KVX2800T_1\n)"), declaredFunctions());
}

TEST(Exports, TheListOfExportsIsWhatTheHeaderDeclares)
{
    EXPECT_EQ(listedFunctions(), declaredFunctions());
}

TEST(Exports, EveryDeclarationHasTheStandardsCallingConvention)
{
    EXPECT_EQ(allMatches(headers(), R"((?:^|\n)ViStatus[^\n;]*?(KVX2800T_\w+)\s*\()"), declaredFunctions());
}

TEST(Exports, TheLibraryNeedsTheRuntimeAndThePlatformOnly)
{
    if (!std::string(KVX_SANITIZE).empty())
        GTEST_SKIP() << "a sanitizer brings a library of its own";
    const std::regex allowed(
        R"((libstdc\+\+|libgcc_s|libm|libc|ld-linux[\w-]*|libIviCShared|libIviConfigServer|libvisa)\.so[\d.]*)");
    const Names needed =
        allMatches(outputOf("LC_ALL=C readelf -d '" KVX_LIBRARY "'"), R"(\(NEEDED\)\s+Shared library: \[([^\]]+)\])");
    for (const std::string& library : needed)
        EXPECT_TRUE(std::regex_match(library, allowed)) << library;
    EXPECT_EQ(std::count_if(needed.begin(), needed.end(),
                            [](const std::string& name) {
                                return name.starts_with("libIviCShared.so") ||
                                       name.starts_with("libIviConfigServer.so") || name.starts_with("libvisa.so");
                            }),
              3);
}

} // namespace
