#pragma once

#include <chrono>
#include <ostream>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// What the program tells its user while it runs: a line for each client that comes or goes and, when tracing, one for
/// each message and reply, with the seconds since the start.
class Journal
{
public:
    /// `out` must outlive the journal.
    Journal(std::ostream& out, bool trace) : out_(out), trace_(trace) {}

    void clientCame(std::string_view client);
    void clientWent(std::string_view client);
    void received(std::string_view client, std::string_view bytes) { traceLine(client, " > ", bytes); }
    void overrun(std::string_view client) { traceLine(client, " > ", "(input buffer overrun)"); }
    void sent(std::string_view client, std::string_view bytes) { traceLine(client, " < ", bytes); }

private:
    void traceLine(std::string_view client, std::string_view direction, std::string_view bytes);

    std::ostream& out_;
    bool trace_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

} // namespace kvxvirtual
