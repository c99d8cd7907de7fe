#include "api/KVX2800T.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace
{

using Names = std::multimap<ViStatus, std::string>;

std::string headerText()
{
    std::ifstream file(KVX_HEADER_FILE, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The names that the public header gives to status codes.
Names headerNames(const std::string& text)
{
    const std::regex definition(R"(#define ((?:KVX2800T|IVI)_(?:ERROR|WARN)_\w+) \(\(ViStatus\)0x([0-9A-F]{8})UL\)\n)");
    Names names;
    for (std::sregex_iterator found(text.begin(), text.end(), definition), end; found != end; ++found)
        names.emplace(static_cast<ViStatus>(std::stoul((*found)[2], nullptr, 16)), (*found)[1]);
    return names;
}

/// The codes among `count` from `first` on that have a message.
std::set<ViStatus> codesWithMessage(ViUInt32 first, ViUInt32 count)
{
    std::set<ViStatus> codes;
    for (ViUInt32 offset = 0; offset < count; ++offset) {
        const auto code = static_cast<ViStatus>(first + offset);
        char message[256];
        if (KVX2800T_error_message(VI_NULL, code, message) == VI_SUCCESS)
            codes.insert(code);
    }
    return codes;
}

TEST(StatusNames, EveryCodeWithAMessageHasOneName)
{
    std::set<ViStatus> codes = codesWithMessage(0xBFFA0000U, 0x10000U);
    codes.merge(codesWithMessage(0x3FFA0000U, 0x10000U));
    EXPECT_EQ(codes.size(), 51U);
    const Names names = headerNames(headerText());
    for (const ViStatus code : codes)
        EXPECT_EQ(names.count(code), 1U) << std::hex << code;
    EXPECT_EQ(names.size(), codes.size());
}

TEST(StatusNames, SuccessHasAMessage)
{
    char message[256] = "";
    EXPECT_EQ(KVX2800T_error_message(VI_NULL, VI_SUCCESS, message), VI_SUCCESS);
    EXPECT_STREQ(message, "Success.");
}

TEST(StatusNames, TheNamesSayWhetherACodeIsAnError)
{
    for (const auto& [code, name] : headerNames(headerText()))
        EXPECT_EQ(code < 0, name.find("_WARN_") == std::string::npos) << name;
}

TEST(StatusNames, NamesThatOtherHeadersMayDefineAreGuarded)
{
    const std::string text = headerText();
    for (const auto& [code, name] : headerNames(text))
        EXPECT_EQ(text.find("#ifndef " + name + "\n") != std::string::npos, name.starts_with("IVI_")) << name;
}

} // namespace
