#include "tests/support/visa/serial_peer.h"

#include "tests/support/processes/child_process.h"
#include "tests/support/processes/line_client.h"

#include <windows.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace kvxtest
{
namespace
{

/// Where Wine looks for its ports.
std::string winePrefix()
{
    const char* const prefix = std::getenv("WINEPREFIX");
    if (prefix == nullptr)
        throw std::runtime_error("no WINEPREFIX: there are serial lines for tests under Wine only");
    return prefix;
}

} // namespace

/// The script that holds the line on the machine below.
struct SerialPeer::Line
{
    Line() : process(KVX_SERIAL_LINE, {winePrefix()})
    {
        unsigned short controlPort = 0;
        std::istringstream(process.readLine().value_or("")) >> board >> controlPort;
        if (controlPort == 0)
            throw std::runtime_error("no serial line: " + process.errorOutput());
        control = std::make_unique<LineClient>(controlPort);
    }

    /// Lets the script take the port's name back.
    ~Line()
    {
        try {
            process.terminate();
            process.wait();
        } catch (const std::system_error&) {
            // Whoever started the script has gone, and takes it along.
        }
        if (!variable.empty())
            SetEnvironmentVariableA(variable.c_str(), nullptr);
    }

    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    ChildProcess process;
    std::unique_ptr<LineClient> control;
    unsigned short board = 0;
    std::string variable;
};

SerialPeer::SerialPeer() : line_(std::make_unique<Line>()) {}

SerialPeer::~SerialPeer() = default;

std::string SerialPeer::resource() const
{
    return "ASRL" + std::to_string(line_->board) + "::INSTR";
}

unsigned short SerialPeer::board() const
{
    return line_->board;
}

void SerialPeer::publishAs(const std::string& variable)
{
    line_->variable = variable;
    SetEnvironmentVariableA(variable.c_str(), ("COM" + std::to_string(line_->board)).c_str());
}

void SerialPeer::send(const std::string& bytes) const
{
    line_->control->send("send " + std::to_string(bytes.size()) + '\n' + bytes);
    line_->control->readLine();
}

std::string SerialPeer::receive(std::size_t count) const
{
    line_->control->send("receive " + std::to_string(count) + '\n');
    return line_->control->readBytes(count);
}

void SerialPeer::hangUp()
{
    line_->control->query("hang-up");
}

} // namespace kvxtest
