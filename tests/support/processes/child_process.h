#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kvxtest
{

/// How long a test waits for a program before it takes it for hanging, and how often it looks.
inline constexpr std::chrono::seconds kHangGuard{60};
inline constexpr std::chrono::milliseconds kPollInterval{5};

/// A program started by a test. Its standard output is read line by line, its error output is kept. The destructor
/// kills it when it still runs and always collects it, so a test leaves no process behind. Its standard input is an
/// empty pipe that only this process holds open: it reaches its end with closeInput() or with this process, however
/// that ends.
class ChildProcess
{
public:
    /// Throws std::system_error when `path` cannot be started.
    ChildProcess(const std::string& path, const std::vector<std::string>& arguments);
    ~ChildProcess();

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line of its standard output without the line feed; nothing at its end. Throws std::runtime_error when
    /// none comes within the hang guard.
    std::optional<std::string> readLine();

    /// What it has written to its error output so far.
    std::string errorOutput() const;

    /// Asks it to end, as Ctrl-C does and as a service manager does. Harmless after its end.
    void interrupt();

    /// Whether processes can be interrupted here: on Windows by a console alone.
    static bool canInterrupt();
    void terminate();

    /// Lets its standard input reach its end.
    void closeInput();

    /// Ends it without asking.
    void kill();

    /// What wait() returns when the host no longer knows the exit code: something else in this process has collected
    /// it.
    static constexpr int kUnknownExitCode = -1;

    /// Waits for its end, one minute at most, then kills it. Returns its exit code, or 128 and the number of the signal
    /// that ended it, or kUnknownExitCode; the same again when called again.
    int wait();

    struct Host;

private:
    std::unique_ptr<Host> host_;
};

} // namespace kvxtest
