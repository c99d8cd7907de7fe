#include "visa/discovery/dns_message.h"

#include <algorithm>

namespace visa
{
namespace
{

constexpr std::uint16_t kResponse = 0x8000;
constexpr std::uint16_t kFailureMask = 0x000F;
constexpr std::uint16_t kInternet = 1;
/// In a question: the answer to the asker alone. In a record: it is the only one of its name.
constexpr std::uint16_t kClassFlag = 0x8000;
constexpr std::size_t kLongestLabel = 63;
constexpr std::size_t kLongestName = 254;
constexpr std::uint8_t kReference = 0xC0;

void append(DnsBytes& message, std::uint16_t number)
{
    message.push_back(static_cast<std::uint8_t>(number >> 8));
    message.push_back(static_cast<std::uint8_t>(number & 0xFF));
}

constexpr char small(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Reads from front to back; once something is missing, everything is.
class DnsReader
{
public:
    DnsReader(std::span<const std::uint8_t> message, std::size_t at) : message_(message), at_(at) {}

    bool isGood() const { return isGood_; }

    void skip(std::size_t count)
    {
        isGood_ = isGood_ && count <= message_.size() - at_;
        if (isGood_)
            at_ += count;
    }

    std::uint16_t number()
    {
        const std::size_t begin = at_;
        skip(2);
        return isGood_ ? static_cast<std::uint16_t>(message_[begin] << 8 | message_[begin + 1]) : std::uint16_t{0};
    }

    std::uint32_t longNumber()
    {
        const std::uint32_t high = number();
        return high << 16 | number();
    }

    std::size_t place() const { return at_; }

    DnsName name()
    {
        DnsName name;
        const std::size_t end = readLabels(at_, at_, name);
        isGood_ = isGood_ && end != kNowhere;
        if (isGood_)
            at_ = end;
        return name;
    }

private:
    static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

    /// Reads labels from a place on.
    /// @param front where the part of the name begins that is being read: references go to places in front of it
    /// @return where the name ends, at its first reference if it has one; kNowhere for a bad one
    std::size_t readLabels(std::size_t at, std::size_t front, DnsName& name) const
    {
        std::size_t end = kNowhere;
        while (at < message_.size() && message_[at] != 0) {
            const std::uint8_t length = message_[at];
            if (length >= kReference) {
                if (at + 1 >= message_.size())
                    return kNowhere;
                end = end == kNowhere ? at + 2 : end;
                at = static_cast<std::size_t>(length & ~kReference & 0xFF) << 8 | message_[at + 1];
                if (at >= front)
                    return kNowhere;
                front = at;
                continue;
            }
            if (length > kLongestLabel || length >= message_.size() - at || name.size() + length + 1 > kLongestName)
                return kNowhere;
            name += static_cast<char>(length);
            for (std::size_t i = 1; i <= length; ++i)
                name += small(static_cast<char>(message_[at + i]));
            at += std::size_t{length} + 1;
        }
        if (at >= message_.size())
            return kNowhere;
        return end == kNowhere ? at + 1 : end;
    }

    std::span<const std::uint8_t> message_;
    std::size_t at_;
    bool isGood_ = true;
};

/// Reads one record, whatever its type; it is appended if somebody wants it.
void readRecord(DnsReader& reader, std::span<const std::uint8_t> message, std::vector<DnsRecord>& records)
{
    DnsRecord record{reader.name()};
    record.type = static_cast<DnsType>(reader.number());
    const auto recordClass = static_cast<std::uint16_t>(reader.number() & ~kClassFlag & 0xFFFF);
    reader.longNumber();
    const std::size_t size = reader.number();
    // What a record contains may not reach beyond it, but refer to all that is in front.
    DnsReader contents(message.first(std::min(message.size(), reader.place() + size)), reader.place());
    reader.skip(size);
    if (!reader.isGood() || recordClass != kInternet)
        return;
    switch (record.type) {
    case DnsType::Address:
        record.address = contents.longNumber();
        break;
    case DnsType::Pointer:
        record.target = contents.name();
        break;
    case DnsType::Service:
        contents.skip(4);
        record.port = contents.number();
        record.target = contents.name();
        break;
    default:
        return;
    }
    if (contents.isGood())
        records.push_back(std::move(record));
}

} // namespace

DnsName dnsName(std::string_view dotted)
{
    DnsName name;
    while (!dotted.empty()) {
        const std::string_view label = dotted.substr(0, dotted.find('.'));
        name += static_cast<char>(label.size());
        std::transform(label.begin(), label.end(), std::back_inserter(name), small);
        dotted.remove_prefix(std::min(label.size() + 1, dotted.size()));
    }
    return name;
}

DnsBytes serviceQuery(std::span<const std::string_view> services)
{
    DnsBytes message;
    // Neither an identifier nor flags; questions; no records.
    for (const std::size_t number :
         {std::size_t{0}, std::size_t{0}, services.size(), std::size_t{0}, std::size_t{0}, std::size_t{0}})
        append(message, static_cast<std::uint16_t>(number));
    for (const std::string_view service : services) {
        const DnsName name = dnsName(service);
        message.insert(message.end(), name.begin(), name.end());
        message.push_back(0);
        append(message, static_cast<std::uint16_t>(DnsType::Pointer));
        append(message, kClassFlag | kInternet);
    }
    return message;
}

std::optional<std::vector<DnsRecord>> readDnsAnswer(std::span<const std::uint8_t> message)
{
    DnsReader reader(message, 0);
    reader.number();
    const std::uint16_t flags = reader.number();
    const std::size_t questions = reader.number();
    std::size_t records = reader.number();
    records += reader.number();
    records += reader.number();
    if (!reader.isGood() || (flags & kResponse) == 0 || (flags & kFailureMask) != 0)
        return std::nullopt;
    for (std::size_t i = 0; i < questions && reader.isGood(); ++i) {
        reader.name();
        reader.longNumber();
    }
    std::vector<DnsRecord> found;
    for (std::size_t i = 0; i < records && reader.isGood(); ++i)
        readRecord(reader, message, found);
    return found;
}

} // namespace visa
