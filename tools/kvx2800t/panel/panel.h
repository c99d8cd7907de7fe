#pragma once

#include <functional>
#include <string>

/// The soft front panel: a page in the browser that shows and operates an instrument.
namespace panel
{

struct Options
{
    /// A VISA resource descriptor or a logical name; empty for a simulated instrument that remembers.
    std::string resource;
    /// 0 takes any free one.
    unsigned short port = 0;
    /// An IP address. Another than a loopback address lets other machines in, whoever has the token.
    std::string bind = "127.0.0.1";
    bool openBrowser = true;
    /// Whether it also ends when the standard input does: fed by a pipe, it never outlives its starter.
    bool untilInputEnds = false;
};

/// Where the page is.
struct Place
{
    std::string address; ///< with the token that lets in who has it
    bool isOpen = false; ///< to other machines
};

/// Tells the place of the page and serves it until Ctrl-C or SIGTERM. An instrument that cannot be reached is no reason
/// to end: the page says so, and it is tried again each second.
/// @throws std::exception when the address or the port is not to be had
void run(const Options& options, const std::function<void(const Place&)>& tell);

} // namespace panel
