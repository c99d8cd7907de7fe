#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace kvxvirtual
{

/// What the program tells its user while it runs: a line for each client that comes or goes and, when tracing, one for
/// each message and reply, with the seconds since the start.
class Journal
{
public:
    /// Takes one line, without its line feed.
    using Write = std::function<void(std::string)>;

    Journal(Write write, bool trace) : write_(std::move(write)), trace_(trace) {}

    void warn(std::string_view what);

    void clientCame(std::string_view client);
    void clientWent(std::string_view client);
    void refusedHttp(std::string_view client);
    void refusedControl(std::string_view client);
    void received(std::string_view client, std::string_view bytes) { traceLine(client, " > ", bytes); }
    void overrun(std::string_view client) { traceLine(client, " > ", "(input buffer overrun)"); }
    void sent(std::string_view client, std::string_view bytes) { traceLine(client, " < ", bytes); }

private:
    void traceLine(std::string_view client, std::string_view direction, std::string_view bytes);

    Write write_;
    bool trace_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

} // namespace kvxvirtual
