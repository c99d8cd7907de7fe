#include "tools/store/store_access.h"

#include "platform/common/windows_handle.h"
#include "platform/common/windows_text.h"
#include "platform/config_server/store_file.h"
#include "tools/store/remedies.h"
#include "tools/store/store_error.h"

#include <aclapi.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <random>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace store_tool
{
namespace
{

using platform::Handle;
using platform::kShareAll;
using platform::open;
using platform::systemPath;
using platform::utf8Text;

constexpr std::chrono::milliseconds kPause{10};

struct KnownError
{
    DWORD code;
    std::errc meaning;
};

/// What happens often, in the words of every host.
constexpr std::array kKnownErrors{
    KnownError{ERROR_FILE_NOT_FOUND, std::errc::no_such_file_or_directory},
    KnownError{ERROR_PATH_NOT_FOUND, std::errc::no_such_file_or_directory},
    KnownError{ERROR_ACCESS_DENIED, std::errc::permission_denied},
    KnownError{ERROR_FILE_EXISTS, std::errc::file_exists},
    KnownError{ERROR_ALREADY_EXISTS, std::errc::file_exists},
    KnownError{ERROR_DISK_FULL, std::errc::no_space_on_device},
};

/// The system's own words for an error, in the user's language and without a full stop.
std::string systemMessage(DWORD error)
{
    std::array<wchar_t, 512> text{};
    constexpr DWORD kSource =
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    const DWORD size =
        FormatMessageW(kSource, nullptr, error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::wstring_view message(text.data(), size);
    while (message.ends_with(L' ') || message.ends_with(L'.'))
        message.remove_suffix(1);
    return message.empty() ? "error " + std::to_string(error) : utf8Text(message);
}

std::string messageOf(DWORD error)
{
    const auto* const known = std::ranges::find(kKnownErrors, error, &KnownError::code);
    return known == kKnownErrors.end() ? systemMessage(error) : std::make_error_code(known->meaning).message();
}

[[noreturn]] void fail(const std::string& what, DWORD error)
{
    throw StoreError(what + ": " + messageOf(error));
}

[[noreturn]] void failToRead(const std::string& path, DWORD error)
{
    throw StoreError("cannot read " + path + ": " + messageOf(error),
                     error == ERROR_ACCESS_DENIED ? remedies::kForbidden : "");
}

/// Who may do what with a file.
class Rights
{
public:
    Rights() = default;

    explicit Rights(HANDLE file)
    {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        status_ = GetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list_, nullptr,
                                  &descriptor);
        descriptor_.reset(descriptor);
    }

    /// Rights that the folder gives are given by the folder again, unless the file has none of these.
    DWORD giveTo(HANDLE file) const
    {
        SECURITY_DESCRIPTOR_CONTROL control = 0;
        DWORD revision = 0;
        if (status_ != ERROR_SUCCESS)
            return status_;
        if (GetSecurityDescriptorControl(descriptor_.get(), &control, &revision) == 0)
            return GetLastError();
        const bool isProtected = (control & SE_DACL_PROTECTED) != 0;
        const SECURITY_INFORMATION inheritance =
            isProtected ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION;
        return SetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inheritance, nullptr, nullptr, list_,
                               nullptr);
    }

private:
    PACL list_ = nullptr; ///< in the descriptor
    platform::LocalMemory<void> descriptor_;
    DWORD status_ = ERROR_SUCCESS;
};

struct FileContent
{
    std::string text;
    BY_HANDLE_FILE_INFORMATION status{};
    Rights rights;
};

bool isFolder(const std::wstring& path)
{
    // Only with its separator is "C:" the folder and not the disk.
    const DWORD attributes = GetFileAttributesW((path + L'\\').c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// Up to one byte more than a store may have, so that a longer file is seen.
std::string readUpToLimit(HANDLE file, const std::string& path)
{
    std::string text;
    std::vector<char> chunk(65536);
    while (text.size() <= config_server::kLargestFile) {
        DWORD count = 0;
        if (ReadFile(file, chunk.data(), static_cast<DWORD>(chunk.size()), &count, nullptr) == 0)
            failToRead(path, GetLastError());
        if (count == 0)
            return text;
        text.append(chunk.data(), count);
    }
    throw StoreError(path + " is larger than " + std::to_string(config_server::kLargestFile) + " bytes",
                     remedies::kTooLarge);
}

/// Nothing when there is no file.
std::optional<FileContent> readIfThere(const std::string& path)
{
    // Backup semantics open folders as well, which are told from files below.
    const Handle file = open(systemPath(path), {GENERIC_READ, kShareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS});
    const DWORD error = file == nullptr ? GetLastError() : DWORD{ERROR_SUCCESS};
    if (error == ERROR_FILE_NOT_FOUND)
        return std::nullopt;
    if (file == nullptr)
        failToRead(path, error);
    FileContent content;
    const bool isDiskFile = GetFileType(file.get()) == FILE_TYPE_DISK;
    if (isDiskFile && GetFileInformationByHandle(file.get(), &content.status) == 0)
        failToRead(path, GetLastError());
    if (!isDiskFile || (content.status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw StoreError(path + " is not a file", remedies::kNoFile);
    content.rights = Rights(file.get());
    content.text = readUpToLimit(file.get(), path);
    return content;
}

/// What the last part of a link's path leads to.
std::string targetOf(const std::string& path)
{
    const Handle file = open(systemPath(path), {0, kShareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS});
    const DWORD error = file == nullptr ? GetLastError() : DWORD{ERROR_SUCCESS};
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
        throw StoreError(path + " is a link to a missing file");
    if (file == nullptr)
        failToRead(path, error);
    std::wstring target(32768, L'\0');
    const DWORD size =
        GetFinalPathNameByHandleW(file.get(), target.data(), static_cast<DWORD>(target.size()), FILE_NAME_NORMALIZED);
    if (size == 0 || size >= target.size())
        failToRead(path, GetLastError());
    target.resize(size);
    return utf8Text(target);
}

/// The path without a link at its end.
std::string resolved(const std::string& path)
{
    const std::wstring place = systemPath(path);
    if (place.empty())
        failToRead(path, ERROR_INVALID_NAME);
    const DWORD attributes = GetFileAttributesW(place.c_str());
    const bool isLink = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    return isLink ? targetOf(path) : path;
}

/// The folder of a path with at least one separator.
std::wstring folderOf(const std::wstring& systemPath)
{
    return systemPath.substr(0, systemPath.find_last_of(L'\\'));
}

/// The path without the mark that lets it have any length.
std::string shown(std::wstring_view systemPath)
{
    constexpr std::wstring_view kNetwork = LR"(\\?\UNC\)";
    constexpr std::wstring_view kLocal = LR"(\\?\)";
    if (systemPath.starts_with(kNetwork))
        return R"(\\)" + utf8Text(systemPath.substr(kNetwork.size()));
    return utf8Text(systemPath.starts_with(kLocal) ? systemPath.substr(kLocal.size()) : systemPath);
}

/// Folders made for a file that is still to come; gone again, where they are empty, unless they are kept.
class NewFolders
{
public:
    NewFolders() = default;
    ~NewFolders()
    {
        for (bool isEmpty = true; isEmpty && !made_.empty(); made_.pop_back()) {
            path_.resize(made_.back());
            isEmpty = RemoveDirectoryW(path_.c_str()) != 0;
        }
    }

    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;

    /// Makes the folder and those above it that are missing.
    void make(const std::wstring& folder)
    {
        path_ = folder;
        std::size_t size = folder.size();
        std::vector<std::size_t> below; // A path can have more folders than a stack has room for calls.
        DWORD error = makeOne(size);
        while (error == ERROR_PATH_NOT_FOUND && sizeAbove(size) < size) {
            below.push_back(size);
            size = sizeAbove(size);
            error = makeOne(size);
        }
        for (; error == ERROR_SUCCESS && !below.empty(); below.pop_back()) {
            size = below.back();
            error = makeOne(size);
        }
        if (error != ERROR_SUCCESS)
            fail("cannot create " + shown(folder.substr(0, size)), error);
    }

    void keep() { made_.clear(); }

private:
    /// Success when this part of the path is a folder now.
    DWORD makeOne(std::size_t size)
    {
        const std::wstring folder = path_.substr(0, size);
        if (isFolder(folder))
            return ERROR_SUCCESS;
        if (CreateDirectoryW(folder.c_str(), nullptr) == 0) {
            const DWORD error = GetLastError();
            // Something else may have made it by now.
            return isFolder(folder) ? DWORD{ERROR_SUCCESS} : error;
        }
        made_.push_back(size);
        return ERROR_SUCCESS;
    }

    /// Of the folder that has the last part of this much of the path; no less when there is none.
    std::size_t sizeAbove(std::size_t size) const { return std::min(size, path_.find_last_of(L'\\', size - 1)); }

    std::wstring path_;
    std::vector<std::size_t> made_; ///< how much of the path names them, from the highest
};

/// True for what something else that has the file open, or is about to delete it, causes.
bool isInUse(DWORD error, const std::wstring& path)
{
    if (error == ERROR_SHARING_VIOLATION)
        return true;
    // A file that goes with its last handle refuses everybody until then.
    return error == ERROR_ACCESS_DENIED && GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES &&
           GetLastError() == ERROR_ACCESS_DENIED;
}

/// A file that nobody else can open while it is open, and that goes when it is closed, be it by the end of the program.
Handle lockedFolder(const std::wstring& folder, std::chrono::milliseconds longestWait)
{
    const std::wstring path = folder + L"\\.kvx2800t-store.lock";
    const auto end = std::chrono::steady_clock::now() + longestWait;
    // The file may go between a refusal and the look at it.
    constexpr int kMostRefusals = 3;
    int refusals = 0;
    // Of a link that somebody has put there, the link itself: what it leads to is not for us to delete.
    constexpr DWORD kFlags = FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;
    while (true) {
        Handle file = open(path, {GENERIC_WRITE, 0, OPEN_ALWAYS, kFlags});
        const DWORD error = GetLastError();
        if (file != nullptr)
            return file;
        refusals = isInUse(error, path) ? 0 : refusals + 1;
        if (refusals == kMostRefusals)
            fail("cannot create a file in " + shown(folder), error);
        if (std::chrono::steady_clock::now() >= end)
            throw StoreError(shown(folder) + " is locked by something else");
        std::this_thread::sleep_for(kPause);
    }
}

/// Long enough that nobody gives such a name to a file of their own, which would be removed.
constexpr std::wstring_view kTemporaryName = L".kvx2800t-store.unfinished-change.";

bool isTemporaryName(std::wstring_view name)
{
    return name.starts_with(kTemporaryName) && name.size() > kTemporaryName.size() &&
           name.find_first_not_of(L"0123456789", kTemporaryName.size()) == std::wstring_view::npos;
}

/// Removes a file that no program has open.
void removeLeftFile(const std::wstring& path)
{
    constexpr DWORD kFlags = FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;
    const Handle file = open(path, {DELETE, 0, OPEN_EXISTING, kFlags});
}

/// Removes what killed changes have left. Only for the owner of the folder's lock: nobody else is writing now.
void removeLeftFiles(const std::wstring& folder)
{
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((folder + L'\\' + std::wstring(kTemporaryName) + L'*').c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return;
    do {
        if (isTemporaryName(found.cFileName) && (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            removeLeftFile(folder + L'\\' + found.cFileName);
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
}

bool isSame(const BY_HANDLE_FILE_INFORMATION& one, const BY_HANDLE_FILE_INFORMATION& other)
{
    return one.dwVolumeSerialNumber == other.dwVolumeSerialNumber && one.nFileIndexHigh == other.nFileIndexHigh &&
           one.nFileIndexLow == other.nFileIndexLow;
}

/// What a move does when there is a file already.
enum class WhenTaken
{
    Refuse,
    Replace
};

/// A file beside the store; removed unless it has taken the store's place.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::wstring& folder) : file_(openIn(folder)) {}
    ~TemporaryFile()
    {
        // By the handle, which has the right to delete even where the rights taken over give it to nobody.
        FILE_DISPOSITION_INFO deletion{TRUE};
        if (file_ != nullptr)
            SetFileInformationByHandle(file_.get(), FileDispositionInfo, &deletion, sizeof deletion);
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view text)
    {
        while (!text.empty()) {
            constexpr std::size_t kMost = std::size_t{1} << 20;
            DWORD count = 0;
            const auto part = static_cast<DWORD>(std::min(text.size(), kMost));
            if (WriteFile(file_.get(), text.data(), part, &count, nullptr) == 0)
                failToWrite(GetLastError());
            text.remove_prefix(count);
        }
    }

    /// The rights and the marks (hidden, system and the like) of another file.
    void takeRightsOf(const FileContent& other)
    {
        if (const DWORD error = other.rights.giveTo(file_.get()); error != ERROR_SUCCESS)
            failToWrite(error);
        constexpr DWORD kMarks =
            FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
        FILE_BASIC_INFO marks{}; // times of zero stay as they are
        const DWORD kept = other.status.dwFileAttributes & kMarks;
        marks.FileAttributes = kept == 0 ? DWORD{FILE_ATTRIBUTE_NORMAL} : kept;
        if (SetFileInformationByHandle(file_.get(), FileBasicInfo, &marks, sizeof marks) == 0)
            failToWrite(GetLastError());
    }

    /// Brings the bytes to the disk, so that a crash after the replacement finds them.
    void finish()
    {
        if (FlushFileBuffers(file_.get()) == 0)
            failToWrite(GetLastError());
    }

    /// Gives the file this place and closes it; the success or what GetLastError tells.
    DWORD moveTo(const std::wstring& place, WhenTaken whenTaken)
    {
        std::vector<std::byte> renaming = renamingTo(place, whenTaken);
        const auto size = static_cast<DWORD>(renaming.size());
        if (SetFileInformationByHandle(file_.get(), FileRenameInfo, renaming.data(), size) == 0)
            return GetLastError();
        file_.reset();
        return ERROR_SUCCESS;
    }

private:
    /// What FileRenameInfo takes.
    static std::vector<std::byte> renamingTo(const std::wstring& place, WhenTaken whenTaken)
    {
        const std::size_t bytes = place.size() * sizeof(wchar_t);
        std::vector<std::byte> renaming(sizeof(FILE_RENAME_INFO) + bytes); // has room for the terminator
        auto* const info = new (renaming.data()) FILE_RENAME_INFO{};
        info->ReplaceIfExists = whenTaken == WhenTaken::Replace ? TRUE : FALSE;
        info->FileNameLength = static_cast<DWORD>(bytes);
        std::memcpy(renaming.data() + offsetof(FILE_RENAME_INFO, FileName), place.data(), bytes);
        return renaming;
    }

    /// Tries names until one is free.
    Handle openIn(const std::wstring& folder)
    {
        constexpr DWORD kAccess = GENERIC_WRITE | WRITE_DAC | DELETE;
        std::random_device random;
        while (true) {
            path_ = folder + L'\\' + std::wstring(kTemporaryName) + std::to_wstring(random());
            // Readers that come while it takes the store's place are not kept out.
            Handle file = open(path_, {kAccess, FILE_SHARE_READ, CREATE_NEW, FILE_FLAG_WRITE_THROUGH});
            const DWORD error = GetLastError();
            if (file != nullptr)
                return file;
            if (error != ERROR_FILE_EXISTS)
                fail("cannot create a file in " + shown(folder), error);
        }
    }

    [[noreturn]] void failToWrite(DWORD error) const { fail("cannot write " + shown(path_), error); }

    std::wstring path_;
    Handle file_;
};

} // namespace

struct StoreChange::Host
{
    std::string path;
    NewFolders newFolders; // go after the lock, whose file is in them
    Handle lock;
    std::optional<FileContent> before;
    std::optional<std::string> text;

    std::wstring folder() const { return folderOf(systemPath(path)); }

    void requireWritable() const
    {
        if (before && (before->status.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0)
            fail("cannot replace " + path, ERROR_ACCESS_DENIED);
    }

    void requireUnchanged() const
    {
        const auto now = readIfThere(path);
        const bool unchanged = now && isSame(now->status, before->status) && now->text == *text;
        if (!unchanged)
            throw StoreError(path + " has been changed by something else; nothing is written");
    }

    void replace(TemporaryFile& file) const
    {
        requireUnchanged();
        if (const DWORD error = replaceOnceClosed(file); error != ERROR_SUCCESS)
            fail("cannot replace " + path, error);
    }

    void create(TemporaryFile& file) const
    {
        if (const DWORD error = file.moveTo(systemPath(path), WhenTaken::Refuse); error != ERROR_SUCCESS)
            fail("cannot create " + path, error);
    }

private:
    /// Gives readers, such as a virus scanner, a moment to close the file, which otherwise stays as it is.
    DWORD replaceOnceClosed(TemporaryFile& file) const
    {
        constexpr std::chrono::milliseconds kLongestReading{1000};
        const auto end = std::chrono::steady_clock::now() + kLongestReading;
        while (true) {
            const DWORD error = file.moveTo(systemPath(path), WhenTaken::Replace);
            const bool mayPass = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
            if (!mayPass || std::chrono::steady_clock::now() >= end)
                return error;
            std::this_thread::sleep_for(kPause);
        }
    }
};

std::string absolutePath(const std::string& path)
{
    const std::wstring place = systemPath(path);
    return place.empty() ? path : shown(place);
}

std::string readStoreFile(const std::string& path)
{
    auto content = readIfThere(path);
    if (!content)
        failToRead(path, ERROR_FILE_NOT_FOUND);
    return std::move(content->text);
}

StoreChange::StoreChange(const std::string& path, WhenMissing whenMissing, std::chrono::milliseconds longestWait)
    : host_(std::make_unique<Host>())
{
    host_->path = resolved(path);
    const std::wstring folder = host_->folder();
    if (whenMissing == WhenMissing::Create)
        host_->newFolders.make(folder);
    else if (!isFolder(folder))
        fail("cannot open " + shown(folder), ERROR_PATH_NOT_FOUND);
    host_->lock = lockedFolder(folder, longestWait);
    removeLeftFiles(folder);
    host_->before = readIfThere(host_->path);
    if (host_->before)
        host_->text = std::move(host_->before->text);
    else if (whenMissing == WhenMissing::Refuse)
        failToRead(path, ERROR_FILE_NOT_FOUND);
}

StoreChange::~StoreChange() = default;

const std::optional<std::string>& StoreChange::text() const
{
    return host_->text;
}

std::uintmax_t StoreChange::otherNames() const
{
    const DWORD names = host_->before ? host_->before->status.nNumberOfLinks : 0;
    return names > 1 ? names - 1 : 0;
}

void StoreChange::replaceBy(const std::string& text)
{
    host_->requireWritable();
    TemporaryFile file(host_->folder());
    file.write(text);
    if (host_->before)
        file.takeRightsOf(*host_->before);
    file.finish();
    if (host_->before)
        host_->replace(file);
    else
        host_->create(file);
    host_->newFolders.keep();
}

} // namespace store_tool
