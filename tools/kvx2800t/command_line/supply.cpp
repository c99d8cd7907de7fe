#include "tools/kvx2800t/command_line/supply.h"

#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/units.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace command_line
{
namespace
{

constexpr auto kSessionOptions = std::to_array<Option>({
    {"-r,--resource", "RESOURCE", "VISA resource or name of the configuration store", "KVX2800T_RESOURCE"},
    {"--timeout", "TIME", "How long the instrument may take to answer [2s]"},
    {"--simulate", "", "Drive an instrument inside the program, which is new each time"},
});

/// Channels by their numbers, in the source modes normal, series and parallel.
constexpr std::array<std::string_view, 3> kChannelsOfModes = {"CH1,CH2,CH3,CH4", "CH5,CH3,CH4", "CH6,CH3,CH4"};

constexpr double kLongestTimeout = 3600.0;

std::chrono::milliseconds timeoutOf(const std::string& text)
{
    const auto seconds = parseQuantity(text, Quantity::Time);
    if (!seconds || *seconds < 0.001 || *seconds > kLongestTimeout)
        throw UsageError("--timeout: not a time from 1ms to 1h: " + text);
    return std::chrono::milliseconds(std::llround(*seconds * 1000.0));
}

/// What stands in front of the number in which a name ends.
std::string_view stemOf(std::string_view name)
{
    return name.substr(0, name.find_last_not_of("0123456789") + 1);
}

std::optional<int> numberOf(std::string_view digits)
{
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(number) : std::nullopt;
}

/// Appends the channels of an item. What is no range of a few channels is left to the driver, which knows what is
/// wrong.
void appendItem(std::string_view item, std::vector<std::string>& channels)
{
    const std::size_t dash = item.find('-');
    const std::string_view first = item.substr(0, dash);
    const auto from = numberOf(first.substr(stemOf(first).size()));
    const auto to = dash == std::string_view::npos ? std::nullopt : numberOf(item.substr(dash + 1));
    constexpr int kMost = 100;
    if (!from || !to || *to < *from || *to - *from > kMost) {
        channels.emplace_back(item);
        return;
    }
    for (int number = *from; number <= *to; ++number)
        channels.push_back(std::string(stemOf(first)) + std::to_string(number));
}

} // namespace

std::span<const Option> sessionOptions()
{
    return kSessionOptions;
}

std::span<const Option> connectionOptions()
{
    return std::span(kSessionOptions).first(2);
}

std::string resourceOf(const Arguments& arguments)
{
    if (arguments.has("--simulate"))
        return "";
    if (const auto positional = arguments.one("RESOURCE"))
        return *positional;
    if (const auto option = arguments.one("--resource"))
        return *option;
    throw UsageError("which instrument? Name it with --resource or in the environment variable KVX2800T_RESOURCE; "
                     "`kvx2800t find` shows what there is");
}

kvx2800t::Options driverOptions(const Arguments& arguments)
{
    kvx2800t::Options options;
    if (arguments.has("--simulate"))
        options.simulate = true;
    if (const auto timeout = arguments.one("--timeout")) {
        options.ioTimeout = timeoutOf(*timeout);
        options.openTimeout = options.ioTimeout;
    }
    return options;
}

kvx2800t::Session openSupply(const Arguments& arguments)
{
    const std::string resource = resourceOf(arguments);
    const kvx2800t::Options options = driverOptions(arguments);
    try {
        return kvx2800t::Session(resource, options);
    } catch (const kvx2800t::Error& error) {
        const bool isSilent = error.text().empty();
        throw Failure(exitCodeOf(error.code(), Phase::Opening), error.code(),
                      isSilent ? "no library of the driver says why; `kvx2800t doctor` may" : error.text());
    }
}

std::vector<kvx2800t::InstrumentError> takeErrors(kvx2800t::Session& supply)
{
    // An instrument that never ends its queue must not keep the program.
    constexpr std::size_t kMost = 1000;
    std::vector<kvx2800t::InstrumentError> errors;
    for (auto error = supply.nextInstrumentError(); error.code != 0 && errors.size() < kMost;
         error = supply.nextInstrumentError())
        errors.push_back(error);
    return errors;
}

std::string errorText(const kvx2800t::InstrumentError& error)
{
    std::string text = error.message;
    std::erase(text, '"');
    return std::to_string(error.code) + ' ' + text;
}

Document documentOf(const std::vector<kvx2800t::InstrumentError>& errors)
{
    Document::Array items;
    for (const auto& error : errors) {
        std::string text = error.message;
        std::erase(text, '"');
        items.emplace_back(Document::Object{{"code", static_cast<int>(error.code)}, {"text", std::move(text)}});
    }
    return items;
}

std::vector<std::string> channelsOf(const kvx2800t::Session& supply, const std::string& selector)
{
    std::string_view rest = selector;
    if (selector.empty())
        rest = kChannelsOfModes.at(static_cast<std::size_t>(supply.sourceMode().get()));
    std::vector<std::string> channels;
    while (true) {
        const std::size_t comma = rest.find(',');
        appendItem(rest.substr(0, comma), channels);
        if (comma == std::string_view::npos)
            return channels;
        rest.remove_prefix(comma + 1);
    }
}

namespace detail
{

void forgetEvents(kvx2800t::Session& supply)
{
    static_cast<void>(supply.eventStatus());
}

void requireNoEvents(kvx2800t::Session& supply)
{
    const kvx2800t::EventStatus events = supply.eventStatus();
    if (!events.queryError() && !events.deviceError() && !events.executionError() && !events.commandError())
        return;
    std::string text = "the instrument has noted an error";
    for (const auto& error : takeErrors(supply))
        text += "\n  " + errorText(error);
    throw Failure(ExitCode::InstrumentError, IVI_ERROR_INSTRUMENT_STATUS, text);
}

} // namespace detail

} // namespace command_line
