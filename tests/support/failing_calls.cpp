#include "tests/support/failing_calls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/random.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace
{

/// Which call fails, and how.
struct Plan
{
    std::atomic<bool> armed = false;
    std::atomic<bool> everyThread = false;
    std::atomic<pthread_t> thread{};
    std::atomic<unsigned long> failing = 0;
    std::atomic<int> error = 0;
    std::atomic<unsigned long> counted = 0;
    std::atomic<const char*> failed = nullptr;
};

constinit Plan plan;

void arm(unsigned long call, int error)
{
    plan.failing = call;
    plan.error = error;
    plan.counted = 0;
    plan.failed = nullptr;
    plan.armed = true;
}

/// Whether the call that begins now is the one.
bool isTurnOf(const char* name)
{
    if (++plan.counted != plan.failing)
        return false;
    plan.failed = name;
    return true;
}

bool counts()
{
    return plan.armed && (plan.everyThread || pthread_equal(plan.thread, pthread_self()) != 0);
}

/// Whether this call fails; sets errno if it does.
bool fails(const char* name)
{
    if (!counts() || plan.error == kShortTransfer || !isTurnOf(name))
        return false;
    errno = plan.error;
    return true;
}

/// How much of a transfer of this size takes place.
std::size_t shortened(const char* name, std::size_t size)
{
    if (!counts() || plan.error != kShortTransfer || size < 2 || !isTurnOf(name))
        return size;
    return size / 2;
}

template <class Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// What a function returns that has failed.
template <class Result>
Result failure()
{
    if constexpr (std::is_pointer_v<Result>)
        return nullptr;
    else
        return -1;
}

const char* variable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): while the program starts or ends
    return value == nullptr ? "" : value;
}

void armFromEnvironment() __attribute__((constructor));
void armFromEnvironment()
{
    const char* const error = variable("KVX_FAIL_ERROR");
    if (*variable("KVX_FAIL_CALL") == '\0' && *variable("KVX_FAIL_REPORT") == '\0')
        return;
    plan.everyThread = true;
    arm(std::strtoul(variable("KVX_FAIL_CALL"), nullptr, 10),
        std::strcmp(error, "short") == 0 ? kShortTransfer : static_cast<int>(std::strtol(error, nullptr, 10)));
}

void report() __attribute__((destructor));
void report()
{
    plan.armed = false;
    std::FILE* const file =
        *variable("KVX_FAIL_REPORT") == '\0' ? nullptr : std::fopen(variable("KVX_FAIL_REPORT"), "w");
    if (file == nullptr)
        return;
    const char* const failed = plan.failed;
    std::fprintf(file, "%lu %s\n", plan.counted.load(), failed == nullptr ? "none" : failed);
    std::fclose(file);
}

} // namespace

void kvxArmFailingCall(unsigned long call, int error)
{
    plan.thread = pthread_self();
    arm(call, error);
}

void kvxDisarmFailingCall()
{
    plan.armed = false;
}

unsigned long kvxCountedCalls()
{
    return plan.counted;
}

const char* kvxFailedCall()
{
    return plan.failed;
}

// The functions have the C library's names, parameters and exception specifications.
// NOLINTBEGIN(bugprone-macro-parentheses, cert-dcl50-cpp, readability-inconsistent-declaration-parameter-name)

/// A function that does its work or fails. `specifier` is noexcept where the C library says so.
#define FORWARD(result, name, specifier, parameters, arguments)                                                        \
    extern "C" result name parameters specifier                                                                        \
    {                                                                                                                  \
        static auto* const real = next<result parameters>(#name);                                                      \
        return fails(#name) ? failure<result>() : real arguments;                                                      \
    }

/// A transfer of `size` bytes, which may be cut short as well.
#define TRANSFER(name, parameters, size, arguments)                                                                    \
    extern "C" ssize_t name parameters                                                                                 \
    {                                                                                                                  \
        static auto* const real = next<ssize_t parameters>(#name);                                                     \
        if (fails(#name))                                                                                              \
            return -1;                                                                                                 \
        size = shortened(#name, size);                                                                                 \
        return real arguments;                                                                                         \
    }

/// A function whose last argument is there or not, and an integer or a pointer; all of them are a word's size.
#define FORWARD_OPTIONAL(name, specifier, parameters, last, ...)                                                       \
    extern "C" int name parameters specifier                                                                           \
    {                                                                                                                  \
        using Function = int parameters;                                                                               \
        static auto* const real = next<Function>(#name);                                                               \
        va_list optional;                                                                                              \
        va_start(optional, last);                                                                                      \
        void* const argument = va_arg(optional, void*);                                                                \
        va_end(optional);                                                                                              \
        return fails(#name) ? -1 : real(__VA_ARGS__, argument);                                                        \
    }

// Sockets
FORWARD(int, socket, noexcept, (int domain, int type, int protocol), (domain, type, protocol))
FORWARD(int, connect, , (int descriptor, const sockaddr* address, socklen_t size), (descriptor, address, size))
FORWARD(int, shutdown, noexcept, (int descriptor, int how), (descriptor, how))
FORWARD(int, getpeername, noexcept, (int descriptor, sockaddr* address, socklen_t* size), (descriptor, address, size))
FORWARD(int, getsockopt, noexcept, (int descriptor, int level, int option, void* value, socklen_t* size),
        (descriptor, level, option, value, size))
FORWARD(int, setsockopt, noexcept, (int descriptor, int level, int option, const void* value, socklen_t size),
        (descriptor, level, option, value, size))
FORWARD(ssize_t, recvmsg, , (int descriptor, msghdr* message, int flags), (descriptor, message, flags))
FORWARD(ssize_t, sendmsg, , (int descriptor, const msghdr* message, int flags), (descriptor, message, flags))
TRANSFER(recv, (int descriptor, void* bytes, std::size_t size, int flags), size, (descriptor, bytes, size, flags))
TRANSFER(send, (int descriptor, const void* bytes, std::size_t size, int flags), size, (descriptor, bytes, size, flags))

// Waiting
FORWARD(int, poll, , (pollfd * polled, nfds_t count, int waitMs), (polled, count, waitMs))
FORWARD(int, epoll_create, noexcept, (int size), (size))
FORWARD(int, epoll_create1, noexcept, (int flags), (flags))
FORWARD(int, epoll_ctl, noexcept, (int epoll, int operation, int descriptor, epoll_event* event),
        (epoll, operation, descriptor, event))
FORWARD(int, epoll_wait, , (int epoll, epoll_event* events, int count, int waitMs), (epoll, events, count, waitMs))
FORWARD(int, eventfd, noexcept, (unsigned count, int flags), (count, flags))
FORWARD(int, timerfd_create, noexcept, (clockid_t clock, int flags), (clock, flags))
FORWARD(int, timerfd_settime, noexcept, (int timer, int flags, const itimerspec* value, itimerspec* old),
        (timer, flags, value, old))
FORWARD(int, nanosleep, , (const timespec* duration, timespec* left), (duration, left))

// Descriptors
FORWARD(int, pipe, noexcept, (int ends[2]), (ends))
FORWARD_OPTIONAL(fcntl, , (int descriptor, int command, ...), command, descriptor, command)
FORWARD_OPTIONAL(ioctl, noexcept, (int descriptor, unsigned long request, ...), request, descriptor, request)
TRANSFER(read, (int descriptor, void* bytes, std::size_t size), size, (descriptor, bytes, size))
TRANSFER(write, (int descriptor, const void* bytes, std::size_t size), size, (descriptor, bytes, size))
FORWARD(ssize_t, readv, , (int descriptor, const iovec* parts, int count), (descriptor, parts, count))
FORWARD(ssize_t, writev, , (int descriptor, const iovec* parts, int count), (descriptor, parts, count))

extern "C" int close(int descriptor)
{
    // By number, since this is called before and after everything else. The descriptor is gone even if close fails.
    const long result = ::syscall(SYS_close, descriptor);
    return fails("close") ? -1 : static_cast<int>(result);
}

// Terminals
FORWARD(int, tcgetattr, noexcept, (int descriptor, termios* settings), (descriptor, settings))
FORWARD(int, tcsetattr, noexcept, (int descriptor, int when, const termios* settings), (descriptor, when, settings))
FORWARD(int, tcflush, noexcept, (int descriptor, int queue), (descriptor, queue))
FORWARD(int, tcsendbreak, noexcept, (int descriptor, int duration), (descriptor, duration))

// Files
FORWARD_OPTIONAL(open, , (const char* path, int flags, ...), flags, path, flags)
FORWARD_OPTIONAL(openat, , (int folder, const char* path, int flags, ...), flags, folder, path, flags)
FORWARD(int, mkstemp, , (char* path), (path))
FORWARD(int, flock, noexcept, (int descriptor, int operation), (descriptor, operation))
FORWARD(int, fsync, , (int descriptor), (descriptor))
FORWARD(int, ftruncate, noexcept, (int descriptor, off_t size), (descriptor, size))
FORWARD(int, fchmod, noexcept, (int descriptor, mode_t mode), (descriptor, mode))
FORWARD(int, fchown, noexcept, (int descriptor, uid_t user, gid_t group), (descriptor, user, group))
FORWARD(int, fstat, noexcept, (int descriptor, struct stat* state), (descriptor, state))
FORWARD(int, stat, noexcept, (const char* path, struct stat* state), (path, state))
FORWARD(int, lstat, noexcept, (const char* path, struct stat* state), (path, state))
FORWARD(int, link, noexcept, (const char* from, const char* to), (from, to))
FORWARD(int, rename, noexcept, (const char* from, const char* to), (from, to))
FORWARD(int, unlink, noexcept, (const char* path), (path))
FORWARD(int, unlinkat, noexcept, (int folder, const char* path, int flags), (folder, path, flags))
FORWARD(int, mkdir, noexcept, (const char* path, mode_t mode), (path, mode))
FORWARD(int, rmdir, noexcept, (const char* path), (path))
FORWARD(DIR*, opendir, , (const char* path), (path))
FORWARD(char*, realpath, noexcept, (const char* path, char* resolved), (path, resolved))
FORWARD(ssize_t, readlink, noexcept, (const char* path, char* target, std::size_t size), (path, target, size))
FORWARD(ssize_t, getrandom, , (void* bytes, std::size_t size, unsigned flags), (bytes, size, flags))
FORWARD(int, getentropy, , (void* bytes, std::size_t size), (bytes, size))

// NOLINTEND(bugprone-macro-parentheses, cert-dcl50-cpp, readability-inconsistent-declaration-parameter-name)
