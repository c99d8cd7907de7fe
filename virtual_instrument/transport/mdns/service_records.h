#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvxvirtual::mdns
{

using Bytes = std::vector<std::uint8_t>;

/// A service that the instrument offers, such as "_scpi-raw._tcp" at port 5025.
struct Service
{
    std::string type;
    unsigned short port = 0;
};

/// How the message that holds a question was sent, which decides how it is answered.
enum class Asker
{
    Responder, ///< another one that speaks multicast DNS, from its port
    Program    ///< one that sends a single question from a port of its own
};

/// A message to send, and to whom.
struct Answer
{
    Bytes message;
    bool toAskerAlone = false;
};

/// What multicast DNS (RFC 6762, RFC 6763) tells of the instrument: for each service its instance with port and
/// texts, and the host with its address. Names are told in full: nothing is compressed.
class ServiceRecords
{
public:
    /// @param identity the reply to *IDN?, whose four fields the texts tell
    /// @param hostName one label; instances are called so as well
    ServiceRecords(const std::vector<Service>& services, std::string_view identity, std::string_view hostName);

    /// Everything, for all who listen.
    Bytes announcement(std::uint32_t address) const;

    /// @param question any bytes; what cannot be read is not answered
    /// @return nothing when it asks for nothing that is here
    std::optional<Answer> answer(std::span<const std::uint8_t> question, Asker asker, std::uint32_t address) const;

private:
    struct Record
    {
        std::string name; ///< in the form of messages
        std::uint16_t type;
        Bytes contents;   ///< of an address: none, since it depends on who asks
        bool isShared;    ///< others may have records of this name
        int service = -1; ///< whose it is; -1 for all
    };

    static void append(Bytes& message, const Record& record, std::uint32_t address, Asker asker);
    void addService(const Service& service, const std::string& host, std::string_view hostName, const Bytes& texts);

    std::vector<Record> records_;
};

} // namespace kvxvirtual::mdns
