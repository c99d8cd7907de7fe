#include "tools/kvx2800t/panel/gatekeeper.h"

#include <algorithm>
#include <array>
#include <random>

namespace panel
{
namespace
{

/// 128 bits from the host's source of random numbers.
std::string randomToken()
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::random_device source;
    std::string token;
    for (int word = 0; word < 4; ++word) {
        auto bits = source();
        for (int digit = 0; digit < 8; ++digit, bits >>= 4U)
            token += kDigits[bits & 0xFU];
    }
    return token;
}

/// Takes as long for a token that is almost right as for any other of its length.
bool isSame(std::string_view token, std::string_view shown)
{
    if (token.size() != shown.size())
        return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < token.size(); ++i)
        difference |= static_cast<unsigned char>(token[i]) ^ static_cast<unsigned char>(shown[i]);
    return difference == 0;
}

/// The value of "name=value" among those with `separator` between; empty when there is none.
std::string_view valueOf(std::string_view list, char separator, std::string_view name)
{
    while (!list.empty()) {
        const std::string_view entry = list.substr(0, list.find(separator));
        list.remove_prefix(std::min(list.size(), entry.size() + 1));
        const std::string_view trimmed = entry.substr(std::min(entry.size(), entry.find_first_not_of(' ')));
        const std::size_t sign = trimmed.find('=');
        if (sign != std::string_view::npos && trimmed.substr(0, sign) == name)
            return trimmed.substr(sign + 1);
    }
    return {};
}

struct Target
{
    std::string_view path;
    std::string_view query;
};

Target targetOf(std::string_view target)
{
    const std::size_t mark = target.find('?');
    if (mark == std::string_view::npos)
        return {target, {}};
    return {target.substr(0, mark), target.substr(mark + 1)};
}

/// Whether a host without its port is an address in figures: no name server has a say in where that leads.
bool isAddress(std::string_view host)
{
    if (!host.empty() && host.front() == '[')
        return true;
    return !host.empty() && host.find_first_not_of("0123456789.") == std::string_view::npos;
}

std::string bracketed(std::string_view address)
{
    const bool isVersion6 = address.find(':') != std::string_view::npos;
    return isVersion6 ? '[' + std::string(address) + ']' : std::string(address);
}

bool isLoopback(std::string_view address)
{
    return address == "::1" || address.substr(0, 4) == "127.";
}

/// Where a browser of this machine finds what listens at an address.
std::string_view reachable(std::string_view address)
{
    if (address == "0.0.0.0")
        return "127.0.0.1";
    return address == "::" ? "::1" : address;
}

constexpr std::string_view kScheme = "http://";
constexpr std::string_view kWebSocket = "/ws";

/// The port that browsers leave out.
constexpr std::string_view kDefaultPort = "80";

} // namespace

Gatekeeper::Gatekeeper(std::string_view address, unsigned short port)
    : port_(std::to_string(port)), place_(bracketed(reachable(address)) + ':' + port_), isOpen_(!isLoopback(address)),
      token_(randomToken()), assetToken_(randomToken()), visit_(randomToken())
{
}

std::string Gatekeeper::cookie() const
{
    // Panels beside each other have their own.
    return "kvx2800t-" + port_ + '=' + assetToken_ + "; HttpOnly; SameSite=Strict; Path=/";
}

bool Gatekeeper::knowsHost(std::string_view host) const
{
    const std::string ending = ':' + port_;
    if (port_ == kDefaultPort && host.substr(host.size() - std::min(host.size(), ending.size())) != ending)
        return knowsHost(std::string(host) + ending);
    if (host == place_)
        return true;
    if (host.size() <= ending.size() || host.substr(host.size() - ending.size()) != ending)
        return false;
    host.remove_suffix(ending.size());
    constexpr std::array<std::string_view, 3> kOwnNames = {"127.0.0.1", "localhost", "[::1]"};
    return std::find(kOwnNames.begin(), kOwnNames.end(), host) != kOwnNames.end() || (isOpen_ && isAddress(host));
}

bool Gatekeeper::isLetIn(const HttpRequest& request) const
{
    const auto [path, query] = targetOf(request.target);
    return isSame(token_, valueOf(query, '&', "token")) ||
           (path != kWebSocket && isSame(assetToken_, valueOf(request.cookie, ';', "kvx2800t-" + port_)));
}

Verdict Gatekeeper::judge(const HttpRequest& request)
{
    if (!knowsHost(request.host))
        return {403, "this is not the host of the panel", {}};
    const bool isOwnOrigin =
        request.origin.substr(0, kScheme.size()) == kScheme && request.origin.substr(kScheme.size()) == request.host;
    if (!isOwnOrigin && (request.isUpgrade || !request.origin.empty()))
        return {403, "this is not a page of the panel", {}};
    const auto [path, query] = targetOf(request.target);
    if (!visit_.empty() && path == "/" && isSame(visit_, valueOf(query, '&', "token"))) {
        visit_.clear();
        return {303, "this way", {}};
    }
    if (!isLetIn(request))
        return {403, "the token is missing or wrong; the panel printed the address with it when it started", {}};
    if (request.method != "GET")
        return {405, "the panel answers GET", {}};
    if (path == kWebSocket)
        return request.isUpgrade ? Verdict{101, {}, {}} : Verdict{404, "this is for WebSockets", {}};
    return {200, {}, path == "/" ? std::string_view("/index.html") : path};
}

} // namespace panel
