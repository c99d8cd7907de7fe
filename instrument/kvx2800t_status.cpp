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
    std::string reply;
    const ViStatus status = port_.get("*ESR?", reply);
    if (status >= 0)
        value = parseLong(reply);
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
    std::string reply;
    const ViStatus status = port_.get(":SYSTem:ERRor?", reply);
    const ReplyFields fields(reply);
    if (status < 0 || fields.count() != 2)
        return status;
    code = parseInt(fields[0]);
    message = fields[1];
    return status;
}

} // namespace TSRO
