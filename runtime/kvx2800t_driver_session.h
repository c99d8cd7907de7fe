#pragma once

#include "runtime/driver_session.h"

/// The driver session of a KVX2800T power supply, real or simulated.
class KVX2800TDriverSession : public drivekit::DriverSession
{
public:
    using DriverSession::DriverSession;

    ViStatus OpenInstrument() override;
    ViStatus CloseInstrument() override;
    ViStatus InitializeStatus() override;
    ViStatus ReadIdentity(std::string& manufacturer, std::string& model, std::string& serialNumber,
                          std::string& firmwareRevision) override;
    ViStatus CheckStatus() override;
    ViStatus StartSimulation() override;
};
