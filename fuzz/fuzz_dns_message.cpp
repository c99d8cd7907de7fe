// Any bytes as an answer of multicast DNS: what is read of it is bounded, and what it announces are resource names that
// VISA understands.
#include "fuzz/input.h"
#include "visa/discovery/announced_services.h"
#include "visa/resource/resource_name.h"

#include <cstdint>

namespace
{

using kvxfuzz::require;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto records = visa::readDnsAnswer({data, size});
    if (!records)
        return 0;
    constexpr std::size_t kLongestName = 254;
    constexpr std::size_t kSmallestRecord = 11;
    require(records->size() <= size / kSmallestRecord);
    for (const visa::DnsRecord& record : *records)
        require(record.name.size() <= kLongestName && record.target.size() <= kLongestName);
    visa::AnnouncedServices services;
    services.add(*records, asio::ip::address_v4::loopback());
    for (const std::string& name : services.resourceNames())
        require(visa::parseResourceName(name).has_value());
    return 0;
}
