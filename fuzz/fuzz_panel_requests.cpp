// Any fields of an HTTP request, a line each, in which T stands for the panel's token: nobody is let in without the
// token, from another host or from a page of another.
#include "fuzz/input.h"
#include "tools/kvx2800t/panel/gatekeeper.h"

#include <array>
#include <cstdint>
#include <sstream>
#include <string>

namespace
{

using kvxfuzz::require;

constexpr char kTokenMark = 'T';

std::string withToken(const std::string& text, const std::string& token)
{
    std::string result;
    for (const char c : text) {
        if (c == kTokenMark)
            result += token;
        else
            result += c;
    }
    return result;
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static panel::Gatekeeper gatekeeper("127.0.0.1", 8080);
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    std::array<std::string, 5> fields;
    for (std::string& field : fields) {
        std::getline(lines, field);
        field = withToken(field, gatekeeper.token());
    }
    const auto& [method, target, host, origin, cookie] = fields;
    const bool isUpgrade = lines.get() == 'u';
    const panel::Verdict verdict = gatekeeper.judge({method, target, host, origin, cookie, isUpgrade});
    if (verdict.status != 403) {
        require(host == "127.0.0.1:8080" || host == "localhost:8080" || host == "[::1]:8080");
        require(contains(target, gatekeeper.token()) || contains(cookie, gatekeeper.token()));
        require(origin == "http://" + host || (origin.empty() && !isUpgrade));
    }
    require(verdict.status != 200 || (method == "GET" && !verdict.path.empty()));
    require(verdict.status != 101 || isUpgrade);
    return 0;
}
