#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace visa
{

/// Messages of multicast DNS (RFC 1035, RFC 6762), as far as finding services needs them.

using DnsBytes = std::vector<std::uint8_t>;

/// A domain name as messages have it: labels behind their lengths, without the empty one at the end. Letters are small,
/// since their case has no meaning. Labels may contain any byte.
using DnsName = std::string;

/// The name of dotted text, such as "_hislip._tcp.local".
DnsName dnsName(std::string_view dotted);

enum class DnsType : std::uint16_t
{
    Address = 1,  ///< A
    Pointer = 12, ///< PTR
    Service = 33  ///< SRV
};

struct DnsRecord
{
    DnsName name{};
    DnsType type = DnsType::Address;
    DnsName target{};          ///< of a pointer and a service
    std::uint16_t port = 0;    ///< of a service
    std::uint32_t address = 0; ///< of an address
};

/// One message that asks for the instances of all these services, and for answers to the one who asks alone.
DnsBytes serviceQuery(std::span<const std::string_view> services);

/// The records of an answer that have one of the types above; others are passed over. Takes any bytes: what is read is
/// bounded by them, names by 255 bytes, and a name refers only to bytes in front of it, so that none is endless.
/// @return nothing for what is no answer; the records in front of what cannot be read
std::optional<std::vector<DnsRecord>> readDnsAnswer(std::span<const std::uint8_t> message);

} // namespace visa
