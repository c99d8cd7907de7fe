#include "tests/support/processes/child_process.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX leaves it to the program

namespace kvxtest
{
namespace
{

/// From making the descriptors to marking them, no other thread may start a process: it would inherit them, and the
/// end of the output would not be seen.
std::mutex& spawnMutex()
{
    static std::mutex mutex;
    return mutex;
}

[[noreturn]] void fail(int error, const std::string& what)
{
    throw std::system_error(error, std::generic_category(), what);
}

class Descriptor
{
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return number_; }

    void close()
    {
        if (number_ >= 0)
            ::close(number_);
        number_ = -1;
    }

private:
    int number_;
};

struct CloseFile
{
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using TemporaryFile = std::unique_ptr<std::FILE, CloseFile>;

TemporaryFile makeTemporaryFile()
{
    TemporaryFile file(std::tmpfile());
    if (!file)
        fail(errno, "no temporary file");
    return file;
}

class SpawnActions
{
public:
    SpawnActions() { posix_spawn_file_actions_init(&actions_); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }

    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    void connect(int descriptor, int standardDescriptor)
    {
        posix_spawn_file_actions_adddup2(&actions_, descriptor, standardDescriptor);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// Without the signal masks and ignored signals that the test program may have inherited.
class SpawnAttributes
{
public:
    SpawnAttributes()
    {
        sigset_t none;
        sigemptyset(&none);
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGINT);
        sigaddset(&defaults, SIGTERM);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &defaults);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

void closeOnExec(int descriptor)
{
    if (::fcntl(descriptor, F_SETFD, FD_CLOEXEC) != 0)
        fail(errno, "cannot mark a descriptor");
}

struct Pipe
{
    Pipe() : Pipe(makeEnds()) {}

    Descriptor readEnd;
    Descriptor writeEnd;

private:
    explicit Pipe(const std::array<int, 2>& ends) : readEnd(ends[0]), writeEnd(ends[1])
    {
        for (const int end : ends)
            closeOnExec(end);
    }

    static std::array<int, 2> makeEnds()
    {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0)
            fail(errno, "no pipe");
        return ends;
    }
};

/// Whoever started this process may have left SIGCHLD ignored; the host would then forget how a process ended.
void keepExitCodes()
{
    static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
}

int exitCodeOf(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

struct ChildProcess::Host
{
    Pipe input;
    Pipe output;
    TemporaryFile errorFile = makeTemporaryFile();
    pid_t pid = -1;
    std::string unread;
    bool outputEnded = false;
    std::optional<int> exitCode;

    void signal(int number) const
    {
        if (!exitCode)
            ::kill(pid, number);
    }

    /// Whether the process has ended; collects it.
    bool collect(int flags)
    {
        int status = 0;
        if (exitCode)
            return true;
        const pid_t collected = ::waitpid(pid, &status, flags);
        if (collected == pid)
            exitCode = exitCodeOf(status);
        else if (collected < 0 && errno != EINTR)
            exitCode = kUnknownExitCode;
        return exitCode.has_value();
    }

    void readMore()
    {
        pollfd waiting{output.readEnd.number(), POLLIN, 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(std::chrono::milliseconds(kHangGuard).count()));
        if (ready == 0)
            throw std::runtime_error("a child process says nothing");
        std::array<char, 1024> chunk{};
        const auto count = ready < 0 ? -1 : ::read(output.readEnd.number(), chunk.data(), chunk.size());
        if (count > 0)
            unread.append(chunk.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            outputEnded = true;
    }
};

ChildProcess::ChildProcess(const std::string& path, const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (auto& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    const std::lock_guard<std::mutex> alone(spawnMutex());
    keepExitCodes();
    host_ = std::make_unique<Host>();
    const int errorDescriptor = ::fileno(host_->errorFile.get());
    closeOnExec(errorDescriptor);

    SpawnActions actions;
    actions.connect(host_->input.readEnd.number(), STDIN_FILENO);
    actions.connect(host_->output.writeEnd.number(), STDOUT_FILENO);
    actions.connect(errorDescriptor, STDERR_FILENO);
    const SpawnAttributes attributes;
    const int error =
        ::posix_spawn(&host_->pid, path.c_str(), actions.get(), attributes.get(), pointers.data(), environ);
    if (error != 0)
        fail(error, "cannot start " + path);
    host_->input.readEnd.close();
    host_->output.writeEnd.close();
}

ChildProcess::~ChildProcess()
{
    kill();
    while (!host_->collect(0)) {
    }
}

std::optional<std::string> ChildProcess::readLine()
{
    while (true) {
        const auto end = host_->unread.find('\n');
        if (end != std::string::npos) {
            auto line = host_->unread.substr(0, end);
            host_->unread.erase(0, end + 1);
            return line;
        }
        if (host_->outputEnded)
            return std::nullopt;
        host_->readMore();
    }
}

std::string ChildProcess::errorOutput() const
{
    std::string text;
    std::array<char, 1024> chunk{};
    const int descriptor = ::fileno(host_->errorFile.get());
    // Reading at an offset leaves the position alone that the child writes at.
    for (auto count = ::pread(descriptor, chunk.data(), chunk.size(), 0); count > 0;
         count = ::pread(descriptor, chunk.data(), chunk.size(), static_cast<off_t>(text.size())))
        text.append(chunk.data(), static_cast<std::size_t>(count));
    return text;
}

void ChildProcess::closeInput()
{
    host_->input.writeEnd.close();
}

bool ChildProcess::canInterrupt()
{
    return true;
}

void ChildProcess::interrupt()
{
    host_->signal(SIGINT);
}

void ChildProcess::terminate()
{
    host_->signal(SIGTERM);
}

void ChildProcess::kill()
{
    host_->signal(SIGKILL);
}

int ChildProcess::wait()
{
    const auto deadline = std::chrono::steady_clock::now() + kHangGuard;
    while (!host_->collect(WNOHANG)) {
        if (std::chrono::steady_clock::now() > deadline)
            kill();
        std::this_thread::sleep_for(kPollInterval);
    }
    return *host_->exitCode;
}

} // namespace kvxtest
