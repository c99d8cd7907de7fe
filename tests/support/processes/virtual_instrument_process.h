#pragma once

#include "tests/support/processes/child_process.h"
#include "tests/support/processes/line_client.h"

#include <optional>
#include <string>
#include <vector>

namespace kvxtest
{

/// A virtual instrument that runs as a program of its own for the length of a test, on free ports of the loopback
/// interface and with its test control open.
///
/// However the test program ends, the virtual instrument ends with it. The destructor asks the program to end and
/// collects it; when the program does not end cleanly (a crash, a sanitizer's finding), it prints what the program had
/// to say and aborts the test program.
class VirtualInstrumentProcess
{
public:
    /// Starts it with further arguments, such as `{"--serial", "--load", "CH1=10"}` or `{"--port", "5025"}`, and waits
    /// until it listens.
    /// Throws std::runtime_error or std::system_error when it does not come up.
    explicit VirtualInstrumentProcess(const std::vector<std::string>& extraArguments = {});
    ~VirtualInstrumentProcess();

    VirtualInstrumentProcess(const VirtualInstrumentProcess&) = delete;
    VirtualInstrumentProcess& operator=(const VirtualInstrumentProcess&) = delete;

    unsigned short port() const { return port_; }
    unsigned short controlPort() const { return controlPort_; }
    /// Of the core channel; 0 without `--vxi11`.
    unsigned short vxi11Port() const { return vxi11Port_; }

    /// 0 without `--hislip`.
    unsigned short hislipPort() const { return hislipPort_; }

    /// The VISA resource descriptor of its raw socket, `TCPIP0::127.0.0.1::<port>::SOCKET`, unless the environment
    /// variable KVX_TEST_TRANSPORT says "hislip", "vxi11" or "serial": then what is tested goes there.
    std::string resource() const;

    /// The path of its serial line; empty without `--serial`.
    const std::string& serialPath() const { return serialPath_; }

    /// Sends one command of the test control and returns the answer line: "ok", "ok ..." or "error ...". The command
    /// acts after everything that clients had sent over sockets before.
    std::string control(const std::string& command);

    /// What clients have sent since the start or the last clearLog(), byte for byte, each without its line feed.
    std::vector<std::string> receivedLines();

    /// The same once there are at least `count` lines; for serial lines, whose bytes arrive some time after the write.
    std::vector<std::string> waitForReceivedLines(std::size_t count);

    void clearLog();

    /// What the program has written to its error output: clients, the trace, complaints.
    std::string errorOutput() const { return process_.errorOutput(); }

    /// Ctrl-C; returns the exit code.
    int interrupt();

    /// Ends it from one moment to the next, as a power failure would. Connections break.
    void kill();

private:
    ChildProcess process_;
    unsigned short port_ = 0;
    unsigned short controlPort_ = 0;
    unsigned short hislipPort_ = 0;
    unsigned short vxi11Port_ = 0;
    std::string serialPath_;
    std::optional<LineClient> control_;
    bool killed_ = false;
};

/// Where the program is, for tests that start it in ways of their own.
std::string virtualInstrumentPath();

} // namespace kvxtest
