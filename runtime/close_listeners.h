#pragma once

#include <IviVisaType.h>

#include <functional>

namespace drivekit
{

/// Told of a session that is about to be closed, while its handle is still valid.
using CloseListener = std::function<void(ViSession)>;

/// Adds a listener for the rest of the process. Any thread may call this.
void addCloseListener(CloseListener listener);

/// Calls every listener, in the order in which they were added. An empty one ends the process: somebody who keeps state
/// for each session would keep it for ever.
void notifyCloseListeners(ViSession vi);

} // namespace drivekit
