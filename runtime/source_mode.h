#pragma once

#include "instrument/inst_base.h"

namespace drivekit
{

/// Puts the instrument into the source mode that `channel` exists in: normal for 1 and 2, series for 5, parallel for 6;
/// 3 and 4 exist in every mode, and nothing is asked. A change is followed by a busy wait of one second, which the
/// outputs need. Returns the status of the operation that failed, or of the last one; records nothing.
ViStatus ensureSourceMode(TSRO::InstBase& instrument, ViInt32 channel);

/// As ensureSourceMode, for a mode by itself.
ViStatus changeSourceMode(TSRO::InstBase& instrument, TSRO::SourceMode required);

} // namespace drivekit
