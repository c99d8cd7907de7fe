#include "tools/visatrace/trace_file.h"

#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace visatrace
{
namespace
{

using Clock = std::chrono::steady_clock;

const Clock::time_point kLoaded = Clock::now();

/// Nothing here is destroyed: programs call VISA while they end.
class TraceFile
{
public:
    TraceFile()
    {
        const char* const name = std::getenv("KVX_VISATRACE_FILE");
        if (name == nullptr || *name == '\0')
            return;
        std::string path(name);
        // The program may go to another folder.
        if (char folder[PATH_MAX]; *name != '/' && getcwd(folder, sizeof(folder)) != nullptr)
            path = std::string(folder) + '/' + name;
        if (path.copy(path_, sizeof(path_) - 1) == path.size()) {
            descriptor_ = open();
            fstat(descriptor_, &identity_);
        }
    }

    void write(std::string_view line) const
    {
        if (*path_ == '\0')
            writeTo(STDERR_FILENO, line);
        else if (isStillOpen())
            writeTo(descriptor_, line);
        else if (const int descriptor = open(); descriptor >= 0) {
            writeTo(descriptor, line);
            close(descriptor);
        }
    }

private:
    int open() const { return ::open(path_, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0666); }

    /// Programs close descriptors that they do not know, and the number may then be another file's.
    bool isStillOpen() const
    {
        struct stat now;
        return fstat(descriptor_, &now) == 0 && now.st_dev == identity_.st_dev && now.st_ino == identity_.st_ino;
    }

    static void writeTo(int descriptor, std::string_view line)
    {
        while (::write(descriptor, line.data(), line.size()) < 0 && errno == EINTR) {
        }
    }

    char path_[PATH_MAX] = "";
    int descriptor_ = -1;
    struct stat identity_ = {};
};

const TraceFile kFile;

/// A pipe that nobody reads any more must not end the program.
class WithoutBrokenPipe
{
public:
    WithoutBrokenPipe()
    {
        sigemptyset(&signal_);
        sigaddset(&signal_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    }

    ~WithoutBrokenPipe()
    {
        constexpr timespec kAtOnce = {};
        if (!wasPending_)
            sigtimedwait(&signal_, nullptr, &kAtOnce);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

    WithoutBrokenPipe(const WithoutBrokenPipe&) = delete;
    WithoutBrokenPipe& operator=(const WithoutBrokenPipe&) = delete;

private:
    sigset_t signal_;
    sigset_t before_;
    bool wasPending_;
};

} // namespace

void writeLine(std::string_view line)
{
    const WithoutBrokenPipe withoutBrokenPipe;
    kFile.write(line);
}

std::uint64_t microsecondsSinceLoading()
{
    const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - kLoaded);
    return static_cast<std::uint64_t>(passed.count());
}

} // namespace visatrace
