#pragma once

#include "runtime/repeated_capability.h"

#include <IviVisaType.h>

/// Repeated capability selectors (IVI-3.1 section 4.4): from the text a caller passes to the channels it names.
///
/// A selector is a list of names and ranges: "OutputChannel1", "OutputChannel1,OutputChannel3", "OutputChannel1-3",
/// "[OutputChannel1, OutputChannel2]". Letter case counts. Virtual names of the configuration store, which may map
/// to "CH1" to "CH6", and these themselves stand for what they map to. What is wrong with a selector is recorded on the
/// session and returned.
namespace drivekit
{

class DriverSession;

using OutputSelection = Selection<OutputChannel>;

/// The channels that `selector` names, in its order; null is an empty selector, which names none of several channels.
/// `selection` is empty when it is handed in, and meaningless after a failure.
/// A range with a number beyond 32 bits is base::kErrorInvalidRangeInSelector for a session that records exceptions.
/// @throws std::out_of_range "stoi argument out of range" for it otherwise.
ViStatus resolveSelector(DriverSession& session, ViConstString selector, OutputSelection& selection);

/// As resolveSelector, for a selector that must name exactly one channel.
ViStatus resolveSingleSelector(DriverSession& session, ViConstString selector, PhysicalName<OutputChannel>& name);

/// The instrument's number of a channel, 1 to 6: the last digit of its name; -1 for a name without one.
ViInt32 channelNumber(PhysicalName<OutputChannel> name);

/// The instrument channel of a physical name: the one that its channel table calls "CH" and the channel number.
/// @throws std::out_of_range "invalid map<K, T> key" when there is none.
ViInt32 channelOf(PhysicalName<OutputChannel> name);

} // namespace drivekit
