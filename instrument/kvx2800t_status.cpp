#include "instrument/kvx2800t.h"

namespace TSRO
{

ViStatus KVX2800T::clearStatus()
{
    return port_.send("*CLS");
}

ViStatus KVX2800T::reset()
{
    return port_.send("*RST");
}

ViStatus KVX2800T::eventStatus(ViInt32& value)
{
    LongInteger events;
    const ViStatus status = port_.get("*ESR?", events);
    if (status >= 0)
        value = events.value;
    return status;
}

ViStatus KVX2800T::questionableCondition(ViInt32 channel, ViInt32& value)
{
    return port_.get(Header::withSuffix(":STATus:QUEStionable:INSTrument:ISUMmary{}:CONDition?", channel), value);
}

ViStatus KVX2800T::questionableEvent(ViInt32 channel, ViInt32& value)
{
    return port_.get(Header::withSuffix(":STATus:QUEStionable:INSTrument:ISUMmary{}:EVENt?", channel), value);
}

ViStatus KVX2800T::nextError(ViInt32& code, std::string& message)
{
    ErrorEntry entry;
    const ViStatus status = port_.get(":SYSTem:ERRor?", entry);
    if (status < 0)
        return status;
    if (!entry.isEntry) {
        port_.distrust();
        return status;
    }
    code = entry.code;
    message = std::move(entry.message);
    return status;
}

} // namespace TSRO
