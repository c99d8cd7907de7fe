// Texts that name a store file on Windows.

#include "platform/common/windows_handle.h"
#include "tests/support/long_path_windows.h"
#include "tests/support/platform/store_fixture.h"
#include "tests/support/utf8_path.h"

#include <filesystem>

namespace
{

using namespace kvxtest;

class StorePath : public StoreTest
{
protected:
    ViStatus load(const std::string& path) const { return IviConfig_Deserialize(store_, path.c_str()); }

    std::string actualLocation() const { return storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION); }
};

/// The text in the process's code page; empty when that lacks a letter.
std::string inCodePage(const std::wstring& text)
{
    BOOL lacksOne = FALSE;
    std::string bytes(text.size() * 4, '\0');
    const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.c_str(), static_cast<int>(text.size()),
                                         bytes.data(), static_cast<int>(bytes.size()), nullptr, &lacksOne);
    bytes.resize(static_cast<std::size_t>(size));
    return lacksOne != FALSE ? std::string() : bytes;
}

TEST_F(StorePath, MayHaveLettersOfAnyScript)
{
    const std::string path = writeFile(
        "\xCE\xA4\xCF\x81\xCE\xBF\xCF\x86\xCE\xAE/\xE9\x9B\xBB\xE6\xBA\x90 \xF0\x9F\x94\x8C.xml", kBenchStore);
    ASSERT_EQ(load(path), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
    EXPECT_EQ(actualLocation(), path);
}

TEST_F(StorePath, IsTakenInTheCodePageWhenItIsNotUtf8)
{
    if (GetACP() == CP_UTF8)
        GTEST_SKIP() << "this process has no other code page";
    const std::string path = writeFile("B\xC3\xA4nk.xml", kBenchStore);
    const std::string bytes = inCodePage(fromUtf8(path).wstring());
    if (bytes.empty())
        GTEST_SKIP() << "the code page lacks the letter";
    ASSERT_NE(bytes, path);
    ASSERT_EQ(load(bytes), VI_SUCCESS);
    EXPECT_EQ(actualLocation(), path);
}

TEST_F(StorePath, MayBeRelativeOrHaveEitherSeparator)
{
    const std::string path = writeFile("a/store.xml", kBenchStore);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    EXPECT_EQ(load("a/../a/store.xml"), VI_SUCCESS);
    std::filesystem::current_path(before);
    EXPECT_EQ(actualLocation(), "a/../a/store.xml");
}

TEST_F(StorePath, MayBeOfAnyLength)
{
    const LongPath path(folder_.path());
    ASSERT_TRUE(path.makeFolders());
    const std::string shortPath = writeFile("short.xml", kBenchStore);
    ASSERT_NE(MoveFileW(fromUtf8(shortPath).c_str(), path.marked().c_str()), 0);
    ASSERT_GT(path.text().size(), std::size_t{MAX_PATH});
    EXPECT_EQ(load(path.text()), VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "Bench");
}

TEST_F(StorePath, OfADeviceIsRefused)
{
    for (const char* const name :
         {"NUL", "CON", "COM1", R"(\\.\NUL)", R"(\\.\pipe\none)", R"(\\?\)", R"(\\)", "C:", "*"})
        EXPECT_EQ(load(name), IVICONFIG_ERROR_DESERIALIZE_FAILED) << name;
}

TEST_F(StorePath, OfAPipeThatAProgramServesIsRefused)
{
    const std::string name = R"(\\.\pipe\kvx-test-)" + std::to_string(GetCurrentProcessId());
    const auto server =
        platform::owned(CreateNamedPipeW(fromUtf8(name).c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_FIRST_PIPE_INSTANCE, 0,
                                         PIPE_UNLIMITED_INSTANCES, 64, 64, 0, nullptr));
    ASSERT_NE(server, nullptr);
    EXPECT_EQ(load(name), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(StorePath, OfAFileThatSomethingElseKeepsToItselfIsRefused)
{
    const std::string path = writeFile("store.xml", kBenchStore);
    auto owner = platform::open(fromUtf8(path).wstring(), {GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING, 0});
    ASSERT_NE(owner, nullptr);
    EXPECT_EQ(load(path), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    owner.reset();
    EXPECT_EQ(load(path), VI_SUCCESS);
}

} // namespace
