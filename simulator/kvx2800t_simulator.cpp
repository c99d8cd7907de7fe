#include "simulator/kvx2800t_simulator.h"

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

} // namespace TSRO
