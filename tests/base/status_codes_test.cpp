#include "base/status_codes.h"

#include <gmock/gmock.h>

#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>

namespace
{

using CodesByName = std::map<std::string, std::string>;

/// What the groups of `definition` find in a source file: a name and the number that it stands for.
CodesByName definitionsIn(const std::string& path, const std::regex& definition)
{
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    CodesByName codes;
    for (std::sregex_iterator found(text.begin(), text.end(), definition), end; found != end; ++found)
        codes.emplace((*found)[1], (*found)[2]);
    return codes;
}

/// IVI_ERROR_NULL_POINTER and KVX2800T_ERROR_NULL_POINTER as kErrorNullPointer.
std::string constantName(const std::string& publicName)
{
    std::string name = "k";
    bool beginsWord = true;
    for (const char c : publicName.substr(publicName.find('_') + 1)) {
        if (c != '_')
            name += static_cast<char>(beginsWord ? std::toupper(c) : std::tolower(c));
        beginsWord = c == '_';
    }
    return name;
}

TEST(StatusCodes, ThePublicHeaderHasTheSameNamesForTheSameNumbers)
{
    CodesByName ours = definitionsIn(KVX_PROJECT "/base/status_codes.h",
                                     std::regex(R"(constexpr ViStatus (k\w+) = statusCode\(0x([0-9A-F]{8})U\);)"));
    EXPECT_EQ(ours.extract("kSuccess").mapped(), "00000000");
    CodesByName published;
    for (const auto& [name, number] : definitionsIn(
             KVX_PROJECT "/api/KVX2800T.h",
             std::regex(R"(#define ((?:KVX2800T|IVI)_(?:ERROR|WARN)_\w+) \(\(ViStatus\)0x([0-9A-F]{8})UL\)\n)")))
        published.emplace(constantName(name), number);
    EXPECT_EQ(ours.size(), 51U);
    EXPECT_EQ(ours, published);
}

TEST(StatusCodes, AnErrorIsNegativeAndAWarningPositive)
{
    EXPECT_EQ(base::kSuccess, 0);
    EXPECT_EQ(base::kErrorCannotRecover, -1074135040);
    EXPECT_EQ(base::kErrorValueOutOfRange, -1074118121);
    EXPECT_EQ(base::kWarnNsupSelfTest, 1073348711);
}

} // namespace
