#include "tests/support/processes/child_process.h"

#include "platform/common/windows_handle.h"
#include "platform/common/windows_text.h"
#include "tests/support/processes/line_client.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace kvxtest
{

/// A process in one of the two ways that there are on Windows.
struct ChildProcess::Host
{
    Host() = default;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    virtual ~Host() = default;

    virtual std::optional<std::string> readLine() = 0;
    virtual std::string errorOutput() = 0;
    virtual void interrupt() = 0;
    virtual void terminate() = 0;
    virtual void closeInput() = 0;
    virtual void kill() = 0;
    virtual int wait() = 0;
};

namespace
{

using platform::Handle;

constexpr UINT kKilled = 137;

[[noreturn]] void throwLastError(const char* what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

struct Pipe
{
    Handle readEnd;
    Handle writeEnd;

    Pipe()
    {
        HANDLE read = nullptr;
        HANDLE write = nullptr;
        if (CreatePipe(&read, &write, nullptr, 0) == 0)
            throwLastError("CreatePipe");
        readEnd.reset(read);
        writeEnd.reset(write);
    }
};

/// An empty file that goes with its last handle.
Handle temporaryFile()
{
    std::array<wchar_t, MAX_PATH + 1> path{};
    if (GetTempFileNameW(std::filesystem::temp_directory_path().c_str(), L"kvx", 0, path.data()) == 0)
        throwLastError("GetTempFileName");
    Handle file = platform::open(path.data(), {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                               CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE});
    if (file == nullptr)
        throwLastError("CreateFile");
    return file;
}

/// One argument as the C runtime takes it apart: backslashes count only before a quotation mark.
std::wstring quoted(const std::wstring& argument)
{
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        text += character;
    }
    return text.append(backslashes, L'\\') + L'"';
}

/// The texts of tests are UTF-8.
std::wstring wide(const std::string& text)
{
    return platform::wideText(text).value();
}

/// The C runtime ends lines of text in two characters.
std::string withoutCarriageReturns(std::string text)
{
    std::erase(text, '\r');
    return text;
}

/// A Windows program. It is asked to end by the end of its input and by Ctrl-Break, the only signal that Windows sends
/// to one process and its children.
class LocalProcess : public ChildProcess::Host
{
public:
    LocalProcess(const std::string& path, const std::vector<std::string>& arguments) : errors_(temporaryFile())
    {
        std::wstring commandLine = quoted(std::filesystem::path(wide(path)).make_preferred().wstring());
        for (const std::string& argument : arguments)
            commandLine += L' ' + quoted(wide(argument));
        Pipe input;
        Pipe output;
        start(commandLine, {input.readEnd.get(), output.writeEnd.get(), errors_.get()});
        input_ = std::move(input.writeEnd);
        output_ = std::move(output.readEnd);
    }
    LocalProcess(const LocalProcess&) = delete;
    LocalProcess& operator=(const LocalProcess&) = delete;
    ~LocalProcess() override
    {
        kill();
        WaitForSingleObject(process_.get(), INFINITE);
    }

    std::optional<std::string> readLine() override
    {
        const auto deadline = std::chrono::steady_clock::now() + kHangGuard;
        for (;;) {
            if (const auto end = received_.find('\n'); end != std::string::npos)
                return takeLine(end);
            if (!receive())
                return received_.empty() ? std::nullopt : std::optional(std::exchange(received_, {}));
            if (std::chrono::steady_clock::now() > deadline)
                throw std::runtime_error("no line within a minute");
        }
    }

    std::string errorOutput() override
    {
        LARGE_INTEGER size{};
        GetFileSizeEx(errors_.get(), &size);
        std::string text(static_cast<std::size_t>(size.QuadPart), '\0');
        OVERLAPPED start{};
        DWORD count = 0;
        if (ReadFile(errors_.get(), text.data(), static_cast<DWORD>(text.size()), &count, &start) == 0)
            count = 0;
        text.resize(count);
        return withoutCarriageReturns(std::move(text));
    }

    void interrupt() override { GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, processId_); }

    void terminate() override
    {
        closeInput();
        interrupt();
    }

    void closeInput() override { input_.reset(); }

    void kill() override { TerminateProcess(process_.get(), kKilled); }

    int wait() override
    {
        if (WaitForSingleObject(process_.get(), static_cast<DWORD>(std::chrono::milliseconds(kHangGuard).count())) !=
            WAIT_OBJECT_0)
            kill();
        WaitForSingleObject(process_.get(), INFINITE);
        DWORD code = 0;
        GetExitCodeProcess(process_.get(), &code);
        return static_cast<int>(code);
    }

private:
    /// Standard input, output and error output, which are all that the process inherits.
    void start(std::wstring& commandLine, std::array<HANDLE, 3> handles)
    {
        for (const HANDLE handle : handles)
            SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        std::vector<std::byte> attributes(size);
        STARTUPINFOEXW startup{};
        startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(attributes.data());
        if (InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size) == 0 ||
            UpdateProcThreadAttribute(startup.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                      sizeof handles, nullptr, nullptr) == 0)
            throwLastError("UpdateProcThreadAttribute");
        startup.StartupInfo.cb = sizeof startup;
        startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        startup.StartupInfo.hStdInput = handles[0];
        startup.StartupInfo.hStdOutput = handles[1];
        startup.StartupInfo.hStdError = handles[2];
        PROCESS_INFORMATION process{};
        const BOOL started = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE,
                                            EXTENDED_STARTUPINFO_PRESENT | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr,
                                            &startup.StartupInfo, &process);
        const DWORD error = GetLastError();
        DeleteProcThreadAttributeList(startup.lpAttributeList);
        SetLastError(error);
        if (started == 0)
            throwLastError("CreateProcess");
        process_.reset(process.hProcess);
        processId_ = process.dwProcessId;
        const Handle thread(process.hThread);
    }

    std::string takeLine(std::size_t end)
    {
        std::string line = received_.substr(0, end);
        received_.erase(0, end + 1);
        return withoutCarriageReturns(std::move(line));
    }

    /// Takes what has come, or waits a moment. False at the end of the output.
    bool receive()
    {
        DWORD waiting = 0;
        if (PeekNamedPipe(output_.get(), nullptr, 0, nullptr, &waiting, nullptr) == 0)
            return false;
        if (waiting == 0) {
            std::this_thread::sleep_for(kPollInterval);
            return true;
        }
        const std::size_t before = received_.size();
        received_.resize(before + waiting);
        DWORD count = 0;
        const BOOL read = ReadFile(output_.get(), received_.data() + before, waiting, &count, nullptr);
        received_.resize(before + count);
        return read != 0;
    }

    Handle errors_;
    Handle input_;
    Handle output_;
    Handle process_;
    DWORD processId_ = 0;
    std::string received_;
};

/// A program of the host that Wine runs on, by way of tests/support/beside_wine.py.
class BesideWine : public ChildProcess::Host
{
public:
    BesideWine(unsigned short helperPort, const std::string& path, const std::vector<std::string>& arguments)
        : helper_(helperPort)
    {
        std::string commandLine = path;
        for (const std::string& argument : arguments)
            commandLine += '\t' + argument;
        const std::string answer = helper_.query(commandLine);
        if (answer != "ok")
            throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory), answer);
    }

    std::optional<std::string> readLine() override
    {
        const std::string answer = helper_.query("read-line");
        constexpr std::string_view kLine = "line ";
        return answer.starts_with(kLine) ? std::optional(answer.substr(kLine.size())) : std::nullopt;
    }

    std::string errorOutput() override { return helper_.readBytes(number(helper_.query("errors"))); }
    void interrupt() override { helper_.query("interrupt"); }
    void terminate() override { helper_.query("terminate"); }
    void closeInput() override { helper_.query("close-input"); }
    void kill() override { helper_.query("kill"); }
    int wait() override { return static_cast<int>(number(helper_.query("wait"))); }

private:
    /// The number behind the first word of an answer.
    static std::size_t number(const std::string& answer) { return std::stoul(answer.substr(answer.find(' ') + 1)); }

    LineClient helper_;
};

/// The port of beside_wine.py; 0 without it.
unsigned short helperPort()
{
    const char* const text = std::getenv("KVX_PROCESS_HELPER");
    return text == nullptr ? 0 : static_cast<unsigned short>(std::stoul(text));
}

std::unique_ptr<ChildProcess::Host> start(const std::string& path, const std::vector<std::string>& arguments)
{
    // Of the programs that tests start, those of Windows have its ending.
    if (helperPort() != 0 && !path.ends_with(".exe"))
        return std::make_unique<BesideWine>(helperPort(), path, arguments);
    return std::make_unique<LocalProcess>(path, arguments);
}

} // namespace

ChildProcess::ChildProcess(const std::string& path, const std::vector<std::string>& arguments)
    : host_(start(path, arguments))
{
}

ChildProcess::~ChildProcess() = default;

std::optional<std::string> ChildProcess::readLine()
{
    return host_->readLine();
}

std::string ChildProcess::errorOutput() const
{
    return host_->errorOutput();
}

bool ChildProcess::canInterrupt()
{
    return GetConsoleCP() != 0;
}

void ChildProcess::interrupt()
{
    host_->interrupt();
}

void ChildProcess::terminate()
{
    host_->terminate();
}

void ChildProcess::closeInput()
{
    host_->closeInput();
}

void ChildProcess::kill()
{
    host_->kill();
}

int ChildProcess::wait()
{
    return host_->wait();
}

} // namespace kvxtest
