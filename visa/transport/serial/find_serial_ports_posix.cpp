#include "visa/transport/serial/find_serial_ports.h"

#include "visa/transport/serial/configured_port.h"
#include "visa/transport/serial/serial_ports_posix.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace visa
{
namespace
{

constexpr std::string_view kNumberedPort = "ttyS";
/// How ports are called, in front of their numbers; in the order they are told in.
constexpr std::array<std::string_view, 3> kPortNames{kNumberedPort, "ttyUSB", "ttyACM"};

using DeviceId = dev_t;

/// Of a character device; other files are none.
std::optional<DeviceId> deviceIdOf(const std::string& path)
{
    struct stat facts
    {
    };
    if (::stat(path.c_str(), &facts) != 0 || !S_ISCHR(facts.st_mode))
        return std::nullopt;
    return facts.st_rdev;
}

ConfiguredPorts configuredPorts(const char* const* environment)
{
    ConfiguredPorts ports;
    for (; environment != nullptr && *environment != nullptr; ++environment)
        addConfiguredPort(*environment, ports);
    return ports;
}

/// The numbers of the devices with such a name, ascending.
std::set<ViUInt16> numbersOf(const std::string& folder, std::string_view beginning)
{
    std::set<ViUInt16> numbers;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    {
        const std::string name = entry->path().filename().native();
        if (!name.starts_with(beginning))
            continue;
        if (const auto number = plainNumber(std::string_view(name).substr(beginning.size())))
            numbers.insert(*number);
    }
    return numbers;
}

/// Whether Linux has found the hardware of a port; true where nothing is known.
bool hasHardware(const std::string& facts, const std::string& name)
{
    std::ifstream file(facts + '/' + name + "/type");
    int type = 0;
    return !(file >> type) || type != 0;
}

} // namespace

std::vector<std::string> serialPortNames(const SerialPlaces& places)
{
    std::vector<std::string> names;
    std::set<DeviceId> told;
    const auto configured = configuredPorts(places.environment);
    for (const auto& [number, device] : configured) {
        const auto id = deviceIdOf(device);
        if (id && told.insert(*id).second)
            names.push_back(numberedPortName(number));
    }
    for (const std::string_view beginning : kPortNames) {
        for (const unsigned number : numbersOf(places.devices, beginning)) {
            const std::string name = std::string(beginning) + std::to_string(number);
            const auto id = deviceIdOf(places.devices + '/' + name);
            if (!id || !hasHardware(places.facts, name) || !told.insert(*id).second)
                continue;
            const bool isNumbered = beginning == kNumberedPort && number < 0xFFFF &&
                                    !configured.contains(static_cast<ViUInt16>(number + 1));
            names.push_back(isNumbered ? numberedPortName(number + 1) : "ASRL/dev/" + name + "::INSTR");
        }
    }
    return names;
}

std::vector<std::string> findSerialPorts()
{
    SerialPlaces places;
    places.environment = ::environ;
    return serialPortNames(places);
}

} // namespace visa
