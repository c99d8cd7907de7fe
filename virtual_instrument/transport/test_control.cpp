#include "virtual_instrument/transport/test_control.h"

#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace kvxvirtual
{
namespace
{

/// The queue holds SCPI's own errors and a device's positive ones.
constexpr int kLowestErrorCode = -499;
constexpr int kHighestErrorCode = 32767;
constexpr int kLargestRegister = 255;
/// A day; keeps a mistyped number from parking every client.
constexpr int kLongestMilliseconds = 86'400'000;

std::string ok()
{
    return "ok\n";
}

std::string error(std::string_view reason)
{
    return "error " + std::string(reason) + '\n';
}

/// An integer from 0 to `largest`.
std::optional<int> countIn(std::string_view text, int largest)
{
    const auto value = integerIn(text);
    return value && *value >= 0 && *value <= largest ? value : std::nullopt;
}

std::optional<std::string_view> quotedText(std::string_view text)
{
    if (text.size() < 2 || !text.starts_with('"') || !text.ends_with('"'))
        return std::nullopt;
    return text.substr(1, text.size() - 2);
}

} // namespace

LoadText parseLoad(std::string_view text)
{
    if (equalIgnoringCase(text, "open"))
        return {true, std::nullopt};
    const auto ohms = finiteNumberIn(text);
    return {ohms && *ohms >= 0.0, ohms};
}

const TestControl::Row TestControl::kRows[] = {
    {"load", "load <channel> <ohms>|open", &TestControl::load},
    {"inject", "inject <code> \"<text>\"", &TestControl::inject},
    {"answer", "answer <escaped text>", &TestControl::answerLine},
    {"answer-bytes", "answer-bytes <escaped bytes>", &TestControl::answerBytes},
    {"swallow", "swallow <count>", &TestControl::swallow},
    {"delay", "delay <milliseconds>", &TestControl::delay},
    {"clear-faults", "clear-faults", &TestControl::clearFaults},
    {"disconnect", "disconnect", &TestControl::disconnect},
    {"power-cycle", "power-cycle", &TestControl::powerCycle},
    {"advance", "advance <milliseconds>", &TestControl::advance},
    {"esr", "esr <bits>", &TestControl::eventStatus},
    {"panel", "panel", &TestControl::panel},
    {"log", "log", &TestControl::log},
    {"clear-log", "clear-log", &TestControl::clearLog},
    {"sync", "sync", &TestControl::sync},
    {"help", "help", &TestControl::help},
};

TestControl::TestControl(VirtualInstrument& instrument, Action disconnectClients)
    : instrument_(instrument), disconnectClients_(std::move(disconnectClients))
{
}

std::string TestControl::execute(std::string_view line)
{
    const auto command = splitWord(trimmed(line));
    const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                         [&](const Row& candidate) { return candidate.name == command.word; });
    if (row == std::end(kRows))
        return error("unknown command; help lists them");
    const bool takesArgument = row->usage != row->name;
    if (!takesArgument && !command.rest.empty())
        return error("usage: " + std::string(row->usage));
    const auto answer = (this->*row->handler)(command.rest);
    instrument_.statusMayHaveChanged();
    return answer.empty() ? error("usage: " + std::string(row->usage)) : answer;
}

// A handler returns an empty text for an argument that it does not understand.

std::string TestControl::load(std::string_view argument)
{
    const auto [name, value] = splitWord(argument);
    const auto channel = channelNamed(name);
    const auto load = parseLoad(value);
    if (!channel || !load.valid)
        return {};
    instrument_.supply().update();
    instrument_.supply().setLoad(*channel, load.ohms);
    instrument_.supply().update();
    return ok();
}

std::string TestControl::inject(std::string_view argument)
{
    const auto [number, rest] = splitWord(argument);
    const auto code = integerIn(number);
    const auto text = quotedText(rest);
    if (!code || *code < kLowestErrorCode || *code > kHighestErrorCode || *code == 0 || !text)
        return {};
    instrument_.status().report(*code, std::string(*text));
    return ok();
}

std::string TestControl::answerLine(std::string_view argument)
{
    auto bytes = unescaped(argument);
    if (!bytes)
        return {};
    instrument_.queueAnswer(std::move(*bytes) + '\n');
    return ok();
}

std::string TestControl::answerBytes(std::string_view argument)
{
    auto bytes = unescaped(argument);
    if (!bytes)
        return {};
    instrument_.queueAnswer(std::move(*bytes));
    return ok();
}

std::string TestControl::swallow(std::string_view argument)
{
    const auto count = countIn(argument, std::numeric_limits<int>::max());
    if (!count)
        return {};
    instrument_.swallowReplies(*count);
    return ok();
}

std::string TestControl::delay(std::string_view argument)
{
    const auto milliseconds = countIn(argument, kLongestMilliseconds);
    if (!milliseconds)
        return {};
    instrument_.setReplyDelay(std::chrono::milliseconds(*milliseconds));
    return ok();
}

std::string TestControl::clearFaults(std::string_view)
{
    instrument_.clearFaults();
    return ok();
}

std::string TestControl::disconnect(std::string_view)
{
    disconnectClients_();
    return ok();
}

std::string TestControl::powerCycle(std::string_view)
{
    instrument_.powerCycle();
    return ok();
}

std::string TestControl::advance(std::string_view argument)
{
    const auto milliseconds = countIn(argument, kLongestMilliseconds);
    if (!milliseconds)
        return {};
    instrument_.advanceClock(std::chrono::milliseconds(*milliseconds));
    return ok();
}

std::string TestControl::eventStatus(std::string_view argument)
{
    const auto bits = countIn(argument, kLargestRegister);
    if (!bits)
        return {};
    instrument_.status().setEventStatusBits(static_cast<unsigned int>(*bits));
    return ok();
}

std::string TestControl::panel(std::string_view)
{
    const auto& panel = instrument_.frontPanel();
    return std::string("ok ") + (panel.remote() ? "remote" : "local") + (panel.remoteEnabled() ? "" : " disabled") +
           (panel.lockedOut() ? " locked-out" : "") + '\n';
}

std::string TestControl::log(std::string_view)
{
    const auto& log = instrument_.log();
    auto answer = "ok " + std::to_string(log.lines().size()) + ' ' + std::to_string(log.lost()) + '\n';
    for (const auto& line : log.lines())
        answer += escaped(line) + '\n';
    return answer;
}

std::string TestControl::clearLog(std::string_view)
{
    instrument_.log().clear();
    return ok();
}

std::string TestControl::sync(std::string_view)
{
    // Every control command is executed only after what clients had sent before it, so there is nothing left to do.
    return ok();
}

std::string TestControl::help(std::string_view)
{
    std::string answer = "ok";
    std::string_view separator = " ";
    for (const auto& row : kRows) {
        answer += separator;
        answer += row.usage;
        separator = "; ";
    }
    return answer + '\n';
}

} // namespace kvxvirtual
