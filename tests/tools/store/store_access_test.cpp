#include "platform/config_server/store_file.h"
#include "tests/support/store/store_access_fixture.h"
#include "tests/support/utf8_path.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace
{

using namespace kvxtest;
using namespace store_tool;
namespace fs = std::filesystem;

TEST_F(StoreAccess, ReplacesAFileAndLeavesNothingBesideIt)
{
    {
        StoreChange change(path_, WhenMissing::Refuse);
        EXPECT_EQ(change.text(), "old");
        change.replaceBy("new");
    }
    EXPECT_EQ(readFile(fromUtf8(path_)), "new");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, NeverWritesIntoTheFileItself)
{
    const std::string reader = folder_ / "reader";
    fs::create_hard_link(fromUtf8(path_), fromUtf8(reader));
    replace("new");
    EXPECT_EQ(readFile(fromUtf8(reader)), "old");
}

TEST_F(StoreAccess, CountsOtherNamesOfTheFile)
{
    EXPECT_EQ(StoreChange(path_, WhenMissing::Refuse).otherNames(), 0U);
    EXPECT_EQ(StoreChange(folder_ / "new.xml", WhenMissing::Create).otherNames(), 0U);
    fs::create_hard_link(fromUtf8(path_), fromUtf8(folder_ / "one"));
    fs::create_hard_link(fromUtf8(path_), fromUtf8(folder_ / "two"));
    EXPECT_EQ(StoreChange(path_, WhenMissing::Refuse).otherNames(), 2U);
}

TEST_F(StoreAccess, RefusesWhatIsNoFile)
{
    const std::string folder = toUtf8(folder_.path());
    EXPECT_EQ(complaint([&] { readStoreFile(folder); }), folder + " is not a file");
    EXPECT_EQ(complaint([&] { StoreChange(folder, WhenMissing::Refuse); }), folder + " is not a file");
}

TEST_F(StoreAccess, SaysWhatIsMissing)
{
    const std::string missing = "cannot read " + (folder_ / "none.xml") + ": No such file or directory";
    EXPECT_EQ(complaint([&] { StoreChange(folder_ / "none.xml", WhenMissing::Refuse); }), missing);
    EXPECT_EQ(complaint([&] { readStoreFile(folder_ / "none.xml"); }), missing);
    EXPECT_EQ(complaint([&] { StoreChange(folder_ / "none/store.xml", WhenMissing::Refuse); }),
              "cannot open " + (folder_ / "none") + ": No such file or directory");
}

TEST_F(StoreAccess, RefusesWhatIsTooLarge)
{
    constexpr std::size_t kLargest = config_server::kLargestFile;
    fs::resize_file(fromUtf8(path_), kLargest);
    EXPECT_EQ(readStoreFile(path_).size(), kLargest);
    fs::resize_file(fromUtf8(path_), kLargest + 1);
    EXPECT_EQ(complaint([this] { readStoreFile(path_); }),
              path_ + " is larger than " + std::to_string(kLargest) + " bytes");
}

TEST_F(StoreAccess, CreatesAFileWithItsFolder)
{
    const std::string path = folder_ / "a/b/store.xml";
    {
        StoreChange change(path, WhenMissing::Create);
        EXPECT_EQ(change.text(), std::nullopt);
        change.replaceBy("new");
    }
    EXPECT_EQ(readFile(fromUtf8(path)), "new");
    EXPECT_EQ(folder_.count(), 2U);
}

TEST_F(StoreAccess, TakesPathsWithLettersOfAnyScript)
{
    const std::string path =
        folder_ /
        "\xCF\x84\xCF\x81\xCE\xBF\xCF\x86\xCE\xBF\xCE\xB4\xCE\xBF\xCF\x83\xCE\xAF\xCE\xB1/\xE9\x9B\xBB\xE6\xBA\x90.xml";
    StoreChange(path, WhenMissing::Create).replaceBy("old");
    {
        StoreChange change(path, WhenMissing::Refuse);
        change.replaceBy(*change.text() + " and new");
    }
    EXPECT_EQ(readStoreFile(path), "old and new");
    EXPECT_EQ(readFile(fromUtf8(path)), "old and new");
}

TEST_F(StoreAccess, LeavesOnlyFoldersThatWereThereWhenNothingIsWritten)
{
    const fs::path kept = fromUtf8(folder_ / "kept");
    fs::create_directory(kept);
    const std::string path = folder_ / "kept/a/b/store.xml";
    {
        const StoreChange change(path, WhenMissing::Create);
        EXPECT_EQ(change.text(), std::nullopt);
    }
    EXPECT_TRUE(fs::is_empty(kept));
    {
        const StoreChange change(path, WhenMissing::Create);
        writeFile(kept / "a/other", "other");
    }
    EXPECT_EQ(readFile(kept / "a/other"), "other");
    EXPECT_FALSE(fs::exists(kept / "a/b"));
}

TEST_F(StoreAccess, GivesUpOnALockThatSomethingElseKeeps)
{
    std::optional<StoreChange> other(std::in_place, path_, WhenMissing::Refuse);
    const auto change = [this] { StoreChange(path_, WhenMissing::Refuse, std::chrono::milliseconds(0)); };
    EXPECT_EQ(complaint(change), toUtf8(folder_.path()) + " is locked by something else");
    other.reset();
    EXPECT_EQ(complaint(change), "");
}

TEST_F(StoreAccess, NoticesChangesBySomethingElse)
{
    const std::string refusal = path_ + " has been changed by something else; nothing is written";
    const auto refused = [&](const auto& disturb) {
        writeFile(fromUtf8(path_), "old");
        StoreChange change(path_, WhenMissing::Refuse);
        disturb();
        return complaint([&change] { change.replaceBy("new"); });
    };
    EXPECT_EQ(refused([this] { writeFile(fromUtf8(path_), "other"); }), refusal);
    EXPECT_EQ(readFile(fromUtf8(path_)), "other");
    EXPECT_EQ(refused([this] { fs::remove(fromUtf8(path_)); }), refusal);
    EXPECT_FALSE(fs::exists(fromUtf8(path_)));
    EXPECT_EQ(refused([this] {
                  writeFile(fromUtf8(folder_ / "copy"), "old");
                  fs::rename(fromUtf8(folder_ / "copy"), fromUtf8(path_));
              }),
              refusal);
    EXPECT_EQ(readFile(fromUtf8(path_)), "old");
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(StoreAccess, NeverCreatesOverAFile)
{
    const std::string path = folder_ / "new.xml";
    {
        StoreChange change(path, WhenMissing::Create);
        writeFile(fromUtf8(path), "other");
        EXPECT_EQ(complaint([&change] { change.replaceBy("new"); }), "cannot create " + path + ": File exists");
    }
    EXPECT_EQ(readFile(fromUtf8(path)), "other");
    EXPECT_EQ(folder_.count(), 2U);
}

TEST_F(StoreAccess, ChangesAtTheSameTimeWaitForEachOther)
{
    constexpr std::size_t kChanges = 25;
    const auto grow = [this] {
        for (std::size_t i = 0; i < kChanges; ++i) {
            StoreChange change(path_, WhenMissing::Refuse);
            change.replaceBy(*change.text() + "x");
        }
    };
    std::thread one(grow);
    std::thread other(grow);
    one.join();
    other.join();
    EXPECT_EQ(readFile(fromUtf8(path_)), "old" + repeated("x", 2 * kChanges));
}

} // namespace
