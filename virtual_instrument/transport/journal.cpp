#include "virtual_instrument/transport/journal.h"

#include "virtual_instrument/scpi/text.h"

namespace kvxvirtual
{

void Journal::warn(std::string_view what)
{
    write_("warning: " + std::string(what));
}

void Journal::clientCame(std::string_view client)
{
    write_("client " + std::string(client) + " connected");
}

void Journal::clientWent(std::string_view client)
{
    write_("client " + std::string(client) + " disconnected");
}

void Journal::refusedHttp(std::string_view client)
{
    write_("client " + std::string(client) + " sent an HTTP request: cut off, nothing of it is executed");
}

void Journal::refusedControl(std::string_view client)
{
    write_("client " + std::string(client) + " sent no token, or a wrong one, to the test control: cut off");
}

void Journal::traceLine(std::string_view client, std::string_view direction, std::string_view bytes)
{
    if (!trace_)
        return;
    const std::chrono::duration<double> sinceStart = std::chrono::steady_clock::now() - start_;
    write_(fixedText(sinceStart.count(), 6) + ' ' + std::string(client) + std::string(direction) + escaped(bytes));
}

} // namespace kvxvirtual
