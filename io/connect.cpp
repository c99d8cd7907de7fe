#include "io/logged_connection.h"
#include "io/visa_io.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace InstLink
{
namespace
{

std::string upperCased(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

template <class Connection>
std::shared_ptr<VisaIO> make(const IoSettings& settings)
{
    return makeConnectionWith<Connection>(settings.messageLog);
}

template <>
std::shared_ptr<VisaIO> make<VisaSerial>(const IoSettings& settings)
{
    return makeConnectionWith<VisaSerial>(settings.messageLog, SerialParameters{.baudRate = settings.baudRate,
                                                                                .dataBits = settings.dataBits,
                                                                                .flowControl = settings.flowControl,
                                                                                .parity = settings.parity,
                                                                                .stopBits = settings.stopBits});
}

/// A kind of connection: what an upper-cased descriptor of it begins with, and what it contains.
struct Kind
{
    std::string_view prefix;
    std::string_view infix;
    std::shared_ptr<VisaIO> (*make)(const IoSettings&);
};

// In order of the tests; the last one takes what no other has taken.
constexpr std::array<Kind, 6> kKinds = {{
    {"ASRL", "", make<VisaSerial>},
    {"USB", "", make<VisaUSB>},
    {"GPIB", "", make<VisaGPIB>},
    {"TCPIP", "SOCKET", make<VisaTCPIPSocket>},
    {"TCPIP", "", make<VisaTCPIP>},
    {"", "", make<VisaIO>},
}};

struct SessionReleaser
{
    void operator()(VisaIO* connection) const { connection->releaseSessions(); }
};

void replace(ConnectionHolder& holder, std::shared_ptr<VisaIO> connection)
{
    if (const auto previous = std::exchange(holder.connection, std::move(connection)))
        previous->releaseSessions();
}

} // namespace

std::shared_ptr<VisaIO> makeConnection(const std::string& resource, const IoSettings& settings)
{
    const std::string descriptor = upperCased(resource);
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& candidate) {
        return descriptor.starts_with(candidate.prefix) && descriptor.find(candidate.infix) != std::string::npos;
    });
    auto connection = kind->make(settings);
    connection->applySettings(settings);
    return connection;
}

ViStatus connect(ConnectionHolder& holder, const std::string& resource)
{
    const auto connection = makeConnection(resource, holder.settings);
    // What has been opened is given back unless all of it succeeds, an exception for lack of memory included.
    std::unique_ptr<VisaIO, SessionReleaser> opening(connection.get());
    const ViStatus status = connection->open(resource);
    if (status < 0)
        return status;
    static_cast<void>(opening.release());
    replace(holder, connection);
    return status;
}

void connect(ConnectionHolder& holder, std::shared_ptr<VisaIO> connection)
{
    connection->applySettings(holder.settings);
    replace(holder, std::move(connection));
}

} // namespace InstLink
