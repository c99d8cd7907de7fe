#include "virtual_instrument/transport/journal.h"

#include "virtual_instrument/scpi/text.h"

namespace kvxvirtual
{

void Journal::clientCame(std::string_view client)
{
    out_ << "client " << client << " connected" << std::endl;
}

void Journal::clientWent(std::string_view client)
{
    out_ << "client " << client << " disconnected" << std::endl;
}

void Journal::traceLine(std::string_view client, std::string_view direction, std::string_view bytes)
{
    if (!trace_)
        return;
    const std::chrono::duration<double> sinceStart = std::chrono::steady_clock::now() - start_;
    out_ << fixedText(sinceStart.count(), 6) << ' ' << client << direction << escaped(bytes) << std::endl;
}

} // namespace kvxvirtual
