#pragma once

#include "virtual_instrument/scpi/virtual_instrument.h"

#include <functional>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// The language of the test-control port: one command a line, each answered by one line that begins with "ok" or with
/// "error" and the reason; only `log` adds the lines that its answer announces. The commands are a table, see `help`.
class TestControl
{
public:
    using Action = std::function<void()>;

    /// `disconnectClients` cuts the connections of all clients. `instrument` must outlive the control.
    TestControl(VirtualInstrument& instrument, Action disconnectClients);

    /// Executes one line, given without its line feed; returns the answer with its line feeds.
    std::string execute(std::string_view line);

private:
    using Handler = std::string (TestControl::*)(std::string_view argument);
    struct Row
    {
        std::string_view name;
        std::string_view usage;
        Handler handler;
    };
    static const Row kRows[];

    std::string load(std::string_view argument);
    std::string inject(std::string_view argument);
    std::string answerLine(std::string_view argument);
    std::string answerBytes(std::string_view argument);
    std::string swallow(std::string_view argument);
    std::string delay(std::string_view argument);
    std::string clearFaults(std::string_view argument);
    std::string disconnect(std::string_view argument);
    std::string powerCycle(std::string_view argument);
    std::string advance(std::string_view argument);
    std::string eventStatus(std::string_view argument);
    std::string panel(std::string_view argument);
    std::string log(std::string_view argument);
    std::string clearLog(std::string_view argument);
    std::string sync(std::string_view argument);
    std::string help(std::string_view argument);

    VirtualInstrument& instrument_;
    Action disconnectClients_;
};

/// Reads a load: "open", or ohms of 0 or more.
struct LoadText
{
    bool valid = false;
    std::optional<double> ohms;
};
LoadText parseLoad(std::string_view text);

} // namespace kvxvirtual
