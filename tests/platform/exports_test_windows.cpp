#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>

namespace
{

TEST(PlatformOrdinals, VisaHasThoseOfTheStandard)
{
    struct Export
    {
        const char* name;
        WORD ordinal;
    };
    HMODULE const visa = LoadLibraryW(std::filesystem::path(VISA_LIBRARY).c_str());
    ASSERT_NE(visa, nullptr);
    for (const Export& function :
         {Export{"viOpen", 131}, Export{"viClose", 132}, Export{"viGetAttribute", 133}, Export{"viSetAttribute", 134},
          Export{"viOpenDefaultRM", 141}, Export{"viStatusDesc", 142}, Export{"viRead", 256}, Export{"viWrite", 257},
          Export{"viSetBuf", 267}})
    {
        const FARPROC byName = GetProcAddress(visa, function.name);
        EXPECT_NE(byName, nullptr) << function.name;
        EXPECT_EQ(GetProcAddress(visa, MAKEINTRESOURCEA(function.ordinal)), byName) << function.name;
    }
    FreeLibrary(visa);
}

TEST(PlatformNames, AreThoseOfTheStandards)
{
    constexpr bool kIs64Bit = sizeof(void*) == 8;
    EXPECT_STREQ(VISA_LIBRARY, kIs64Bit ? "visa64.dll" : "visa32.dll");
    EXPECT_STREQ(SESSION_SERVICE_LIBRARY, kIs64Bit ? "IviCShared_64.dll" : "IviCShared.dll");
    EXPECT_STREQ(CONFIG_SERVER_LIBRARY, "IviConfigServerCAPI.dll");
}

} // namespace
