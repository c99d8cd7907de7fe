#pragma once

#include <string>
#include <string_view>

namespace panel
{

/// What of an HTTP request decides whether it is let in. A field that the request does not have, or has twice, is
/// empty.
struct HttpRequest
{
    std::string_view method;
    std::string_view target; ///< path and query
    std::string_view host;
    std::string_view origin;
    std::string_view cookie;
    bool isUpgrade = false; ///< to a WebSocket
};

/// What becomes of it: 200 for the page or an asset, 101 for a WebSocket, 303 to go on with the token, and 403, 404 or
/// 405 with why.
struct Verdict
{
    unsigned status = 403;
    std::string_view text;
    std::string_view path; ///< of 200: "/index.html"
};

/// Lets in who has the token, at an address of this machine. A foreign page that has the browser of its reader ask, or
/// a foreign name that leads here, is refused before anything else is looked at.
class Gatekeeper
{
public:
    /// `address` is an IP address, as --bind has it.
    Gatekeeper(std::string_view address, unsigned short port);

    const std::string& token() const { return token_; }

    /// Whether other machines reach it.
    bool isOpen() const { return isOpen_; }

    /// The page's address, with the token.
    std::string pageAddress() const { return "http://" + place_ + pagePath(); }
    std::string pagePath() const { return "/?token=" + token_; }

    /// The page's address for one visit: processes and what logs them see what a browser is started with, and by then
    /// it has been used up.
    std::string visitAddress() const { return "http://" + place_ + "/?token=" + visit_; }

    /// The field of the answer with the page that lets in to its assets, and to nothing else: a browser shows a cookie
    /// to every server of this machine, whatever its port.
    std::string cookie() const;

    Verdict judge(const HttpRequest& request);

private:
    bool knowsHost(std::string_view host) const;
    bool isLetIn(const HttpRequest& request) const;

    std::string port_;
    std::string place_; ///< "127.0.0.1:8080"
    bool isOpen_;       ///< to other machines
    std::string token_;
    std::string assetToken_;
    std::string visit_;
};

} // namespace panel
