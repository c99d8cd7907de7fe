#include "tests/support/environment.h"
#include "tests/support/processes/child_process.h"
#include "tests/support/store/store_tool_fixture.h"
#include "tests/support/store/store_tool_process.h"
#include "tests/torture/tally.h"
#include "tools/store/store_text.h"
#include "tools/store/tool.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace
{

using namespace kvxtest;
namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

constexpr int kKilled = 128 + SIGKILL;

/// The program within this process.
int runHere(const Arguments& arguments)
{
    std::vector<const char*> pointers{"kvx2800t-store"};
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    std::ostringstream out;
    std::ostringstream errors;
    return store_tool::runTool(static_cast<int>(pointers.size()), pointers.data(), out, errors);
}

Arguments onStore(const std::string& path, const Arguments& arguments)
{
    Arguments all{"--store", path};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

Arguments addition(const std::string& name)
{
    return {"add",
            name,
            "--resource",
            "TCPIP0::10.0.0.5::5025::SOCKET",
            "--logical",
            name + "Supply",
            "--virtual-range",
            "Rail=OutputChannel:1-3@2",
            "--set",
            "string:model=KVX2833T"};
}

/// A store that programs are tortured on, and what each edit makes of it when nothing happens.
class StoreToolTorture : public testing::Test
{
protected:
    void SetUp() override
    {
        writeFile(path_, exampleStore());
        writeFile(copy_, exampleStore());
    }

    std::string text() const { return readFile(path_); }

    std::string textAfter(const Arguments& edit) const
    {
        writeFile(copy_, text());
        EXPECT_EQ(runHere(onStore(copy_, edit)), 0) << edit.at(1);
        return readFile(copy_);
    }

    /// The n-th of a row of edits that all can be made one after the other, or again.
    static Arguments edit(int n)
    {
        const std::string name = "Rack" + std::to_string(n / 2);
        return n % 2 == 0 ? addition(name) : Arguments{"remove", name};
    }

    /// Makes an edit as the next one after a tortured one, which must find nothing in its way.
    void expectThatTheNextWorks(Tally& tally, const std::string& when) const
    {
        const std::string before = text();
        tally.expect(runHere(onStore(path_, addition("Next"))) == 0, "the next change fails " + when);
        tally.expect(folder_.count() == 1, "files are left " + when);
        tally.expect(runHere(onStore(path_, {"check"})) == 0, "check finds something " + when);
        writeFile(path_, before);
    }

    static bool isOneOf(const std::string& text, const std::string& one, const std::string& other)
    {
        return text == one || text == other;
    }

    TemporaryFolder folder_;
    TemporaryFolder copyFolder_;
    std::string path_ = folder_ / "store.xml";
    std::string copy_ = copyFolder_ / "store.xml";
};

/// Counts how a program has ended: in the way that its exit codes say, or not.
void countEnd(Tally& tally, const Outcome& outcome)
{
    const bool isLeak = outcome.errors.find("LeakSanitizer") != std::string::npos;
    tally.leaks += isLeak ? 1 : 0;
    tally.hangs += outcome.exitCode == kKilled ? 1 : 0;
    tally.crashes += !isLeak && outcome.exitCode != kKilled && outcome.exitCode > 2 ? 1 : 0;
}

/// The text that a program must leave: the new one when it says that it was done, otherwise the old one.
void countText(Tally& tally, const Outcome& outcome, bool isNew, bool isOld, const std::string& when)
{
    tally.expect(outcome.exitCode == 0 ? isNew : isOld, "exit code " + std::to_string(outcome.exitCode) +
                                                            " leaves another store " + when + ": " + outcome.errors);
    tally.expect(outcome.exitCode == 0 || !outcome.errors.empty(), "fails silently " + when);
}

std::uint64_t seed()
{
    const char* const given = std::getenv("KVX_TORTURE_SEED"); // NOLINT(concurrency-mt-unsafe): one thread
    return given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
}

/// Kills a program at a random moment of its life.
class RandomKiller
{
public:
    RandomKiller(std::string lock, std::chrono::microseconds life) : lock_(std::move(lock)), life_(life)
    {
        const auto start = seed();
        std::cout << "KVX_TORTURE_SEED=" << start << '\n';
        random_.seed(start);
    }

    /// Of two programs, one is killed anywhere and one while it makes its change.
    int kill(ChildProcess& program)
    {
        isLate_ = !isLate_;
        const auto end = std::chrono::steady_clock::now() + 2 * life_;
        while (isLate_ && !fs::exists(lock_) && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        wait(isLate_ ? life_ / 4 : life_);
        program.kill();
        return program.wait();
    }

private:
    void wait(std::chrono::microseconds most)
    {
        const std::chrono::microseconds pause(
            std::uniform_int_distribution<std::chrono::microseconds::rep>(0, most.count())(random_));
        const auto end = std::chrono::steady_clock::now() + pause;
        while (std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
    }

    std::string lock_;
    std::chrono::microseconds life_;
    std::mt19937_64 random_;
    bool isLate_ = false;
};

TEST_F(StoreToolTorture, KilledAnywhereItLeavesTheOldStoreOrTheNewOne)
{
    constexpr std::size_t kKills = 300;
    constexpr int kMostEdits = 1200; // On a machine whose speed changes, many programs end before they are killed.
    Tally tally("store tool: killed at random points");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(runStoreTool(onStore(path_, {"remove", "KVX2800T"})).exitCode, 0);
    const auto life = std::chrono::steady_clock::now() - start;
    RandomKiller killer(folder_ / ".kvx2800t-store.lock", std::chrono::duration_cast<std::chrono::microseconds>(life));
    int edits = 0;
    int changed = 0;
    int left = 0;
    for (; tally.injections < kKills && edits < kMostEdits; ++edits) {
        const std::string when = "after edit " + std::to_string(edits);
        const std::string before = text();
        const std::string after = textAfter(edit(edits));
        ChildProcess program(storeToolPath(), onStore(path_, edit(edits)));
        // A program that has ended before says nothing about kills.
        tally.injections += killer.kill(program) == kKilled ? 1 : 0;
        const std::string now = text();
        changed += now == after ? 1 : 0;
        left += folder_.count() > 1 ? 1 : 0;
        tally.expect(isOneOf(now, before, after), "neither the old store nor the new one " + when);
        expectThatTheNextWorks(tally, when);
        writeFile(path_, after);
    }
    EXPECT_GT(tally.injections, 0U);
    std::cout << edits << " edits, " << changed << " stores changed, " << left << " with files beside them\n";
}

TEST_F(StoreToolTorture, WritersAtOnceLoseNoUpdate)
{
    constexpr int kWriters = 4;
    constexpr int kEdits = 15;
    Tally tally("store tool: four writers at once");
    std::vector<Outcome> outcomes(kWriters * kEdits);
    {
        std::vector<std::jthread> writers;
        for (int writer = 0; writer < kWriters; ++writer)
            writers.emplace_back([&, writer] {
                for (int n = writer * kEdits; n < (writer + 1) * kEdits; ++n)
                    outcomes[static_cast<std::size_t>(n)] =
                        runStoreTool(onStore(path_, addition("Rack" + std::to_string(n) + "x")));
            });
    }
    for (int n = 0; n < kWriters * kEdits; ++n) {
        const Outcome& outcome = outcomes[static_cast<std::size_t>(n)];
        ++tally.injections;
        countEnd(tally, outcome);
        tally.expect(outcome.exitCode == 0, outcome.errors);
        tally.expect(text().find("<Name>Rack" + std::to_string(n) + "x</Name>") != std::string::npos,
                     "an update is lost");
    }
    expectThatTheNextWorks(tally, "after four writers");
}

/// What a file may have at most, for programs that are started while it lives.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() { EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before_), 0); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_{};
};

TEST_F(StoreToolTorture, AFullDiskLeavesTheOldStore)
{
    Tally tally("store tool: disk full");
    const std::string before = text();
    const std::string after = textAfter(edit(0));
    const std::size_t step = after.size() / 40;
    for (std::size_t bytes = step; bytes < after.size() + 2 * step; bytes += step) {
        const std::string when = "with room for " + std::to_string(bytes) + " bytes";
        Outcome outcome{};
        {
            const FileSizeLimit limit(bytes);
            outcome = runStoreTool(onStore(path_, edit(0)));
        }
        ++tally.injections;
        countEnd(tally, outcome);
        countText(tally, outcome, text() == after, text() == before, when);
        tally.expect((outcome.exitCode == 0) == (bytes >= after.size()), "unexpected exit code " + when);
        tally.expect(folder_.count() == 1, "files are left " + when);
        writeFile(path_, before);
    }
}

#ifdef KVX_FAILING_CALLS

struct FailingCall
{
    const char* name;
    const char* error;
};

const std::array kErrors{FailingCall{"EINTR", "4"},        FailingCall{"EIO", "5"},
                         FailingCall{"EAGAIN", "11"},      FailingCall{"ENOSPC", "28"},
                         FailingCall{"ECONNRESET", "104"}, FailingCall{"short transfers", "short"}};

class StoreToolCalls : public StoreToolTorture, public testing::WithParamInterface<FailingCall>
{
protected:
    struct Failure
    {
        unsigned long calls = 0;
        std::string name;
    };

    /// Runs an edit whose n-th system call fails.
    Outcome runWith(unsigned long call, const std::string& path, const Arguments& edit)
    {
        const EnvironmentVariable library("LD_PRELOAD", KVX_FAILING_CALLS);
        const EnvironmentVariable number("KVX_FAIL_CALL", std::to_string(call).c_str());
        const EnvironmentVariable error("KVX_FAIL_ERROR", GetParam().error);
        const EnvironmentVariable report("KVX_FAIL_REPORT", report_.c_str());
        return runStoreTool(onStore(path, edit));
    }

    Failure failure() const
    {
        Failure failure;
        std::istringstream(readFile(report_)) >> failure.calls >> failure.name;
        return failure;
    }

    /// Lets each call of an edit fail once.
    void torture(Tally& tally, const Arguments& edit)
    {
        const std::string before = text();
        const std::string after = textAfter(edit);
        bool isOver = false;
        for (unsigned long call = 1; !isOver; ++call) {
            const Outcome outcome = runWith(call, path_, edit);
            const Failure failed = failure();
            isOver = failed.name == "none";
            const std::string when = "when call " + std::to_string(call) + " fails, " + failed.name;
            tally.injections += isOver ? 0 : 1;
            countEnd(tally, outcome);
            countText(tally, outcome, text() == after, text() == before, when);
            expectThatTheNextWorks(tally, when);
            writeFile(path_, before);
        }
    }

    /// The same where the store and its folder are made.
    void tortureCreation(Tally& tally)
    {
        const std::string path = folder_ / "made/store.xml";
        bool isOver = false;
        for (unsigned long call = 1; !isOver; ++call) {
            const Outcome outcome = runWith(call, path, {"add", "Rack", "--resource", "x", "--create"});
            const Failure failed = failure();
            isOver = failed.name == "none";
            const std::string when = "when call " + std::to_string(call) + " of a creation fails, " + failed.name;
            tally.injections += isOver ? 0 : 1;
            countEnd(tally, outcome);
            countText(tally, outcome, fs::exists(path), !fs::exists(path), when);
            tally.expect(runHere(onStore(path, {"add", "Next", "--resource", "y", "--create"})) == 0,
                         "the next change fails " + when);
            tally.expect(std::distance(fs::directory_iterator(folder_ / "made"), {}) == 1, "files are left " + when);
            tally.expect(runHere(onStore(path, {"check"})) == 0, "check finds something " + when);
            fs::remove_all(folder_ / "made");
        }
    }

    TemporaryFolder reportFolder_;
    std::string report_ = reportFolder_ / "report";
};

TEST_P(StoreToolCalls, EachMayFailOnce)
{
    Tally tally(std::string("store tool: n-th system call, ") + GetParam().name);
    torture(tally, edit(0));
    fs::remove(path_);
    tortureCreation(tally);
}

INSTANTIATE_TEST_SUITE_P(Errors, StoreToolCalls, testing::ValuesIn(kErrors));

#endif

} // namespace
