#include "tests/support/processes/virtual_instrument_process.h"

#include "tests/support/processes/own_network.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace kvxtest
{
namespace
{

/// One of the ways to the instrument that a whole test program can be run over, by the name in KVX_TEST_TRANSPORT.
struct TestTransport
{
    std::string_view name;
    std::vector<std::string> options;
};

const TestTransport& testTransport()
{
    static const std::vector<TestTransport> kTransports{
        {"socket", {}}, {"hislip", {"--hislip", "0"}}, {"serial", {"--serial"}}, {"vxi11", {"--vxi11"}}};
    const char* const wanted = std::getenv("KVX_TEST_TRANSPORT"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    const auto found = std::find_if(kTransports.begin(), kTransports.end(), [wanted](const TestTransport& transport) {
        return transport.name == std::string_view(wanted == nullptr ? "socket" : wanted);
    });
    if (found == kTransports.end())
        throw std::runtime_error("KVX_TEST_TRANSPORT names no transport");
    // Clients of VXI-11 look for the portmapper at its one port.
    const std::string complaint = found->name == "vxi11" ? enterOwnNetwork() : "";
    if (!complaint.empty())
        throw std::runtime_error("no network of its own: " + complaint);
    return *found;
}

std::vector<std::string> argumentsFor(const std::vector<std::string>& extra)
{
    std::vector<std::string> arguments{"--control-port", "0", "--until-stdin-closes"};
    const auto& transport = testTransport().options;
    // An option is given once.
    if (transport.empty() || std::find(extra.begin(), extra.end(), transport.front()) == extra.end())
        arguments.insert(arguments.end(), transport.begin(), transport.end());
    if (std::find(extra.begin(), extra.end(), "--port") == extra.end())
        arguments.insert(arguments.end(), {"--port", "0"});
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    return arguments;
}

template <class Number>
Number numberIn(std::string_view text, int base = 10)
{
    Number number{};
    const auto* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    if (result.ec != std::errc() || result.ptr != end)
        throw std::runtime_error("no number: " + std::string(text));
    return number;
}

unsigned short portIn(std::string_view address)
{
    return numberIn<unsigned short>(address.substr(address.rfind(':') + 1));
}

/// The bytes that a line of the log stands for.
std::string unescaped(std::string_view text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        const char kind = text.at(++i);
        if (kind == 'x') {
            bytes += static_cast<char>(numberIn<unsigned int>(text.substr(i + 1, 2), 16));
            i += 2;
        } else if (kind == 'r')
            bytes += '\r';
        else if (kind == 'n')
            bytes += '\n';
        else
            bytes += kind;
    }
    return bytes;
}

} // namespace

std::string virtualInstrumentPath()
{
    return KVX_VIRTUAL_INSTRUMENT_PATH;
}

VirtualInstrumentProcess::VirtualInstrumentProcess(const std::vector<std::string>& extraArguments)
    : process_(virtualInstrumentPath(), argumentsFor(extraArguments))
{
    constexpr std::string_view kListening = "listening on ";
    constexpr std::string_view kHislip = "HiSLIP on ";
    constexpr std::string_view kVxi11 = "VXI-11 on ";
    constexpr std::string_view kSerial = "serial line at ";
    constexpr std::string_view kControl = "test control on ";
    // The test control is the last that the program announces.
    while (!control_) {
        const auto line = process_.readLine();
        if (!line)
            throw std::runtime_error("the virtual instrument does not come up: " + process_.errorOutput());
        if (line->starts_with(kListening))
            port_ = portIn(*line);
        else if (line->starts_with(kHislip))
            hislipPort_ = portIn(*line);
        else if (line->starts_with(kVxi11))
            vxi11Port_ = portIn(*line);
        else if (line->starts_with(kSerial))
            serialPath_ = line->substr(kSerial.size());
        else if (line->starts_with(kControl))
            control_.emplace(controlPort_ = portIn(*line));
    }
}

VirtualInstrumentProcess::~VirtualInstrumentProcess()
{
    process_.terminate();
    const int exitCode = process_.wait();
    if (exitCode == 0 || killed_)
        return;
    std::cerr << "the virtual instrument ended with exit code " << exitCode << ":\n" << process_.errorOutput();
    std::abort();
}

std::string VirtualInstrumentProcess::resource() const
{
    if (testTransport().name == "hislip")
        return "TCPIP0::127.0.0.1::hislip0," + std::to_string(hislipPort_) + "::INSTR";
    if (testTransport().name == "vxi11")
        return "TCPIP0::127.0.0.1::inst0::INSTR";
    if (testTransport().name == "serial")
        return "ASRL" + serialPath_ + "::INSTR";
    return "TCPIP0::127.0.0.1::" + std::to_string(port_) + "::SOCKET";
}

std::string VirtualInstrumentProcess::control(const std::string& command)
{
    return control_->query(command);
}

std::vector<std::string> VirtualInstrumentProcess::receivedLines()
{
    // ok <lines that follow> <older lines that are lost>
    const auto header = control("log");
    const auto lostAt = header.rfind(' ');
    if (!header.starts_with("ok ") || header.substr(lostAt) != " 0")
        throw std::runtime_error("the log is not complete: " + header);
    const auto count = numberIn<std::size_t>(std::string_view(header).substr(3, lostAt - 3));
    std::vector<std::string> lines;
    while (lines.size() < count)
        lines.push_back(unescaped(control_->readLine()));
    return lines;
}

std::vector<std::string> VirtualInstrumentProcess::waitForReceivedLines(std::size_t count)
{
    const auto deadline = std::chrono::steady_clock::now() + kHangGuard;
    auto lines = receivedLines();
    while (lines.size() < count && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(kPollInterval);
        lines = receivedLines();
    }
    return lines;
}

void VirtualInstrumentProcess::clearLog()
{
    control("clear-log");
}

int VirtualInstrumentProcess::interrupt()
{
    process_.interrupt();
    return process_.wait();
}

void VirtualInstrumentProcess::kill()
{
    killed_ = true;
    process_.kill();
    process_.wait();
}

} // namespace kvxtest
