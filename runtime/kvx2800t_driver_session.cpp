#include "runtime/kvx2800t_driver_session.h"

#include "instrument/kvx2800t.h"
#include "simulator/kvx2800t_simulator.h"

namespace
{

// IEEE 488.2 standard event status: query error, device-dependent error, execution error, command error.
constexpr ViInt32 kErrorBits = 0x3C;

std::shared_ptr<TSRO::InstBase> makeInstrument(bool simulate, const drivekit::SessionSettings& settings)
{
    if (simulate)
        return std::make_shared<TSRO::KVX2800TSimulator>();
    auto instrument = std::make_shared<TSRO::KVX2800T>();
    instrument->configureConnection(settings.connection);
    return instrument;
}

} // namespace

ViStatus KVX2800TDriverSession::OpenInstrument()
{
    setInstrument(makeInstrument(simulate(), settings()), simulate());
    const ViStatus status = instrument()->open(connectionDescriptor(), optionString());
    if (status >= 0)
        return status;
    return ReportInstrumentFailure(base::kErrorIo, drivekit::elaborations::kNoInstrument);
}

ViStatus KVX2800TDriverSession::CloseInstrument()
{
    // An exception may have ended init before there was one.
    if (!instrument())
        return VI_SUCCESS;
    const ViStatus status = instrument()->close();
    return status < 0 ? ReportInstrumentFailure(status) : status;
}

ViStatus KVX2800TDriverSession::InitializeStatus()
{
    if (simulate())
        return VI_SUCCESS;
    const ViStatus status = instrument()->clearStatus();
    return status < 0 ? ReportInstrumentFailure(status) : CheckStatus();
}

ViStatus KVX2800TDriverSession::ReadIdentity(std::string& manufacturer, std::string& model, std::string& serialNumber,
                                             std::string& firmwareRevision)
{
    const auto identity = instrument()->identity();
    manufacturer = identity->manufacturer;
    model = identity->model;
    serialNumber = identity->serialNumber;
    firmwareRevision = identity->firmwareRevision;
    return VI_SUCCESS;
}

ViStatus KVX2800TDriverSession::CheckStatus()
{
    if (!queryInstrumentStatus() || simulate())
        return VI_SUCCESS;
    ViInt32 events = 0;
    const ViStatus status = instrument()->eventStatus(events);
    if (status < 0)
        return ReportInstrumentFailure(status);
    return (events & kErrorBits) != 0 ? ReportError(base::kErrorInstrumentStatus) : status;
}

ViStatus KVX2800TDriverSession::StartSimulation()
{
    const auto simulator = makeInstrument(true, settings());
    const ViStatus status = simulator->open(connectionDescriptor(), optionString());
    if (status >= 0)
        setInstrument(simulator, true);
    return status;
}
