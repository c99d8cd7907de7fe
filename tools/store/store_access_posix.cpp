#include "tools/store/store_access.h"

#include "platform/config_server/store_file.h"
#include "tools/store/remedies.h"
#include "tools/store/store_error.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace store_tool
{
namespace
{

constexpr mode_t kRights = 07777;
constexpr mode_t kRightsOfNewFiles = 0666;

[[noreturn]] void fail(const std::string& what, int error)
{
    throw StoreError(what + ": " + std::generic_category().message(error));
}

[[noreturn]] void failToRead(const std::string& path, int error)
{
    throw StoreError("cannot read " + path + ": " + std::generic_category().message(error),
                     error == EACCES ? remedies::kForbidden : "");
}

/// Repeats a call that a signal has interrupted.
template <class Call>
auto uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

class Descriptor
{
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { close(); }

    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }

    int number() const { return number_; }

    /// @return false when the host tells only now that a write has failed
    bool close()
    {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0 || errno == EINTR;
    }

private:
    int number_;
};

struct FileContent
{
    std::string text;
    struct stat status;
};

/// Up to one byte more than a store may have, so that a longer file is seen.
std::string readUpToLimit(int descriptor, const std::string& path)
{
    std::string text;
    std::array<char, 65536> chunk{};
    while (text.size() <= config_server::kLargestFile) {
        const auto count = uninterrupted([&] { return ::read(descriptor, chunk.data(), chunk.size()); });
        if (count < 0)
            failToRead(path, errno);
        if (count == 0)
            return text;
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    throw StoreError(path + " is larger than " + std::to_string(config_server::kLargestFile) + " bytes",
                     remedies::kTooLarge);
}

/// Nothing when there is no file.
std::optional<FileContent> readIfThere(const std::string& path)
{
    // Without waiting, which a pipe would let us do for ever.
    const Descriptor file(
        uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    if (file.number() < 0 && errno == ENOENT)
        return std::nullopt;
    FileContent content{};
    if (file.number() < 0 || ::fstat(file.number(), &content.status) != 0)
        failToRead(path, errno);
    if (!S_ISREG(content.status.st_mode))
        throw StoreError(path + " is not a file", remedies::kNoFile);
    content.text = readUpToLimit(file.number(), path);
    return content;
}

/// The path without links. Of a missing file, its folder's with its name.
std::string resolved(const std::string& path)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path target = fs::canonical(path, error);
    if (!error)
        return target;
    if (error != std::errc::no_such_file_or_directory)
        failToRead(path, error.value());
    if (fs::is_symlink(fs::symlink_status(path, error)))
        throw StoreError(path + " is a link to a missing file");
    const fs::path absolute = fs::absolute(path);
    const fs::path folder = fs::canonical(absolute.parent_path(), error);
    if (error)
        fail("cannot open " + absolute.parent_path().string(), error.value());
    return folder / absolute.filename();
}

/// Folders made for a file that is still to come; gone again, where they are empty, unless they are kept.
class NewFolders
{
public:
    NewFolders() = default;
    ~NewFolders()
    {
        while (!made_.empty() && ::rmdir(made_.back().c_str()) == 0)
            made_.pop_back();
    }

    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;

    /// Makes what is missing on the way to the file.
    void makeFor(const std::string& path)
    {
        std::filesystem::path folder;
        for (const auto& step : std::filesystem::absolute(path).parent_path()) {
            folder /= step;
            make(folder);
        }
    }

    void keep() { made_.clear(); }

private:
    void make(const std::filesystem::path& folder)
    {
        std::error_code error;
        if (std::filesystem::is_directory(folder, error))
            return;
        if (std::filesystem::create_directory(folder, error))
            made_.push_back(folder);
        if (error)
            fail("cannot create " + folder.string(), error.value());
    }

    std::vector<std::filesystem::path> made_;
};

Descriptor openedFolder(const std::string& path)
{
    Descriptor folder(uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (folder.number() < 0)
        fail("cannot open " + path, errno);
    return folder;
}

bool isSame(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// A lock for all changes in a folder: a file there that is locked, since the stores themselves are replaced. It
/// belongs to the folder's owner and group as far as its maker may give it to them, and can be opened by those of them
/// who may write in the folder and by nobody else, so that readers cannot keep a change waiting. It is gone with the
/// lock; one that a killed program has left is taken over by who may open it.
class FolderLock
{
public:
    FolderLock() = default;
    ~FolderLock()
    {
        if (file_.number() >= 0)
            ::unlinkat(folder_, kName, 0);
    }

    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /// Waits for the lock of something else. Throws StoreError when that lasts, and at once for a file that cannot be
    /// opened: who holds it, or whether anybody does, is not to be seen. The folder stays open as long as the lock
    /// lives.
    void take(int folder, const std::string& path, std::chrono::milliseconds longestWait)
    {
        constexpr std::chrono::milliseconds kPause{10};
        const auto end = std::chrono::steady_clock::now() + longestWait;
        folder_ = folder;
        while (!tryToTake(path)) {
            if (std::chrono::steady_clock::now() >= end)
                throw StoreError(path + " is locked by something else");
            std::this_thread::sleep_for(kPause);
        }
    }

    /// Whether nothing else can be writing in the folder now. Some file systems have no locks; there the comparison
    /// before replacing has to do.
    bool isExclusive() const { return isExclusive_; }

    /// Throws StoreError when the file of the lock could not be made.
    void requireWritable(const std::string& path) const
    {
        if (error_ != 0)
            fail("cannot create a file in " + path, error_);
    }

private:
    static constexpr auto kName = ".kvx2800t-store.lock";

    static constexpr int kFlags = O_WRONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    static constexpr mode_t kRightsOfMaker = S_IWUSR;

    /// Whether there is nothing to be waited for.
    bool tryToTake(const std::string& path)
    {
        Descriptor file = openOrMake(path);
        if (file.number() < 0)
            return error_ != 0;
        isExclusive_ = uninterrupted([&] { return ::flock(file.number(), LOCK_EX | LOCK_NB); }) == 0;
        if ((!isExclusive_ && errno == EWOULDBLOCK) || !isInPlace(file))
            return false;
        file_ = std::move(file);
        return true;
    }

    /// Nothing for a file that somebody else has just made, and with an error where none can be made.
    Descriptor openOrMake(const std::string& path)
    {
        Descriptor file(uninterrupted([this] { return ::openat(folder_, kName, kFlags); }));
        if (file.number() >= 0)
            return file;
        if (errno != ENOENT)
            fail("cannot open " + path + '/' + kName, errno);
        file = makeAtOnce();
        return file.number() >= 0 ? std::move(file) : makeInSteps();
    }

    /// A file that has its rights before it has its name: nobody finds one that only its maker may open, however early
    /// that is killed. Nothing where the host has no files without a name.
    Descriptor makeAtOnce() const
    {
        Descriptor file(
            uninterrupted([this] { return ::openat(folder_, ".", O_WRONLY | O_CLOEXEC | O_TMPFILE, kRightsOfMaker); }));
        if (file.number() < 0)
            return file;
        letWritersOpen(file);
        const std::string nameless = "/proc/self/fd/" + std::to_string(file.number());
        return ::linkat(AT_FDCWD, nameless.c_str(), folder_, kName, AT_SYMLINK_FOLLOW) == 0 ? std::move(file)
                                                                                            : Descriptor();
    }

    Descriptor makeInSteps()
    {
        Descriptor file(
            uninterrupted([this] { return ::openat(folder_, kName, kFlags | O_CREAT | O_EXCL, kRightsOfMaker); }));
        if (file.number() >= 0)
            letWritersOpen(file);
        else if (errno != EEXIST)
            error_ = errno;
        return file;
    }

    /// Those who may write in the folder may open the file.
    void letWritersOpen(const Descriptor& file) const
    {
        constexpr mode_t kWriters = S_IWUSR | S_IWGRP | S_IWOTH;
        struct stat status
        {
        };
        if (::fstat(folder_, &status) != 0)
            return;
        mode_t rights = (status.st_mode & kWriters) | kRightsOfMaker;
        if (::fchown(file.number(), status.st_uid, status.st_gid) != 0 &&
            ::fchown(file.number(), static_cast<uid_t>(-1), status.st_gid) != 0)
            rights &= ~mode_t{S_IWGRP};
        static_cast<void>(::fchmod(file.number(), rights));
    }

    /// Whether who had it before has left it in its place.
    bool isInPlace(const Descriptor& file) const
    {
        struct stat mine
        {
        };
        struct stat there
        {
        };
        return ::fstat(file.number(), &mine) == 0 && ::fstatat(folder_, kName, &there, AT_SYMLINK_NOFOLLOW) == 0 &&
               isSame(mine, there);
    }

    int folder_ = -1;
    Descriptor file_;
    bool isExclusive_ = false;
    int error_ = 0;
};

/// Long enough that nobody gives such a name to a file of their own, which would be removed.
constexpr std::string_view kTemporaryName = ".kvx2800t-store.unfinished-change.";
constexpr std::string_view kTemporaryPattern = "XXXXXX";

/// Whether a file is called what mkstemp makes of the pattern.
bool isTemporaryName(std::string_view name)
{
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    return name.starts_with(kTemporaryName) && name.size() == kTemporaryName.size() + kTemporaryPattern.size() &&
           name.find_first_not_of(kLetters, kTemporaryName.size()) == std::string_view::npos;
}

/// Removes what killed changes have left. Only for the owner of the folder's lock: nobody else is writing now.
void removeLeftFiles(const std::string& folder)
{
    namespace fs = std::filesystem;
    std::error_code error;
    std::vector<fs::path> left;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (isTemporaryName(entry->path().filename().string()) && fs::is_regular_file(entry->symlink_status(error)))
            left.push_back(entry->path());
    }
    for (const fs::path& path : left)
        ::unlink(path.c_str());
}

mode_t rightsOfNewFiles()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return kRightsOfNewFiles & ~mask;
}

/// A file beside the store; removed unless it has taken the store's place.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& folder)
        : path_(folder + '/' + std::string(kTemporaryName) + std::string(kTemporaryPattern)), file_(open(path_))
    {
    }
    ~TemporaryFile() { ::unlink(path_.c_str()); }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view text)
    {
        while (!text.empty()) {
            const auto count = uninterrupted([&] { return ::write(file_.number(), text.data(), text.size()); });
            if (count < 0)
                fail("cannot write " + path_, errno);
            text.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    /// Owner and group as far as this process may give them away; they come first, as they can take rights away. Of
    /// another owner or group, rights that were meant for the former one are left out.
    void takeRightsOf(const struct stat& status)
    {
        if (::fchown(file_.number(), status.st_uid, status.st_gid) == 0)
            takeRights(status.st_mode & kRights);
        else if (::fchown(file_.number(), static_cast<uid_t>(-1), status.st_gid) == 0)
            takeRights(status.st_mode & kRights & ~mode_t{S_ISUID});
        else
            takeRights(status.st_mode & kRights & ~mode_t{S_ISUID | S_ISGID | S_IRWXG});
    }

    void takeRights(mode_t rights)
    {
        if (::fchmod(file_.number(), rights) != 0)
            fail("cannot write " + path_, errno);
    }

    /// Brings the bytes to the disk, so that a crash after the replacement finds them.
    void finish()
    {
        if (uninterrupted([this] { return ::fsync(file_.number()); }) != 0 || !file_.close())
            fail("cannot write " + path_, errno);
    }

    const std::string& path() const { return path_; }

private:
    static int open(std::string& path)
    {
        const int number = ::mkstemp(path.data());
        if (number < 0)
            fail("cannot create a file in " + std::filesystem::path(path).parent_path().string(), errno);
        return number;
    }

    std::string path_;
    Descriptor file_;
};

} // namespace

struct StoreChange::Host
{
    std::string path;
    Descriptor folder;
    NewFolders newFolders; // go after the lock, whose file is in them
    FolderLock lock;
    std::optional<FileContent> before;
    std::optional<std::string> text;

    std::string folderPath() const { return std::filesystem::path(path).parent_path(); }

    void requireUnchanged() const
    {
        const auto now = readIfThere(path);
        const bool unchanged = now && isSame(now->status, before->status) && now->text == *text;
        if (!unchanged)
            throw StoreError(path + " has been changed by something else; nothing is written");
    }

    void replace(const TemporaryFile& file) const
    {
        requireUnchanged();
        if (::rename(file.path().c_str(), path.c_str()) != 0)
            fail("cannot replace " + path, errno);
    }

    /// A link, unlike a renaming, never takes the place of a file.
    void create(const TemporaryFile& file) const
    {
        if (::link(file.path().c_str(), path.c_str()) != 0)
            fail("cannot create " + path, errno);
    }
};

std::string absolutePath(const std::string& path)
{
    std::error_code error;
    const std::string absolute = std::filesystem::absolute(path, error).string();
    return error ? path : absolute;
}

std::string readStoreFile(const std::string& path)
{
    auto content = readIfThere(path);
    if (!content)
        failToRead(path, ENOENT);
    return std::move(content->text);
}

StoreChange::StoreChange(const std::string& path, WhenMissing whenMissing, std::chrono::milliseconds longestWait)
    : host_(std::make_unique<Host>())
{
    if (whenMissing == WhenMissing::Create)
        host_->newFolders.makeFor(path);
    host_->path = resolved(path);
    host_->folder = openedFolder(host_->folderPath());
    host_->lock.take(host_->folder.number(), host_->folderPath(), longestWait);
    if (host_->lock.isExclusive())
        removeLeftFiles(host_->folderPath());
    host_->before = readIfThere(host_->path);
    if (host_->before)
        host_->text = std::move(host_->before->text);
    else if (whenMissing == WhenMissing::Refuse)
        failToRead(path, ENOENT);
}

StoreChange::~StoreChange() = default;

const std::optional<std::string>& StoreChange::text() const
{
    return host_->text;
}

std::uintmax_t StoreChange::otherNames() const
{
    const auto names = host_->before ? host_->before->status.st_nlink : 0;
    return names > 1 ? names - 1 : 0;
}

void StoreChange::replaceBy(const std::string& text)
{
    host_->lock.requireWritable(host_->folderPath());
    TemporaryFile file(host_->folderPath());
    file.write(text);
    if (host_->before)
        file.takeRightsOf(host_->before->status);
    else
        file.takeRights(rightsOfNewFiles());
    file.finish();
    if (host_->before)
        host_->replace(file);
    else
        host_->create(file);
    host_->newFolders.keep();
    // The change is made; whether its entry is on the disk already is not for the caller to mend.
    static_cast<void>(::fsync(host_->folder.number()));
}

} // namespace store_tool
