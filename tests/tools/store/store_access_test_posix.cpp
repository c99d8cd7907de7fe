#include "tests/support/store/store_access_fixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace kvxtest;
using namespace store_tool;
using testing::StartsWith;
namespace fs = std::filesystem;

/// Acts as a user without special rights while it lives.
class PlainUser
{
public:
    PlainUser() : before_(::geteuid()) { become(65534); }
    ~PlainUser() { become(before_); }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    /// Only the superuser has rights to give up.
    void become(uid_t user) const
    {
        const int result = before_ == 0 ? ::seteuid(user) : 0;
        EXPECT_EQ(result, 0);
    }

    uid_t before_;
};

/// A disk that is full after so many bytes of a file.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FullDisk()
    {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before_), 0);
        static_cast<void>(std::signal(SIGXFSZ, handler_));
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(StoreAccess, ReplacesAFileAndKeepsItsRights)
{
    ASSERT_EQ(::chmod(path_.c_str(), 0640), 0);
    StoreChange change(path_, WhenMissing::Refuse);
    EXPECT_EQ(change.text(), "old");
    change.replaceBy("new");
    EXPECT_EQ(readFile(path_), "new");
    EXPECT_EQ(fs::status(path_).permissions(), fs::perms(0640));
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, ReplacesWhatALinkLeadsTo)
{
    fs::create_directory(folder_ / "links");
    const std::string link = folder_ / "links/store.xml";
    fs::create_symlink("../store.xml", link);
    StoreChange change(link, WhenMissing::Refuse);
    change.replaceBy("new");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(path_), "new");
    EXPECT_EQ(folder_.count(), 2U);
}

TEST_F(StoreAccess, AFullDiskLeavesTheFile)
{
    {
        const FullDisk disk(2);
        EXPECT_THAT(complaint([this] { replace("new text"); }), StartsWith("cannot write "));
    }
    EXPECT_EQ(readFile(path_), "old");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, AReadOnlyFolderLeavesTheFile)
{
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0555), 0);
    {
        const PlainUser user;
        EXPECT_EQ(complaint([this] { replace("new"); }),
                  "cannot create a file in " + folder_.path().string() + ": Permission denied");
        EXPECT_EQ(complaint([this] { StoreChange(folder_ / "new.xml", WhenMissing::Create).replaceBy("new"); }),
                  "cannot create a file in " + folder_.path().string() + ": Permission denied");
    }
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
    EXPECT_EQ(readFile(path_), "old");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, SaysWhatCannotBeRead)
{
    ASSERT_EQ(::chmod(path_.c_str(), 0), 0);
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
    const PlainUser user;
    EXPECT_EQ(complaint([this] { readStoreFile(path_); }), "cannot read " + path_ + ": Permission denied");
    EXPECT_EQ(complaint([this] { replace("new"); }), "cannot read " + path_ + ": Permission denied");
}

TEST_F(StoreAccess, RefusesPipesDevicesAndLinksToNothing)
{
    const std::string pipe = folder_ / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink("loop", folder_ / "loop");
    fs::create_symlink("nowhere", folder_ / "dangling");
    EXPECT_EQ(complaint([&] { readStoreFile(pipe); }), pipe + " is not a file");
    EXPECT_EQ(complaint([&] { StoreChange(pipe, WhenMissing::Create); }), pipe + " is not a file");
    EXPECT_EQ(complaint([&] { readStoreFile("/dev/zero"); }), "/dev/zero is not a file");
    EXPECT_EQ(complaint([&] { StoreChange(folder_ / "loop", WhenMissing::Create); }),
              "cannot read " + (folder_ / "loop") + ": Too many levels of symbolic links");
    EXPECT_EQ(complaint([&] { StoreChange(folder_ / "dangling", WhenMissing::Create); }),
              (folder_ / "dangling") + " is a link to a missing file");
}

TEST_F(StoreAccess, NewFilesHaveTheRightsThatTheMaskLeaves)
{
    const std::string path = folder_ / "new.xml";
    const mode_t mask = ::umask(027);
    StoreChange(path, WhenMissing::Create).replaceBy("new");
    ::umask(mask);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
}

TEST_F(StoreAccess, LeavesNoFolderBehindOnAFullDisk)
{
    {
        StoreChange change(folder_ / "a/b/store.xml", WhenMissing::Create);
        const FullDisk disk(2);
        EXPECT_THAT(complaint([&change] { change.replaceBy("new text"); }), StartsWith("cannot write "));
    }
    EXPECT_FALSE(fs::exists(folder_ / "a"));
}

TEST_F(StoreAccess, LeavesOutRightsOfAGroupThatItCannotKeep)
{
    constexpr uid_t kStranger = 1234;
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give files away";
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
    ASSERT_EQ(::chown(path_.c_str(), kStranger, kStranger), 0);
    ASSERT_EQ(::chmod(path_.c_str(), 06664), 0);
    {
        const PlainUser user;
        replace("new");
    }
    EXPECT_EQ(readFile(path_), "new");
    EXPECT_EQ(fs::status(path_).permissions(), fs::perms(0604));
    ASSERT_EQ(::chown(path_.c_str(), kStranger, ::getegid()), 0);
    ASSERT_EQ(::chmod(path_.c_str(), 06664), 0);
    {
        const PlainUser user;
        replace("newer");
    }
    EXPECT_EQ(readFile(path_), "newer");
    EXPECT_EQ(fs::status(path_).permissions(), fs::perms(02664));
}

} // namespace
