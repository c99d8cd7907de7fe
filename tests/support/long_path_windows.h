#pragma once

#include "tests/support/utf8_path.h"

#include <windows.h>

#include <cstddef>
#include <filesystem>
#include <string>

namespace kvxtest
{

/// A file's path of more than MAX_PATH in a folder of the test's. The file and the folders that lead to it go at the
/// end, which they would not with std::filesystem.
class LongPath
{
public:
    /// Makes nothing yet.
    explicit LongPath(const std::filesystem::path& folder) : folder_(LR"(\\?\)" + folder.wstring()), path_(folder_)
    {
        for (const wchar_t letter : {L'a', L'b', L'c', L'd'})
            path_ += L'\\' + std::wstring(100, letter);
        path_ += L"\\store.xml";
    }
    ~LongPath()
    {
        DeleteFileW(path_.c_str());
        for (std::wstring path = above(path_); path != folder_; path = above(path))
            RemoveDirectoryW(path.c_str());
    }
    LongPath(const LongPath&) = delete;
    LongPath& operator=(const LongPath&) = delete;

    /// In UTF-8, as a user writes it.
    std::string text() const { return toUtf8(path_).substr(4); }

    /// With the mark that Windows wants for such a length.
    const std::wstring& marked() const { return path_; }

    /// Makes the folders; false on a failure.
    bool makeFolders() const
    {
        std::size_t end = folder_.size();
        bool isMade = true;
        while (isMade && (end = path_.find(L'\\', end + 1)) != std::wstring::npos)
            isMade = CreateDirectoryW(path_.substr(0, end).c_str(), nullptr) != 0;
        return isMade;
    }

private:
    static std::wstring above(const std::wstring& path) { return path.substr(0, path.find_last_of(L'\\')); }

    std::wstring folder_;
    std::wstring path_;
};

} // namespace kvxtest
