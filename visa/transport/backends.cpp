#include "visa/transport/backends.h"

#include "visa/transport/serial/serial_stream.h"
#include "visa/transport/tcp/tcp_stream.h"

#include <algorithm>
#include <array>

namespace visa
{
namespace
{

struct Backend
{
    ResourceKind kind;
    ViStatus (*open)(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream);
};

constexpr std::array<Backend, 2> kBackends{{
    {ResourceKind::Serial, openSerialStream},
    {ResourceKind::TcpipSocket, openTcpStream},
}};

} // namespace

ViStatus openStream(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Stream>& stream)
{
    if (name.wantsSecure)
        return VI_ERROR_INV_PROT;
    const auto* const backend = std::find_if(kBackends.begin(), kBackends.end(),
                                             [&name](const Backend& candidate) { return candidate.kind == name.kind; });
    return backend == kBackends.end() ? VI_ERROR_LIBRARY_NFOUND : backend->open(name, deadline, stream);
}

} // namespace visa
