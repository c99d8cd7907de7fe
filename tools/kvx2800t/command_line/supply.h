#pragma once

#include "tools/kvx2800t/command_line/arguments.h"
#include "tools/kvx2800t/command_line/command.h"

#include <kvx2800t.hpp>

#include <string>
#include <vector>

/// Sessions of commands, and what they have in common.
namespace command_line
{

/// The options of every command that opens a session, and those of them that are about a real instrument.
std::span<const Option> sessionOptions();
std::span<const Option> connectionOptions();

/// The resource of the command line, of its option --resource or of the environment; none for a simulation. UsageError
/// without any.
std::string resourceOf(const Arguments& arguments);

/// The driver's options that the command line asks for, Profile:Bench among them. UsageError for what is no time-out.
kvx2800t::Options driverOptions(const Arguments& arguments);

/// Opens the session. A failure has the codes of an opening.
kvx2800t::Session openSupply(const Arguments& arguments);

/// Does something to the instrument, and fails with ExitCode::InstrumentError when the instrument has noted an error
/// about it, with all that its error queue has. What was noted before is none of it.
template <class Action>
void configure(kvx2800t::Session& supply, Action action);

/// What the error queue has, which empties it.
std::vector<kvx2800t::InstrumentError> takeErrors(kvx2800t::Session& supply);

/// "-222 Data out of range".
std::string errorText(const kvx2800t::InstrumentError& error);
Document documentOf(const std::vector<kvx2800t::InstrumentError>& errors);

/// The channels that a selector of the command line names, one by one and in its order: "CH1,CH3" and "CH1-3" are such.
/// An empty selector stands for those that there are in the instrument's source mode.
std::vector<std::string> channelsOf(const kvx2800t::Session& supply, const std::string& selector);

namespace detail
{
void forgetEvents(kvx2800t::Session& supply);
void requireNoEvents(kvx2800t::Session& supply);
} // namespace detail

template <class Action>
void configure(kvx2800t::Session& supply, Action action)
{
    detail::forgetEvents(supply);
    action();
    detail::requireNoEvents(supply);
}

} // namespace command_line
