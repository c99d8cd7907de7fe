#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace store_tool
{

/// The text of a store file. Throws StoreError when it cannot be read, is no file or is larger than a store may be.
std::string readStoreFile(const std::string& path);

/// The path from the root on, as drivers are told it.
std::string absolutePath(const std::string& path);

/// What a change does when there is no file.
enum class WhenMissing
{
    Refuse,
    Create
};

/// How long a change waits for another one before it gives up. One alone takes far less.
inline constexpr std::chrono::milliseconds kLongestWait{10'000};

/// A change of one store file, from reading it to replacing it. Where links lead to is what is read and replaced. While
/// it lives, other changes of files in the same folder wait, as far as the file system has locks; only those who may
/// write in the folder can make them wait. What killed changes have left there is removed.
class StoreChange
{
public:
    /// Reads the file. Throws StoreError when it cannot be read, is missing and not to be created, or stays locked by
    /// something else for as long as `longestWait`. Creating makes its folder, which is gone again when nothing is
    /// written.
    StoreChange(const std::string& path, WhenMissing whenMissing, std::chrono::milliseconds longestWait = kLongestWait);
    ~StoreChange();

    StoreChange(const StoreChange&) = delete;
    StoreChange& operator=(const StoreChange&) = delete;

    /// What the file has; nothing when it is missing.
    const std::optional<std::string>& text() const;

    /// How many other names (hard links) the file has. They keep the old text when the file is replaced.
    std::uintmax_t otherNames() const;

    /// Puts a new text in place of the file in one step, with the file's rights. Throws StoreError and leaves the file
    /// as it is when that fails or when something else has changed it since it was read.
    void replaceBy(const std::string& text);

private:
    struct Host;
    std::unique_ptr<Host> host_;
};

} // namespace store_tool
