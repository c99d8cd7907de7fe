#include "tools/kvx2800t/command_line/commands/commands.h"
#include "tools/kvx2800t/command_line/failure.h"
#include "tools/kvx2800t/command_line/line_reader.h"
#include "tools/kvx2800t/command_line/status_names.h"
#include "tools/kvx2800t/command_line/supply.h"

namespace command_line::commands
{
namespace
{

/// Whether the instrument has to answer: a question mark outside of quotes.
bool isQuery(const std::string& message)
{
    char quote = '\0';
    for (const char c : message) {
        if (quote != '\0')
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '?')
            return true;
    }
    return false;
}

/// What came of a message.
struct Exchange
{
    std::string message;
    std::optional<std::string> response;
    std::optional<kvx2800t::Error> failure;
    std::vector<kvx2800t::InstrumentError> errors; ///< of the instrument's queue, behind it

    bool isGood() const { return !failure && errors.empty(); }
};

/// The queue may say why there was no answer; a link that fails here, too, has failed.
void readErrors(kvx2800t::Session& supply, Exchange& exchange)
{
    try {
        exchange.errors = takeErrors(supply);
    } catch (const kvx2800t::Error& error) {
        if (!exchange.failure)
            exchange.failure = error;
    }
}

Exchange exchangeOf(kvx2800t::Session& supply, const std::string& message)
{
    Exchange exchange{message, {}, {}, {}};
    try {
        if (isQuery(message))
            exchange.response = supply.query(message);
        else
            supply.write(message);
    } catch (const kvx2800t::Error& error) {
        exchange.failure = error;
    }
    readErrors(supply, exchange);
    return exchange;
}

std::string failureText(const kvx2800t::Error& error)
{
    return statusText(error.code()) + (error.text().empty() ? "" : ": ") + error.text();
}

Document documentOf(const Exchange& exchange)
{
    Document::Object members = {{"message", exchange.message}};
    if (exchange.response)
        members.emplace_back("response", *exchange.response);
    if (exchange.failure)
        members.emplace_back("failure", failureText(*exchange.failure));
    members.emplace_back("errors", command_line::documentOf(exchange.errors));
    return members;
}

/// A response stands alone on its line; what went wrong is told apart.
void tell(const Exchange& exchange, Console& console)
{
    if (console.json) {
        showLine(console, documentOf(exchange), "");
        return;
    }
    if (exchange.response)
        console.out << *exchange.response << std::endl;
    if (exchange.failure)
        console.errors << failureText(*exchange.failure) << std::endl;
    for (const auto& error : exchange.errors)
        console.errors << "error " << errorText(error) << std::endl;
}

/// Ends the program with the kind of the worst that has happened.
void requireGood(const std::vector<Exchange>& bad)
{
    for (const Exchange& exchange : bad)
        if (!exchange.errors.empty())
            throw Failure(ExitCode::InstrumentError, "the instrument has noted errors");
    for (const Exchange& exchange : bad)
        throw Failure(exitCodeOf(exchange.failure->code(), Phase::Working), "no answer to " + exchange.message);
}

/// The next message: of the command line, or of the input.
class Messages
{
public:
    Messages(std::vector<std::string> given, Console& console)
        : given_(std::move(given)), isInteractive_(given_.empty()), console_(console)
    {
    }

    std::optional<std::string> next()
    {
        if (isInteractive_)
            return readLine(console_, "scpi> ");
        return next_ < given_.size() ? std::optional(given_[next_++]) : std::nullopt;
    }

    /// A person sees what went wrong, and ends the program when it suits.
    bool areTyped() const { return isInteractive_ && console_.inIsTerminal; }

private:
    std::vector<std::string> given_;
    bool isInteractive_;
    std::size_t next_ = 0;
    Console& console_;
};

} // namespace

void scpi(const Arguments& arguments, Console& console)
{
    kvx2800t::Session supply = openSupply(arguments);
    Messages messages(arguments.all("MESSAGES"), console);
    if (messages.areTyped())
        console.out << "Messages to " << supply.get(kvx2800t::attribute::instrumentModel) << "; exit or Ctrl-D ends\n"
                    << std::flush;
    std::vector<Exchange> bad;
    for (auto message = messages.next(); message && *message != "exit"; message = messages.next()) {
        if (message->empty())
            continue;
        Exchange exchange = exchangeOf(supply, *message);
        tell(exchange, console);
        if (!exchange.isGood())
            bad.push_back(std::move(exchange));
    }
    if (!messages.areTyped())
        requireGood(bad);
}

} // namespace command_line::commands
