#pragma once

#include "visa/discovery/dns_message.h"
#include "visa/host/network.h"

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace visa
{

/// The services by which instruments announce themselves (multicast DNS), and the resources that they are.
class AnnouncedServices
{
public:
    /// The services to ask for, with their domain.
    static std::span<const std::string_view> wanted();

    /// Takes what a host has answered. Of a flood only some hundreds of records are kept.
    void add(const std::vector<DnsRecord>& records, const asio::ip::address_v4& sender);

    /// The resources in the order of their announcements. Instances that have not said their port are left out where
    /// their name needs it, and have the usual one elsewhere.
    std::vector<std::string> resourceNames() const;

    /// Whether a host that answers so may have a VXI-11 server of which it says nothing (LXI).
    static bool hasInstrument(const std::vector<DnsRecord>& records);

private:
    struct Instance
    {
        std::size_t service; ///< place in wanted()
        DnsName name;
        asio::ip::address_v4 sender;
        bool operator==(const Instance&) const = default;
    };

    const DnsRecord* find(DnsType type, const DnsName& name) const;
    asio::ip::address_v4 addressOf(const Instance& instance, const DnsRecord* service) const;

    std::vector<Instance> instances_{};
    std::vector<DnsRecord> details_{};
};

} // namespace visa
