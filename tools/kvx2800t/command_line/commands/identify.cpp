#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/supply.h"

#include <array>

namespace command_line::commands
{
namespace
{

/// The third of the four fields that "*IDN?" is answered by; no attribute of the driver has it.
std::string serialNumberOf(std::string_view identity)
{
    for (int field = 0; field < 2; ++field) {
        const std::size_t comma = identity.find(',');
        if (comma == std::string_view::npos)
            return "";
        identity.remove_prefix(comma + 1);
    }
    return std::string(identity.substr(0, identity.find(',')));
}

struct Fact
{
    const char* name;  ///< of the member
    const char* title; ///< of the line
    std::string value;
};

} // namespace

void identify(const Arguments& arguments, Console& console)
{
    kvx2800t::Session supply = openSupply(arguments);
    namespace attribute = kvx2800t::attribute;
    const std::array facts = {
        Fact{"manufacturer", "Manufacturer", supply.get(attribute::instrumentManufacturer)},
        Fact{"model", "Model", supply.get(attribute::instrumentModel)},
        Fact{"serial", "Serial number", serialNumberOf(supply.query("*IDN?"))},
        Fact{"firmware", "Firmware", supply.get(attribute::instrumentFirmwareRevision)},
        Fact{"resource", "Resource", supply.get(attribute::ioResourceDescriptor)},
        Fact{"logicalName", "Name in the store", supply.get(attribute::logicalName)},
        Fact{"driver", "Driver", supply.get(attribute::specificDriverRevision)},
    };
    Document::Object members;
    std::vector<std::vector<std::string>> rows;
    for (const Fact& fact : facts) {
        members.emplace_back(fact.name, fact.value);
        rows.push_back({fact.title, fact.value.empty() ? "-" : fact.value});
    }
    show(console, members, columns(rows));
}

} // namespace command_line::commands
