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

constexpr uid_t kPlainUser = 65534;

/// Acts as a user without special rights while it lives.
class PlainUser
{
public:
    PlainUser() : before_(::geteuid()) { become(kPlainUser); }
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
    replace("new");
    EXPECT_EQ(readFile(path_), "new");
    EXPECT_EQ(fs::status(path_).permissions(), fs::perms(0640));
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, ReplacesWhatALinkLeadsTo)
{
    fs::create_directory(folder_ / "links");
    const std::string link = folder_ / "links/store.xml";
    fs::create_symlink("../store.xml", link);
    StoreChange(link, WhenMissing::Refuse).replaceBy("new");
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
    EXPECT_EQ(remedy([this] { readStoreFile(path_); }),
              "ask its owner for the right to read it, or name another file with --store");
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

TEST_F(StoreAccess, RemovesWhatKilledChangesHaveLeft)
{
    for (const char* const name : {".kvx2800t-store.unfinished-change.a1B2c3",
                                   ".kvx2800t-store.unfinished-change.XXXXXX", ".kvx2800t-store.lock"})
        writeFile(folder_ / name, "left");
    replace("new");
    EXPECT_EQ(readFile(path_), "new");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, RemovesTheOtherNameOfAStoreWhoseMakerWasKilledInBetween)
{
    fs::create_hard_link(path_, folder_ / ".kvx2800t-store.unfinished-change.a1B2c3");
    EXPECT_EQ(StoreChange(path_, WhenMissing::Refuse).otherNames(), 0U);
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, LeavesFilesOfOthersAlone)
{
    for (const char* const name :
         {".kvx2800t-store-backup", ".kvx2800t-store-saved1", ".kvx2800t-store.backup", ".kvx2800t-store-a1B2c3",
          ".kvx2800t-store.unfinished-change.", ".kvx2800t-store.unfinished-change.a1B2c",
          ".kvx2800t-store.unfinished-change.a1B2c34", ".kvx2800t-store.unfinished-change.a1B2c.",
          "kvx2800t-store.unfinished-change.a1B2c3", ".kvx2800t-store.unfinished-change.a1B2c3.bak",
          ".kvx2800t-store.unfinished-changea1B2c3"})
        writeFile(folder_ / name, "precious");
    fs::create_directory(folder_ / ".kvx2800t-store.unfinished-change.folder");
    fs::create_symlink("store.xml", folder_ / ".kvx2800t-store.unfinished-change.linked");
    const auto count = folder_.count();
    replace("new");
    EXPECT_EQ(folder_.count(), count);
}

/// Takes every lock that it can get on a file or a folder, for as long as it lives.
class Greedy
{
public:
    void lock(const std::string& path)
    {
        for (const int flags : {O_RDONLY, O_WRONLY}) {
            const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC);
            if (descriptor < 0)
                continue;
            descriptors_.push_back(descriptor);
            EXPECT_EQ(::flock(descriptor, LOCK_EX | LOCK_NB), 0);
            return;
        }
    }
    std::size_t count() const { return descriptors_.size(); }

    Greedy() = default;
    ~Greedy()
    {
        for (const int descriptor : descriptors_)
            ::close(descriptor);
    }
    Greedy(const Greedy&) = delete;
    Greedy& operator=(const Greedy&) = delete;

private:
    std::vector<int> descriptors_;
};

TEST_F(StoreAccess, WhoMayOnlyReadCannotKeepAChangeWaiting)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can become somebody else";
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(path_.c_str(), 0644), 0);
    Greedy reader;
    {
        const PlainUser user;
        reader.lock(folder_.path());
        reader.lock(path_);
    }
    StoreChange change(path_, WhenMissing::Refuse, std::chrono::milliseconds(0));
    {
        const PlainUser user;
        reader.lock(folder_ / ".kvx2800t-store.lock");
    }
    EXPECT_EQ(reader.count(), 2U);
    change.replaceBy("new");
    EXPECT_EQ(readFile(path_), "new");
}

TEST_F(StoreAccess, AllWhoMayWriteInTheFolderWaitForEachOther)
{
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod(path_.c_str(), 0644), 0);
    const auto change = [this] { StoreChange(path_, WhenMissing::Refuse, std::chrono::milliseconds(0)); };
    {
        const StoreChange other(path_, WhenMissing::Refuse);
        const PlainUser user;
        EXPECT_EQ(complaint(change), folder_.path().string() + " is locked by something else");
    }
    writeFile(folder_ / ".kvx2800t-store.lock", "");
    ASSERT_EQ(::chmod((folder_ / ".kvx2800t-store.lock").c_str(), 0222), 0);
    const PlainUser user;
    EXPECT_EQ(complaint(change), "");
}

TEST_F(StoreAccess, TheOwnerOfTheFolderTakesOverALockThatTheSuperuserHasLeft)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give files away";
    const std::string lock = folder_ / ".kvx2800t-store.lock";
    ASSERT_EQ(::chown(folder_.path().c_str(), kPlainUser, kPlainUser), 0);
    ASSERT_EQ(::chown(path_.c_str(), kPlainUser, kPlainUser), 0);
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
    {
        const StoreChange killed(path_, WhenMissing::Refuse);
        fs::create_hard_link(lock, folder_ / "kept");
    }
    fs::rename(folder_ / "kept", lock);
    {
        const PlainUser user;
        EXPECT_EQ(complaint([this] { replace("new"); }), "");
    }
    EXPECT_EQ(readFile(path_), "new");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, SaysWhatLockCannotBeOpened)
{
    const std::string lock = folder_ / ".kvx2800t-store.lock";
    const auto change = [this] { StoreChange(path_, WhenMissing::Refuse, std::chrono::milliseconds(0)); };
    writeFile(lock, "");
    ASSERT_EQ(::chmod(lock.c_str(), 0), 0);
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod(path_.c_str(), 0644), 0);
    {
        const PlainUser user;
        EXPECT_EQ(complaint(change), "cannot open " + lock + ": Permission denied");
    }
    fs::remove(lock);
    fs::create_directory(lock);
    EXPECT_EQ(complaint(change), "cannot open " + lock + ": Is a directory");
}

TEST_F(StoreAccess, ALinkInPlaceOfTheLockIsNotFollowed)
{
    const std::string lock = folder_ / ".kvx2800t-store.lock";
    fs::create_symlink("elsewhere", lock);
    EXPECT_EQ(complaint([this] { StoreChange(path_, WhenMissing::Refuse, std::chrono::milliseconds(0)); }),
              "cannot open " + lock + ": Too many levels of symbolic links");
    EXPECT_FALSE(fs::exists(folder_ / "elsewhere"));
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
