#include "tests/support/driver/session_memory.h"

#include "tests/support/allocation_count.h"

#include <KVX2800T.h>
#include <visa.h>

#include <array>
#include <cstdlib>
#include <string>

namespace kvxtest
{
namespace
{

constexpr std::size_t kSessions = 100;

void require(bool works)
{
    if (!works)
        std::abort();
}

ViSession openDriver(std::string resource, const char* options)
{
    ViSession vi = VI_NULL;
    require(KVX2800T_InitWithOptions(resource.data(), VI_FALSE, VI_FALSE, options, &vi) == VI_SUCCESS);
    ViReal64 volts = 0.0;
    require(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0) == VI_SUCCESS);
    require(KVX2800T_GetAttributeViReal64(vi, "OutputChannel3", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts) == VI_SUCCESS);
    return vi;
}

/// Its resource manager session, which closes both.
ViSession openVisa(const std::string& resource)
{
    ViSession manager = VI_NULL;
    ViSession vi = VI_NULL;
    require(viOpenDefaultRM(&manager) == VI_SUCCESS);
    require(viOpen(manager, resource.c_str(), VI_NULL, VI_NULL, &vi) == VI_SUCCESS);
    return manager;
}

/// Opens many sessions, closes them, and tells how much they have held in between.
template <class Open, class Close>
std::size_t bytesHeld(Open open, Close close)
{
    std::array<ViSession, kSessions> sessions{};
    const std::size_t before = liveBytes();
    for (ViSession& session : sessions)
        session = open();
    const std::size_t held = liveBytes() - before;
    for (const ViSession session : sessions)
        close(session);
    return held;
}

/// Of the second time: what the first one has made for good is there by then.
template <class Open, class Close>
std::size_t bytesOfSession(Open open, Close close)
{
    bytesHeld(open, close);
    return bytesHeld(open, close) / kSessions;
}

} // namespace

std::size_t bytesOfSimulatedSession()
{
    return bytesOfSession([] { return openDriver("", "Simulate=1, DriverSetup=Model:KVX2833T"); }, KVX2800T_close);
}

std::size_t bytesOfConnectedSession(const VirtualInstrumentProcess& instrument)
{
    const std::size_t whole =
        bytesOfSession([&] { return openDriver(instrument.resource(), "DriverSetup=Model:KVX2833T"); }, KVX2800T_close);
    return whole - bytesOfVisaSession(instrument);
}

std::size_t bytesOfVisaSession(const VirtualInstrumentProcess& instrument)
{
    return bytesOfSession([&] { return openVisa(instrument.resource()); }, viClose);
}

} // namespace kvxtest
