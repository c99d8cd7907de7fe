#include "simulator/kvx2800t_simulator.h"

#include "simulator/random_source.h"

namespace TSRO
{

KVX2800TSimulator::KVX2800TSimulator() : InstBase({"Tessaro Instruments", "KVX2803T", "SN12345678901", "V1.00"}) {}

ViInt32 KVX2800TSimulator::ioTimeout()
{
    return 0;
}

ViStatus KVX2800TSimulator::setIoTimeout(ViInt32 /*milliseconds*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::open(const std::string& /*resource*/, const std::string& /*options*/)
{
    connected_ = true;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::close()
{
    connected_ = false;
    return VI_SUCCESS;
}

bool KVX2800TSimulator::isOpen()
{
    return connected_;
}

ViStatus KVX2800TSimulator::writeRaw(const std::string& /*command*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::queryRaw(const std::string& /*command*/, std::string& /*reply*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::clearStatus()
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::reset()
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::eventStatus(ViInt32& value)
{
    value = 0;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::questionableCondition(ViInt32 /*channel*/, ViInt32& value)
{
    value = 0;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::questionableEvent(ViInt32 /*channel*/, ViInt32& value)
{
    value = 0;
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::nextError(ViInt32& code, std::string& message)
{
    code = 0;
    message = "No error";
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::setSourceMode(SourceMode /*mode*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::sourceMode(SourceMode& mode)
{
    mode = static_cast<SourceMode>(random::uniformInteger(3));
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::setVoltageLevel(ViInt32 /*channel*/, double /*volts*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::voltageLevel(ViInt32 channel, double& volts)
{
    return drawVoltage(channel, volts);
}

ViStatus KVX2800TSimulator::setCurrentLevel(ViInt32 /*channel*/, double /*amperes*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentLevel(ViInt32 channel, double& amperes)
{
    return drawVoltage(channel, amperes);
}

ViStatus KVX2800TSimulator::setCurrentProtectionLevel(ViInt32 /*channel*/, double /*amperes*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentProtectionLevel(ViInt32 channel, double& amperes)
{
    return drawVoltage(channel, amperes);
}

ViStatus KVX2800TSimulator::setCurrentProtectionEnabled(ViInt32 /*channel*/, bool /*enabled*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::currentProtectionEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::setOutputEnabled(ViInt32 /*channel*/, bool /*enabled*/)
{
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::outputEnabled(ViInt32 /*channel*/, bool& enabled)
{
    enabled = random::boolean();
    return VI_SUCCESS;
}

ViStatus KVX2800TSimulator::drawVoltage(ViInt32 channel, double& value)
{
    const ChannelLimits& limits = channelLimits(channel);
    value = limits.voltageMin + random::uniformReal() * (limits.voltageMax - limits.voltageMin);
    return VI_SUCCESS;
}

} // namespace TSRO
