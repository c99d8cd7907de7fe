#include "store_access_fixture.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <memory>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::EndsWith;
using testing::HasSubstr;

class StoreAccessOnWindows : public StoreAccess
{
protected:
    std::wstring place() const { return fromUtf8(path_).wstring(); }

    DWORD marks() const { return GetFileAttributesW(place().c_str()); }

    /// Opens the store as a program that shares it in this way does.
    std::shared_ptr<void> openShared(DWORD sharing) const
    {
        const HANDLE handle = CreateFileW(place().c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
        return {handle, CloseHandle};
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
    std::string path = toUtf8(folder_.path());
    for (int i = 0; i < 4; ++i)
        path += "/" + std::string(100, static_cast<char>('a' + i));
    path += "/store.xml";
    {
        StoreChange change(path, WhenMissing::Create);
        change.replaceBy("old");
    }
    {
        StoreChange change(path, WhenMissing::Refuse);
        change.replaceBy(*change.text() + " and new");
    }
    EXPECT_EQ(readStoreFile(path), "old and new");
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
    const std::wstring link = fromUtf8(folder_ / "link.xml").wstring();
    CreateSymbolicLinkW(link.c_str(), place().c_str(), SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE);
    // Wine says that it has made one.
    if (GetFileAttributesW(link.c_str()) == INVALID_FILE_ATTRIBUTES)
        GTEST_SKIP() << "this user or host makes no links";
    StoreChange(folder_ / "link.xml", WhenMissing::Refuse).replaceBy("new");
    EXPECT_NE(GetFileAttributesW(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0U);
    EXPECT_EQ(readFile(fromUtf8(path_)), "new");
}

} // namespace
