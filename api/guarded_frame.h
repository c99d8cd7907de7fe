#pragma once

#include "api/arguments.h"
#include "api/checks.h"
#include "api/frame.h"
#include "instrument/enumerations.h"
#include "runtime/selector.h"
#include "runtime/source_mode.h"

#include <tuple>
#include <type_traits>
#include <utility>

/// The frame of functions that always return a status, and the few shapes that instrument-specific functions have.
///
/// What is wrong with an argument is found before anything is sent. Every failure is recorded once, with what a person
/// needs to see: the reply that could not be read, the channel and the limits of a level.
namespace api
{

/// As recordFailure(); base::kErrorUnexpectedResponse is recorded with the reply.
ViStatus recordOutcome(drivekit::DriverSession& session, ViStatus status);

/// As framedSession(), and nothing leaves but a status: what the body throws is recorded, and the lock given back. A
/// session that an exception has left without its instrument is base::kErrorNotInitialized.
template <class Body>
ViStatus guardedSession(ViSession vi, Body body)
{
    return framedSession<Exceptions::Recorded>(vi, [&](drivekit::DriverSession& session) -> ViStatus {
        return session.instrument() == nullptr ? session.ReportError(base::kErrorNotInitialized) : body(session);
    });
}

/// The channel of a selector that must name exactly one.
ViStatus selectChannel(drivekit::DriverSession& session, ViConstString selector, ViInt32& channel);

// ---- Settings as C programs pass them

/// The C type of a setting: enumerations pass as their numbers.
template <class Setting>
struct CTypeOf
{
    using Type = ViInt32;
};
template <>
struct CTypeOf<bool>
{
    using Type = ViBoolean;
};
template <>
struct CTypeOf<double>
{
    using Type = ViReal64;
};
template <class Setting>
using CType = typename CTypeOf<Setting>::Type;

template <class Setting>
ViStatus checkSetting(drivekit::DriverSession& session, CType<Setting> value)
{
    if constexpr (std::is_enum_v<Setting>)
        return checkMember(session, TSRO::kKeywordTable<Setting>, value);
    else if constexpr (std::is_same_v<Setting, double>)
        return checkNumber(session, value);
    else
        return VI_SUCCESS;
}

template <class... Settings>
ViStatus checkSettings(drivekit::DriverSession& session, CType<Settings>... values)
{
    ViStatus status = VI_SUCCESS;
    static_cast<void>((((status = checkSetting<Settings>(session, values)) >= 0) && ...));
    return status;
}

template <class Setting>
Setting settingOf(CType<Setting> value)
{
    if constexpr (std::is_same_v<Setting, bool>)
        return value != VI_FALSE;
    else
        return static_cast<Setting>(value);
}

/// Stores what `read(settings...)` gives in the outputs, if it succeeds.
template <class... Settings, class Read>
ViStatus readInto(drivekit::DriverSession& session, Read read, CType<Settings>*... outputs)
{
    std::tuple<Settings...> settings{};
    const ViStatus status = std::apply(read, settings);
    // checkPointers() has let no null pass. NOLINTNEXTLINE(clang-analyzer-core.NullDereference)
    const auto store = [&](Settings... values) { ((*outputs = static_cast<CType<Settings>>(values)), ...); };
    if (status == VI_SUCCESS)
        std::apply(store, settings);
    return recordOutcome(session, status);
}

// ---- The shapes

/// A function and the list of its output parameters, for the record of a null pointer.
struct Signature
{
    std::string_view function;
    std::string_view outputs;
};

/// Operations on the instrument, on a channel of it, or on the list or delay program of the selected channel.
template <class... Settings>
using Operation = ViStatus (TSRO::InstBase::*)(Settings... settings);
template <class... Settings>
using ChannelOperation = ViStatus (TSRO::InstBase::*)(ViInt32 channel, Settings... settings);

/// Runs `step(instrument, channel)` for every channel, each in the source mode it needs, and then the session's status
/// check. The first status that is not 0 ends it.
template <class Step>
ViStatus configureEach(drivekit::DriverSession& session, const drivekit::OutputSelection& channels, Step step)
{
    TSRO::InstBase& instrument = *session.instrument();
    for (const auto& name : channels) {
        const ViInt32 channel = drivekit::channelOf(name);
        ViStatus status = drivekit::ensureSourceMode(instrument, channel);
        if (status == VI_SUCCESS)
            status = step(instrument, channel);
        if (status != VI_SUCCESS)
            return recordOutcome(session, status);
    }
    return session.CheckStatus();
}

/// `step(instrument, channel, settings...)` on the list or delay program of a channel, which is selected first.
template <class Step>
auto onProgram(Step step)
{
    return [step](TSRO::InstBase& instrument, ViInt32 channel, auto&... settings) -> ViStatus {
        const ViStatus status = instrument.selectChannel(channel);
        return status == VI_SUCCESS ? step(instrument, channel, settings...) : status;
    };
}

/// As configureEach(), behind `check(session, channels)`, which records what it refuses.
template <class Check, class Step>
ViStatus configure(ViSession vi, ViConstString channelName, Check check, Step step)
{
    return guardedSession(vi, [&](drivekit::DriverSession& session) {
        drivekit::OutputSelection channels;
        ViStatus status = drivekit::resolveSelector(session, channelName, channels);
        if (status >= 0)
            status = check(session, channels);
        return status < 0 ? status : configureEach(session, channels, step);
    });
}

/// For configure(), where no argument can be wrong.
inline constexpr auto kNothingToCheck = [](drivekit::DriverSession& /*session*/,
                                           const drivekit::OutputSelection& /*channels*/) -> ViStatus {
    return VI_SUCCESS;
};

template <class... Settings>
ViStatus configureChannel(ViSession vi, ViConstString channelName, ChannelOperation<Settings...> operation,
                          std::type_identity_t<CType<Settings>>... values)
{
    return configure(
        vi, channelName,
        [&](drivekit::DriverSession& session, const drivekit::OutputSelection& /*channels*/) {
            return checkSettings<Settings...>(session, values...);
        },
        [&](TSRO::InstBase& instrument, ViInt32 channel) {
            return (instrument.*operation)(channel, settingOf<Settings>(values)...);
        });
}

/// As configureChannel(), for the list or delay program of each channel, which is selected first.
template <class... Settings>
ViStatus configureProgram(ViSession vi, ViConstString channelName, Operation<Settings...> operation,
                          std::type_identity_t<CType<Settings>>... values)
{
    return configure(
        vi, channelName,
        [&](drivekit::DriverSession& session, const drivekit::OutputSelection& /*channels*/) {
            return checkSettings<Settings...>(session, values...);
        },
        onProgram([&](TSRO::InstBase& instrument, ViInt32 /*channel*/) {
            return (instrument.*operation)(settingOf<Settings>(values)...);
        }));
}

template <class... Settings>
ViStatus configureInstrument(ViSession vi, Operation<Settings...> operation,
                             std::type_identity_t<CType<Settings>>... values)
{
    return guardedSession(vi, [&](drivekit::DriverSession& session) {
        ViStatus status = checkSettings<Settings...>(session, values...);
        if (status >= 0)
            status = recordOutcome(session, (*session.instrument().*operation)(settingOf<Settings>(values)...));
        return status == VI_SUCCESS ? session.CheckStatus() : status;
    });
}

/// Reads from one channel. The outputs change only on success.
template <class... Settings, class Read>
ViStatus query(ViSession vi, ViConstString channelName, const Signature& signature, Read read,
               CType<Settings>*... outputs)
{
    return guardedSession(vi, [&](drivekit::DriverSession& session) {
        ViStatus status = checkPointers(vi, signature.function, signature.outputs, outputs...);
        if (status < 0)
            return status;
        ViInt32 channel = 0;
        status = selectChannel(session, channelName, channel);
        if (status < 0)
            return status;
        return readInto<Settings...>(
            session, [&](Settings&... settings) { return read(*session.instrument(), channel, settings...); },
            outputs...);
    });
}

template <class... Settings>
ViStatus queryChannel(ViSession vi, ViConstString channelName, const Signature& signature,
                      ChannelOperation<Settings&...> operation, std::type_identity_t<CType<Settings>>*... outputs)
{
    return query<Settings...>(
        vi, channelName, signature,
        [operation](TSRO::InstBase& instrument, ViInt32 channel, Settings&... settings) {
            return (instrument.*operation)(channel, settings...);
        },
        outputs...);
}

/// As queryChannel(), of the list or delay program of a channel, which is selected first.
template <class... Settings>
ViStatus queryProgram(ViSession vi, ViConstString channelName, const Signature& signature,
                      Operation<Settings&...> operation, std::type_identity_t<CType<Settings>>*... outputs)
{
    return query<Settings...>(
        vi, channelName, signature,
        onProgram([operation](TSRO::InstBase& instrument, ViInt32 /*channel*/, Settings&... settings) {
            return (instrument.*operation)(settings...);
        }),
        outputs...);
}

template <class... Settings>
ViStatus queryInstrument(ViSession vi, const Signature& signature, Operation<Settings&...> operation,
                         std::type_identity_t<CType<Settings>>*... outputs)
{
    return guardedSession(vi, [&](drivekit::DriverSession& session) {
        const ViStatus status = checkPointers(vi, signature.function, signature.outputs, outputs...);
        return status < 0 ? status
                          : readInto<Settings...>(
                                session,
                                [&](Settings&... settings) { return (*session.instrument().*operation)(settings...); },
                                outputs...);
    });
}

} // namespace api
