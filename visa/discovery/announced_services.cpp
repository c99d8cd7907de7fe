#include "visa/discovery/announced_services.h"

#include <algorithm>
#include <array>
#include <optional>

namespace visa
{
namespace
{

constexpr std::size_t kMostKept = 512;

std::optional<std::string> hislipName(std::uint16_t port)
{
    constexpr std::uint16_t kUsualPort = 4880;
    const bool isUsual = port == 0 || port == kUsualPort;
    return isUsual ? "hislip0::INSTR" : "hislip0," + std::to_string(port) + "::INSTR";
}

/// The port is not the instrument's own but that of the portmapper, if it is anything.
std::optional<std::string> vxi11Name(std::uint16_t)
{
    return "inst0::INSTR";
}

std::optional<std::string> socketName(std::uint16_t port)
{
    return port == 0 ? std::nullopt : std::optional(std::to_string(port) + "::SOCKET");
}

/// An instrument's web page is no resource.
std::optional<std::string> noName(std::uint16_t)
{
    return std::nullopt;
}

/// A service and what follows the address in the resource name; the port is 0 when nothing is known of it.
struct ServiceRow
{
    std::string_view service;
    std::optional<std::string> (*nameBehindAddress)(std::uint16_t port);
};

constexpr std::string_view kLxi = "_lxi._tcp.local";
constexpr std::array<ServiceRow, 4> kServices{{
    {"_hislip._tcp.local", hislipName},
    {"_vxi-11._tcp.local", vxi11Name},
    {"_scpi-raw._tcp.local", socketName},
    {kLxi, noName},
}};

constexpr std::array<std::string_view, kServices.size()> serviceNames()
{
    std::array<std::string_view, kServices.size()> names;
    std::transform(kServices.begin(), kServices.end(), names.begin(),
                   [](const ServiceRow& row) { return row.service; });
    return names;
}
constexpr auto kServiceNames = serviceNames();

bool isReachable(const asio::ip::address_v4& address)
{
    return !address.is_unspecified() && !address.is_multicast() && address != asio::ip::address_v4::broadcast();
}

} // namespace

std::span<const std::string_view> AnnouncedServices::wanted()
{
    return kServiceNames;
}

bool AnnouncedServices::hasInstrument(const std::vector<DnsRecord>& records)
{
    static const DnsName kName = dnsName(kLxi);
    return std::any_of(records.begin(), records.end(),
                       [](const DnsRecord& record) { return record.type == DnsType::Pointer && record.name == kName; });
}

void AnnouncedServices::add(const std::vector<DnsRecord>& records, const asio::ip::address_v4& sender)
{
    for (const DnsRecord& record : records) {
        if (instances_.size() + details_.size() >= kMostKept)
            return;
        if (record.type != DnsType::Pointer) {
            details_.push_back(record);
            continue;
        }
        const auto* const service = std::find_if(kServices.begin(), kServices.end(), [&record](const ServiceRow& row) {
            return dnsName(row.service) == record.name;
        });
        const auto index = static_cast<std::size_t>(service - kServices.begin());
        const Instance instance{index, record.target, sender};
        if (service != kServices.end() && std::find(instances_.begin(), instances_.end(), instance) == instances_.end())
            instances_.push_back(instance);
    }
}

const DnsRecord* AnnouncedServices::find(DnsType type, const DnsName& name) const
{
    const auto found = std::find_if(details_.begin(), details_.end(), [&](const DnsRecord& record) {
        return record.type == type && record.name == name;
    });
    return found == details_.end() ? nullptr : &*found;
}

/// The address that has answered is known to be within reach. A host that answers for another one says which.
asio::ip::address_v4 AnnouncedServices::addressOf(const Instance& instance, const DnsRecord* service) const
{
    std::optional<asio::ip::address_v4> first;
    for (const DnsRecord& record : details_) {
        if (service == nullptr || record.type != DnsType::Address || record.name != service->target)
            continue;
        asio::ip::address_v4 address(record.address);
        if (address == instance.sender)
            return address;
        if (!first && isReachable(address))
            first = address;
    }
    return first.value_or(instance.sender);
}

std::vector<std::string> AnnouncedServices::resourceNames() const
{
    std::vector<std::string> names;
    for (const Instance& instance : instances_) {
        const DnsRecord* const service = find(DnsType::Service, instance.name);
        const auto behind = kServices[instance.service].nameBehindAddress(service == nullptr ? 0 : service->port);
        if (behind)
            names.push_back("TCPIP0::" + addressOf(instance, service).to_string() + "::" + *behind);
    }
    return names;
}

} // namespace visa
