#pragma once

#include "tools/kvx2800t/panel/action.h"
#include "tools/kvx2800t/panel/lines.h"
#include "tools/kvx2800t/panel/state.h"

#include <optional>
#include <string>
#include <vector>

namespace panel
{

/// The instrument of a resource, as the panel reads and operates it; a simulated one that remembers without a resource.
/// For one thread. Everything throws kvx2800t::Error when the driver refuses it or the instrument is not reached, and
/// std::exception otherwise.
class Instrument
{
public:
    /// Opens a session and reads who the instrument is, its settings and which channels have lists.
    explicit Instrument(const std::string& resource);

    /// How a program would open such a session.
    static SessionTexts sessionTexts(const std::string& resource);

    /// Does what the action asks for; a warning or VI_SUCCESS.
    ViStatus perform(const Action& action);

    /// What the session has sent ("> ") and received ("< ") since this was asked last, a thousand messages at most.
    std::vector<std::string> takeMessages();

    /// What is set, and the source mode.
    void readSettings();

    /// What changes by itself: meters, outputs, trips, and lists that are not stopped. `wholly`: stopped lists, too.
    void readMeters(bool wholly);

    /// All that was read last.
    const InstrumentState& state() const { return state_; }

    /// Takes the entries of the error queue.
    std::vector<kvx2800t::InstrumentError> takeErrors();

    /// Of the channels that have groups.
    std::vector<int> channelsWithLists() const;

    LoadedList readList(int channel);

    /// Looks once more whether a channel has a list.
    void noticeList(int channel);

private:
    Identity readIdentity();
    ChannelSettings readChannelSettings(int number) const;
    void readListProgress(ListProgress& progress) const;

    kvx2800t::Session session_;
    InstrumentState state_;
};

} // namespace panel
