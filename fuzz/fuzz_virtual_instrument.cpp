// Any bytes from a client of the virtual instrument: lines are the same however the bytes arrive, each message has one
// reply at most, a line of printable characters, and the instrument works afterwards. Each input is tried twice: as it
// is, and with its bytes from 0x80 on as commands and their parameters.
#include "fuzz/input.h"
#include "fuzz/spelled_commands.h"
#include "virtual_instrument/scpi/line_assembler.h"
#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/http_guard.h"

#include <algorithm>
#include <chrono>

namespace
{

using namespace kvxvirtual;
using kvxfuzz::require;

/// The lines in bytes that arrive in pieces of this size; an overrun is a line feed, which no line has.
std::vector<std::string> linesOf(std::string_view bytes, std::size_t piece)
{
    LineAssembler assembler;
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        assembler.append(bytes.substr(at, piece));
        while (auto line = assembler.next())
            lines.push_back(line->overrun ? "\n" : std::move(line->bytes));
    }
    return lines;
}

bool isHttp(std::string_view bytes, std::size_t piece)
{
    HttpGuard guard;
    bool isDetected = false;
    for (std::size_t at = 0; at < bytes.size() && !isDetected; at += piece)
        isDetected = guard.detects(bytes.substr(at, piece));
    return isDetected;
}

bool isPrintable(char c)
{
    return c >= ' ' && c <= '~';
}

void expectReply(const std::string& reply)
{
    require(reply.size() > 1 && reply.back() == '\n');
    require(std::all_of(reply.begin(), reply.end() - 1, isPrintable));
}

void talk(const std::string& bytes)
{
    VirtualInstrument instrument({}, [] { return InstrumentClock::Duration(0); });
    const auto lines = linesOf(bytes, std::max<std::size_t>(bytes.size(), 1));
    require(lines == linesOf(bytes, 1));
    require(isHttp(bytes, std::max<std::size_t>(bytes.size(), 1)) == isHttp(bytes, 1));
    for (const std::string& line : lines) {
        if (line == "\n")
            instrument.inputOverrun();
        else if (const auto response = instrument.receive(line))
            expectReply(response->bytes);
        // Up to a minute, so that programs run.
        instrument.advanceClock(std::chrono::milliseconds(line.size() * line.size() % 60'000));
    }
    require(instrument.receive("*CLS;*RST;:SYST:ERR?")->bytes == "0,\"No error\"\n");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    talk(std::string(reinterpret_cast<const char*>(data), size) + '\n');
    talk(kvxfuzz::spelledMessages(data, size) + '\n');
    return 0;
}
