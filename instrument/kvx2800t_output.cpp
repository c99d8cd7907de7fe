#include "instrument/kvx2800t.h"

namespace TSRO
{

ViStatus KVX2800T::setOutputEnabled(ViInt32 channel, bool enabled)
{
    return port_.set(":OUTP:STAT", ChannelName{channel}, enabled);
}

ViStatus KVX2800T::outputEnabled(ViInt32 channel, bool& enabled)
{
    return port_.getFor(":OUTP:STAT", ChannelName{channel}, enabled);
}

} // namespace TSRO
