#pragma once

#include <string>
#include <string_view>

namespace kvxvirtual
{

/// Tells web browsers from clients. A page of any site can make the browser of its reader send a request to a port of
/// that reader's own machine, with lines in its body that would be commands here. Every such connection begins with the
/// line of an HTTP request, so a look at the first bytes is enough.
class HttpGuard
{
public:
    /// Takes the next bytes of a connection. Returns whether it has begun with an HTTP method and a blank, or with
    /// `Host:`, whatever their case and behind any number of empty lines.
    bool detects(std::string_view bytes) { return !decided_ && detectsIn(bytes); }

private:
    bool detectsIn(std::string_view bytes);

    std::string beginning_;
    bool decided_ = false;
};

} // namespace kvxvirtual
