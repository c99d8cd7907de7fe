#include <visa.h>

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace
{

/// The completion codes and errors that visa.h defines, by name; older names of theirs are left out.
std::map<std::string, ViStatus> codesOfHeader()
{
    static const std::regex kCode(R"(#define (VI_(?:SUCCESS|WARN|ERROR)_\w+) \(\(ViStatus\)(0x[0-9A-F]{8})\))");
    std::map<std::string, ViStatus> codes{{"VI_SUCCESS", VI_SUCCESS}};
    std::ifstream header(KVX_VISA_HEADER);
    for (std::string line; std::getline(header, line);) {
        std::smatch match;
        if (std::regex_match(line, match, kCode))
            codes[match[1]] = static_cast<ViStatus>(std::stoul(match[2], nullptr, 16));
    }
    return codes;
}

TEST(VisaStatusDesc, EveryCodeOfTheHeaderHasATextOfItsOwn)
{
    const auto codes = codesOfHeader();
    EXPECT_EQ(codes.size(), 106U);
    EXPECT_EQ(codes.at("VI_ERROR_TMO"), VI_ERROR_TMO);
    std::set<std::string> texts;
    for (const auto& [name, status] : codes) {
        std::array<ViChar, 256> text{};
        EXPECT_EQ(viStatusDesc(VI_NULL, status, text.data()), VI_SUCCESS) << name;
        EXPECT_TRUE(std::string(text.data()).ends_with('.')) << name;
        EXPECT_TRUE(texts.insert(text.data()).second) << name << ": " << text.data();
    }
}

TEST(VisaStatusDesc, ResourceThatNothingReachesIsNotTakenForABadName)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_LIBRARY_NFOUND, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(),
                 "The resource string is understood, but this library has nothing that reaches such a resource.");
}

TEST(VisaStatusDesc, DeviceThatMayNotBeOpenedNamesTheRuleThatHelps)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_NPERMISSION, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "The user may not open the device; for USB instruments, the udev rule "
                              "70-kvvisa-usbtmc.rules allows it.");
}

TEST(VisaStatusDesc, UnknownCodeIsNamedWithAWarning)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, static_cast<ViStatus>(0xBFFF0FFF), text.data()), VI_WARN_UNKNOWN_STATUS);
    EXPECT_STREQ(text.data(), "Unknown status code 0xBFFF0FFF.");
}

TEST(VisaStatusDesc, TimeoutText)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_TMO, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "The time-out passed before the operation was complete.");
}

} // namespace
