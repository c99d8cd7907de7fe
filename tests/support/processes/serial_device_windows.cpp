#include "tests/support/processes/serial_device.h"

#include "tests/support/processes/child_process.h"

#include <cstdlib>
#include <stdexcept>

namespace kvxtest
{

/// The script that gives the device of the machine below the name of a port in Wine's prefix.
struct SerialDevice::Host
{
    explicit Host(const std::string& path) : process(KVX_SERIAL_LINE, {winePrefix(), path}) {}
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    /// Lets the script take the name back.
    ~Host()
    {
        process.terminate();
        process.wait();
    }

    static std::string winePrefix()
    {
        const char* const prefix = std::getenv("WINEPREFIX");
        if (prefix == nullptr)
            throw std::runtime_error("no WINEPREFIX: there are serial lines for tests under Wine only");
        return prefix;
    }

    std::string number()
    {
        const auto line = process.readLine();
        if (!line)
            throw std::runtime_error("no port: " + process.errorOutput());
        return *line;
    }

    ChildProcess process;
};

SerialDevice::SerialDevice(const std::string& path) : host_(std::make_unique<Host>(path))
{
    const std::string number = host_->number();
    name_ = "COM" + number;
    resource_ = "ASRL" + number + "::INSTR";
}

SerialDevice::~SerialDevice() = default;

} // namespace kvxtest
