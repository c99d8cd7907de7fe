#pragma once

#include "tools/kvx2800t/panel/action.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What the hub tells of the instrument; each becomes a message to the pages (messages.h).
namespace panel
{

enum class LinkState
{
    Connecting,
    Connected,
    Lost
};

struct Link
{
    LinkState state = LinkState::Connecting;
    std::string text; ///< why it was lost
};

struct Identity
{
    std::string manufacturer;
    std::string model;
    std::string serial;
    std::string firmware;
};

/// What is set; volts and amperes.
struct ChannelSettings
{
    double voltageLevel = 0.0;
    double currentLimit = 0.0;
    double maxVoltage = 0.0;
    double maxCurrent = 0.0;
    bool ovpEnabled = false;
    double ovpLimit = 0.0;
    bool ocpEnabled = false;
    double ocpLevel = 0.0;
};

struct ChannelState
{
    ChannelSettings settings;
    bool outputEnabled = false;
    kvx2800t::Reading reading;
    kvx2800t::QuestionableStatus condition;
};

/// How far the list of a channel has come.
struct ListProgress
{
    int channel = 1;
    ViInt32 groups = 0;
    ViInt32 cycles = 0; ///< 0 without end
    kvx2800t::ProgramStatus<kvx2800t::ListState> status;
};

/// What is known while there is a connection: measured afresh for each snapshot.
struct InstrumentState
{
    Identity identity;
    kvx2800t::SourceMode sourceMode = kvx2800t::SourceMode::normal;
    std::array<ChannelState, kChannelCount> channels;
    std::vector<ListProgress> lists; ///< of channels whose list has groups
};

struct Snapshot
{
    std::uint64_t sequence = 0;
    double seconds = 0.0; ///< since the hub began
    Link link;
    std::optional<InstrumentState> instrument; ///< nothing unless connected, so that no page shows what was once
};

struct ErrorReport
{
    bool cleared = false; ///< what was reported before is gone
    std::vector<kvx2800t::InstrumentError> entries;
};

/// How an action has ended.
struct Result
{
    std::int64_t id = 0;
    bool ok = true;
    std::optional<ViStatus> code; ///< of a failure or a warning of the driver
    std::string name;             ///< the status's or, without one, "BUSY", "CANCELLED" or "FAILED"
    std::string text;
};

/// What an action was, in SCPI and in the languages of programs.
struct Lines
{
    std::int64_t id = 0;
    std::vector<std::string> scpi; ///< "> " in front of what was sent, "< " of what was received
    std::vector<std::string> c;
    std::vector<std::string> python;
};

struct LoadedList
{
    int channel = 1;
    std::vector<kvx2800t::ListGroup> groups;
    ViInt32 cycles = 1;
    kvx2800t::ListEnd end = kvx2800t::ListEnd::off;
};

} // namespace panel
