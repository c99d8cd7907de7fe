#include "api/guarded_frame.h"

#include "base/failures.h"

#include <cmath>
#include <exception>
#include <new>
#include <stdexcept>

namespace api
{
namespace
{

using drivekit::DriverSession;

constexpr std::size_t kQuotedReply = 80;

/// A reply as a record shows it: its first characters, those that do not print as "\xHH".
class QuotedReply
{
public:
    explicit QuotedReply(std::string_view reply)
    {
        for (const char c : reply.substr(0, kQuotedReply))
            append(static_cast<unsigned char>(c));
        if (reply.size() > kQuotedReply)
            for (const char c : std::string_view("..."))
                text_[length_++] = c;
    }

    operator std::string_view() const { return {text_.data(), length_}; } // NOLINT(google-explicit-constructor)

private:
    static constexpr std::size_t kLongestCharacter = 4;

    void append(unsigned char c)
    {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const bool prints = c >= ' ' && c <= '~' && c != '\\';
        if (prints) {
            text_[length_++] = static_cast<char>(c);
            return;
        }
        for (const char digit : {'\\', 'x', kDigits[c >> 4U], kDigits[c & 0xFU]})
            text_[length_++] = digit;
    }

    std::array<char, kQuotedReply * kLongestCharacter + 3> text_{};
    std::size_t length_ = 0;
};

ViStatus recordUnreadReply(DriverSession& session)
{
    return session.ReportErrorWithElaboration(base::kErrorUnexpectedResponse, drivekit::elaborations::kUnreadReply,
                                              {QuotedReply(session.instrument()->lastReply())});
}

/// The failure of a reader of replies, or of a table without the value that was asked for.
ViStatus recordOutOfRange(DriverSession& session, std::string_view what)
{
    return what == base::kInvalidKey ? session.ReportError(base::kErrorValueOutOfRange) : recordUnreadReply(session);
}

ViStatus recordSelectorNumber(DriverSession& session, ViConstString selector)
{
    return session.ReportError(base::kErrorInvalidRangeInSelector, {selector, drivekit::OutputChannel::kName});
}

/// Runs a reader of selectors. Of what it can throw, only numbers beyond their type are a selector's fault.
template <class Resolve>
ViStatus guardedSelector(DriverSession& session, ViConstString selector, Resolve resolve)
{
    try {
        return resolve();
    } catch (const std::out_of_range&) {
        return recordSelectorNumber(session, selector);
    }
}

/// A number as a record shows it: as short as it can be.
class NumberArgument
{
public:
    explicit NumberArgument(double number)
    {
        length_ = static_cast<std::size_t>(std::to_chars(text_.data(), text_.data() + text_.size(), number).ptr -
                                           text_.data());
    }

    operator std::string_view() const { return {text_.data(), length_}; } // NOLINT(google-explicit-constructor)

private:
    std::array<char, 32> text_{};
    std::size_t length_ = 0;
};

ViStatus checkLevel(DriverSession& session, ViInt32 channel, double level, double lowest, double highest,
                    std::string_view unit)
{
    // Not so for NaN.
    if (level >= lowest && level <= highest)
        return VI_SUCCESS;
    return session.ReportErrorWithElaboration(base::kErrorValueOutOfRange, drivekit::elaborations::kLevelBeyondLimits,
                                              {drivekit::OutputChannel::kName, drivekit::DecimalArgument(channel),
                                               NumberArgument(lowest), unit, NumberArgument(highest), unit,
                                               NumberArgument(level), unit});
}

} // namespace

ViStatus recordThrown(DriverSession& session)
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return session.ReportError(base::kErrorOutOfMemory);
    } catch (const std::out_of_range& error) {
        return recordOutOfRange(session, error.what());
    } catch (const std::invalid_argument&) {
        return recordUnreadReply(session);
    } catch (const std::exception& error) {
        return session.ReportErrorWithElaboration(base::kErrorCannotRecover, drivekit::elaborations::kThrown,
                                                  {error.what()});
    } catch (...) {
        return session.ReportError(base::kErrorCannotRecover);
    }
}

ViStatus recordOutcome(DriverSession& session, ViStatus status)
{
    return status == base::kErrorUnexpectedResponse ? recordUnreadReply(session) : recordFailure(session, status);
}

ViStatus selectChannels(DriverSession& session, ViConstString selector, drivekit::OutputSelection& channels)
{
    return guardedSelector(session, selector, [&] { return drivekit::resolveSelector(session, selector, channels); });
}

ViStatus selectChannel(DriverSession& session, ViConstString selector, ViInt32& channel)
{
    drivekit::PhysicalName<drivekit::OutputChannel> name;
    const ViStatus status =
        guardedSelector(session, selector, [&] { return drivekit::resolveSingleSelector(session, selector, name); });
    if (status >= 0)
        channel = drivekit::channelOf(name);
    return status;
}

ViStatus refuseCount(DriverSession& session, ViInt64 count, std::string_view function, std::string_view parameter)
{
    return session.ReportError(base::kErrorInvalidValue, {drivekit::DecimalArgument(count), function, parameter});
}

ViStatus checkNumber(DriverSession& session, ViReal64 number)
{
    if (std::isfinite(number))
        return VI_SUCCESS;
    return session.ReportErrorWithElaboration(base::kErrorValueOutOfRange, drivekit::elaborations::kNotFinite,
                                              {NumberArgument(number)});
}

ViStatus checkMember(DriverSession& session, const TSRO::KeywordTable& members, ViInt32 number)
{
    for (const TSRO::KeywordEntry& entry : members.entries())
        if (entry.value == number)
            return VI_SUCCESS;
    return session.ReportErrorWithElaboration(base::kErrorValueOutOfRange, drivekit::elaborations::kNoMember,
                                              {drivekit::DecimalArgument(number)});
}

ViStatus checkVoltage(DriverSession& session, ViInt32 channel, ViReal64 volts)
{
    const TSRO::ChannelLimits& limits = session.instrument()->channelLimits(channel);
    return checkLevel(session, channel, volts, limits.voltageMin, limits.voltageMax, "V");
}

ViStatus checkCurrent(DriverSession& session, ViInt32 channel, ViReal64 amperes)
{
    const TSRO::ChannelLimits& limits = session.instrument()->channelLimits(channel);
    return checkLevel(session, channel, amperes, limits.currentMin, limits.currentMax, "A");
}

} // namespace api
