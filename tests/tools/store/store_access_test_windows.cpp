#include "platform/common/windows_handle.h"
#include "tests/support/long_path_windows.h"
#include "tests/support/store/store_access_fixture.h"

#include <gmock/gmock.h>

#include <aclapi.h>
#include <sddl.h>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::EndsWith;
using testing::HasSubstr;

constexpr auto kNoLinks = "this user or host makes no links";

class StoreAccessOnWindows : public StoreAccess
{
protected:
    std::wstring place() const { return fromUtf8(path_).wstring(); }

    /// Gives the file exactly these rights, none from its folder; a text of the security descriptor language.
    void setRights(const wchar_t* text) const
    {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &descriptor, nullptr), 0);
        const platform::LocalMemory<void> owner(descriptor);
        BOOL isPresent = FALSE;
        BOOL isDefault = FALSE;
        PACL list = nullptr;
        ASSERT_NE(GetSecurityDescriptorDacl(descriptor, &isPresent, &list, &isDefault), 0);
        ASSERT_EQ(SetNamedSecurityInfoW(place().data(), SE_FILE_OBJECT,
                                        DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, nullptr,
                                        nullptr, list, nullptr),
                  DWORD{ERROR_SUCCESS});
    }

    /// The file's rights in that language, and whether they are protected from the folder's.
    std::wstring rights() const
    {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        EXPECT_EQ(GetNamedSecurityInfoW(place().c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                        nullptr, nullptr, &descriptor),
                  DWORD{ERROR_SUCCESS});
        const platform::LocalMemory<void> owner(descriptor);
        wchar_t* text = nullptr;
        EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1,
                                                                       DACL_SECURITY_INFORMATION, &text, nullptr),
                  0);
        const platform::LocalMemory<wchar_t> textOwner(text);
        return text == nullptr ? L"" : text;
    }

    /// False when this user or host makes no links.
    static bool makeLink(const std::string& link, const std::string& target)
    {
        const std::wstring place = fromUtf8(link).wstring();
        CreateSymbolicLinkW(place.c_str(), fromUtf8(target).c_str(), SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE);
        // Wine says that it has made one.
        return GetFileAttributesW(place.c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    DWORD marks() const { return GetFileAttributesW(place().c_str()); }

    /// Opens the store as a program that shares it in this way does.
    platform::Handle openShared(DWORD sharing) const
    {
        platform::Handle file = platform::open(place(), {GENERIC_READ, sharing, OPEN_EXISTING, 0});
        EXPECT_NE(file, nullptr);
        return file;
    }
};

TEST_F(StoreAccessOnWindows, AFileKeepsItsMarks)
{
    ASSERT_NE(SetFileAttributesW(place().c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), 0);
    replace("new");
    EXPECT_EQ(readFile(fromUtf8(path_)), "new");
    EXPECT_EQ(marks() & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccessOnWindows, AFileKeepsItsRights)
{
    const std::wstring usual = rights();
    setRights(L"D:P(A;;FA;;;WD)");
    const std::wstring given = rights();
    ASSERT_NE(given, usual);
    replace("new");
    EXPECT_EQ(readFile(fromUtf8(path_)), "new");
    EXPECT_EQ(rights(), given);
}

TEST_F(StoreAccessOnWindows, AFileKeepsItsProtectionFromTheRightsOfItsFolder)
{
    setRights(L"D:P(A;;FA;;;WD)");
    if (!rights().starts_with(L"D:P"))
        GTEST_SKIP() << "this host protects no rights";
    replace("new");
    EXPECT_TRUE(rights().starts_with(L"D:P"));
}

TEST_F(StoreAccessOnWindows, RemovesWhatKilledChangesHaveLeftAndNothingElse)
{
    for (const char* const name :
         {".kvx2800t-store.unfinished-change.4294967295", ".kvx2800t-store.unfinished-change.0"})
        writeFile(fromUtf8(folder_ / name), "left");
    for (const char* const name : {".kvx2800t-store-2026", ".kvx2800t-store.unfinished-change.",
                                   ".kvx2800t-store.unfinished-change.12a", "kvx2800t-store.unfinished-change.12"})
        writeFile(fromUtf8(folder_ / name), "precious");
    replace("new");
    EXPECT_EQ(readFile(fromUtf8(path_)), "new");
    EXPECT_EQ(folder_.count(), 5U);
}

TEST_F(StoreAccessOnWindows, AReadOnlyFileStaysAsItIs)
{
    ASSERT_NE(SetFileAttributesW(place().c_str(), FILE_ATTRIBUTE_READONLY), 0);
    EXPECT_EQ(complaint([this] { replace("new"); }), "cannot replace " + path_ + ": Permission denied");
    EXPECT_EQ(readFile(fromUtf8(path_)), "old");
    EXPECT_EQ(folder_.count(), 1U);
    ASSERT_NE(SetFileAttributesW(place().c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

TEST_F(StoreAccessOnWindows, AFileThatSomethingElseKeepsOpenStaysAsItIs)
{
    const auto reader = openShared(FILE_SHARE_READ);
    EXPECT_THAT(complaint([this] { replace("new"); }), HasSubstr("cannot replace " + path_ + ": "));
    EXPECT_EQ(readFile(fromUtf8(path_)), "old");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccessOnWindows, SaysThatAFileIsInUse)
{
    const auto owner = openShared(0);
    EXPECT_THAT(complaint([this] { readStoreFile(path_); }), HasSubstr("cannot read " + path_ + ": "));
    EXPECT_THAT(complaint([this] { readStoreFile(path_); }), testing::Not(EndsWith("\n")));
}

TEST_F(StoreAccessOnWindows, TakesPathsOfAnyLength)
{
    const LongPath path(folder_.path());
    {
        StoreChange change(path.text(), WhenMissing::Create);
        change.replaceBy("old");
    }
    {
        StoreChange change(path.text(), WhenMissing::Refuse);
        change.replaceBy(*change.text() + " and new");
    }
    EXPECT_EQ(readStoreFile(path.text()), "old and new");
}

TEST_F(StoreAccessOnWindows, MakesFoldersOfAnyDepthAndTakesThemBack)
{
    const std::string deep = toUtf8(folder_.path()) + repeated("\\a", 200);
    {
        const StoreChange change(deep + "\\store.xml", WhenMissing::Create);
        EXPECT_NE(GetFileAttributesW((LR"(\\?\)" + fromUtf8(deep).wstring()).c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0U);
        EXPECT_EQ(folder_.count(), 2U);
    }
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccessOnWindows, SaysWhichOfVeryManyFoldersCannotBeMade)
{
    const std::string deep = path_ + repeated("\\a", 12'000);
    EXPECT_EQ(complaint([&deep] { StoreChange(deep + "\\b.xml", WhenMissing::Create); }),
              "cannot create " + path_ + ": File exists");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccessOnWindows, RefusesDevicesAndPathsThatNoFileCanHave)
{
    EXPECT_EQ(complaint([] { readStoreFile("NUL"); }), "NUL is not a file");
    EXPECT_THAT(complaint([this] { readStoreFile(folder_ / "a*b.xml"); }), HasSubstr("cannot read "));
    EXPECT_THAT(complaint([this] { StoreChange(path_ + "/a/b.xml", WhenMissing::Create); }),
                HasSubstr("cannot create "));
    EXPECT_THAT(complaint([] { StoreChange("\xFF.xml", WhenMissing::Create); }), HasSubstr("cannot read \xFF.xml: "));
    EXPECT_THAT(complaint([] { StoreChange(std::string(100'000, 'x'), WhenMissing::Create); }),
                HasSubstr("cannot read "));
}

TEST_F(StoreAccessOnWindows, ReplacesWhatALinkLeadsTo)
{
    const std::string link = folder_ / "link.xml";
    if (!makeLink(link, path_))
        GTEST_SKIP() << kNoLinks;
    StoreChange(link, WhenMissing::Refuse).replaceBy("new");
    EXPECT_NE(GetFileAttributesW(fromUtf8(link).c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0U);
    EXPECT_EQ(readFile(fromUtf8(path_)), "new");
}

TEST_F(StoreAccessOnWindows, RefusesALinkToAMissingFile)
{
    const std::string link = folder_ / "link.xml";
    if (!makeLink(link, folder_ / "missing.xml"))
        GTEST_SKIP() << kNoLinks;
    EXPECT_EQ(complaint([&link] { StoreChange(link, WhenMissing::Create); }), link + " is a link to a missing file");
}

TEST_F(StoreAccessOnWindows, ALinkInPlaceOfTheLockLosesNothingElse)
{
    const TemporaryFolder elsewhere;
    const std::string target = elsewhere / "precious.txt";
    writeFile(fromUtf8(target), "precious");
    if (!makeLink(folder_ / ".kvx2800t-store.lock", target))
        GTEST_SKIP() << kNoLinks;
    replace("new");
    EXPECT_EQ(readFile(fromUtf8(target)), "precious");
    EXPECT_EQ(readFile(fromUtf8(path_)), "new");
    EXPECT_EQ(folder_.count(), 1U);
}

} // namespace
