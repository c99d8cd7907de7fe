#pragma once

#include <iosfwd>
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

/// Prints the address of the page, with the token that lets in who has it, and serves it until Ctrl-C or SIGTERM.
/// An instrument that cannot be reached is no reason to end: the page says so, and it is tried again each second.
/// @return 0, or 1 when the address or the port is not to be had, which `err` tells
int run(const Options& options, std::ostream& out, std::ostream& err);

} // namespace panel
