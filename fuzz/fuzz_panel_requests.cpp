// Any fields of an HTTP request, a line each, in which T stands for the panel's token and C for that of its cookie:
// nobody is let in without one of them, from another host or from a page of another.
#include "fuzz/input.h"
#include "tools/kvx2800t/panel/gatekeeper.h"

#include <array>
#include <cstdint>
#include <sstream>
#include <string>

namespace
{

using kvxfuzz::require;

/// The text with something in the place of each mark.
std::string filled(const std::string& text, char mark, const std::string& token)
{
    std::string result;
    for (const char c : text) {
        if (c == mark)
            result += token;
        else
            result += c;
    }
    return result;
}

/// The value of the cookie's field: behind its sign, up to its attributes.
std::string valueOf(const std::string& cookie)
{
    const std::size_t begin = cookie.find('=') + 1;
    return cookie.substr(begin, cookie.find(';') - begin);
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static panel::Gatekeeper gatekeeper("127.0.0.1", 8080);
    static const std::string cookieToken = valueOf(gatekeeper.cookie());
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    std::array<std::string, 5> fields;
    for (std::string& field : fields) {
        std::getline(lines, field);
        field = filled(filled(field, 'T', gatekeeper.token()), 'C', cookieToken);
    }
    const auto& [method, target, host, origin, cookie] = fields;
    const bool isUpgrade = lines.get() == 'u';
    const panel::Verdict verdict = gatekeeper.judge({method, target, host, origin, cookie, isUpgrade});
    if (verdict.status != 403) {
        require(host == "127.0.0.1:8080" || host == "localhost:8080" || host == "[::1]:8080");
        require(contains(target, gatekeeper.token()) || (contains(cookie, cookieToken) && verdict.status != 101));
        require(origin == "http://" + host || (origin.empty() && !isUpgrade));
    }
    require(verdict.status != 200 || (method == "GET" && !verdict.path.empty()));
    require(verdict.status != 101 || isUpgrade);
    return 0;
}
