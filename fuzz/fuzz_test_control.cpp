// Any lines to the test control of the virtual instrument, with messages (behind a ">") in between: each line is
// answered by ok or an error and a line feed, `log` by the lines that it announces, and the instrument works
// afterwards.
#include "fuzz/input.h"
#include "fuzz/spelled_commands.h"
#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/test_control.h"

#include <algorithm>
#include <sstream>

namespace
{

using namespace kvxvirtual;
using kvxfuzz::require;

constexpr std::array<std::string_view, 32> kCommands{"load CH1 10",
                                                     "load CH3 open",
                                                     "load ",
                                                     "inject -350 \"x\"",
                                                     "inject ",
                                                     "answer x",
                                                     "answer \\x41",
                                                     "answer ",
                                                     "answer-bytes x",
                                                     "answer-bytes ",
                                                     "swallow 1",
                                                     "swallow ",
                                                     "delay 10",
                                                     "delay 0",
                                                     "delay ",
                                                     "clear-faults",
                                                     "disconnect",
                                                     "power-cycle",
                                                     "advance 1",
                                                     "advance 1000",
                                                     "advance 86400000",
                                                     "advance ",
                                                     "esr 255",
                                                     "esr ",
                                                     "log",
                                                     "clear-log",
                                                     "sync",
                                                     "help",
                                                     ">*IDN?",
                                                     ">SYST:ERR?",
                                                     ">LIST:GROUP:PARA 1,5,1,1",
                                                     ">OUTP:STAT CH1,ON"};

/// Bytes from 0xE0 on are commands of the control, from 0x80 on what they are in messages.
std::string spelled(const std::uint8_t* data, std::size_t size)
{
    std::string text;
    for (std::size_t at = 0; at < size; ++at) {
        const std::size_t end = data[at] >= 0x80 && data[at] < 0xA0 ? std::min(at + 2, size) : at + 1;
        text +=
            data[at] >= 0xE0 ? std::string(kCommands[data[at] - 0xE0U]) : kvxfuzz::spelledMessages(data + at, end - at);
        at = end - 1;
    }
    return text;
}

void expectAnswer(const std::string& answer)
{
    require(answer.starts_with("ok") || answer.starts_with("error "));
    require(answer.ends_with('\n'));
    require(std::all_of(answer.begin(), answer.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
}

/// How many lines follow the first.
std::size_t furtherLines(const std::string& answer)
{
    return static_cast<std::size_t>(std::count(answer.begin(), answer.end(), '\n')) - 1;
}

void control(const std::string& lines)
{
    VirtualInstrument instrument({}, [] { return InstrumentClock::Duration(0); });
    TestControl control(instrument, [] {});
    std::istringstream in(lines);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with('>')) {
            instrument.receive(std::string_view(line).substr(1));
            continue;
        }
        const std::size_t logged = instrument.log().lines().size();
        const std::string answer = control.execute(line);
        expectAnswer(answer);
        require(furtherLines(answer) == 0 || furtherLines(answer) == logged);
    }
    require(control.execute("clear-faults") == "ok\n");
    require(instrument.receive("*CLS;*RST;:SYST:ERR?")->bytes == "0,\"No error\"\n");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    control(std::string(reinterpret_cast<const char*>(data), size));
    control(spelled(data, size));
    return 0;
}
