#pragma once

#include "instrument/kvx2800t.h"

#include <gmock/gmock.h>

#include <string>

namespace kvxtest
{

/// An instrument whose operations a test expects one by one. Those that no test expects are the ones of an instrument
/// without a connection: they fail. Made in a source of its own, which alone has the mocked functions to compile.
class MockInstrument : public TSRO::KVX2800T
{
public:
    MockInstrument();
    explicit MockInstrument(TSRO::Identity identity);
    ~MockInstrument() override;

    MOCK_METHOD(ViInt32, ioTimeout, (), (override));
    MOCK_METHOD(ViStatus, setIoTimeout, (ViInt32), (override));
    MOCK_METHOD(ViStatus, open, (const std::string&, const std::string&), (override));
    MOCK_METHOD(ViStatus, close, (), (override));
    MOCK_METHOD(bool, isOpen, (), (override));
    MOCK_METHOD(ViStatus, writeRaw, (const std::string&), (override));
    MOCK_METHOD(ViStatus, queryRaw, (const std::string&, std::string&), (override));
    MOCK_METHOD(ViStatus, clearStatus, (), (override));
    MOCK_METHOD(ViStatus, reset, (), (override));
    MOCK_METHOD(ViStatus, eventStatus, (ViInt32&), (override));
    MOCK_METHOD(ViStatus, questionableCondition, (ViInt32, ViInt32&), (override));
    MOCK_METHOD(ViStatus, questionableEvent, (ViInt32, ViInt32&), (override));
    MOCK_METHOD(ViStatus, nextError, (ViInt32&, std::string&), (override));
    MOCK_METHOD(ViStatus, setSourceMode, (TSRO::SourceMode), (override));
    MOCK_METHOD(ViStatus, sourceMode, (TSRO::SourceMode&), (override));
    MOCK_METHOD(ViStatus, setVoltageLevel, (ViInt32, double), (override));
    MOCK_METHOD(ViStatus, voltageLevel, (ViInt32, double&), (override));
    MOCK_METHOD(ViStatus, setVoltageProtectionLevel, (ViInt32, double), (override));
    MOCK_METHOD(ViStatus, setVoltageProtectionEnabled, (ViInt32, bool), (override));
    MOCK_METHOD(ViStatus, setCurrentLevel, (ViInt32, double), (override));
    MOCK_METHOD(ViStatus, currentLevel, (ViInt32, double&), (override));
    MOCK_METHOD(ViStatus, setCurrentProtectionLevel, (ViInt32, double), (override));
    MOCK_METHOD(ViStatus, currentProtectionLevel, (ViInt32, double&), (override));
    MOCK_METHOD(ViStatus, setCurrentProtectionEnabled, (ViInt32, bool), (override));
    MOCK_METHOD(ViStatus, currentProtectionEnabled, (ViInt32, bool&), (override));
    MOCK_METHOD(ViStatus, setOutputEnabled, (ViInt32, bool), (override));
    MOCK_METHOD(ViStatus, outputEnabled, (ViInt32, bool&), (override));
    MOCK_METHOD(ViStatus, selectChannel, (ViInt32), (override));
    MOCK_METHOD(ViStatus, setBleEnabled, (bool), (override));
    MOCK_METHOD(ViStatus, setTrackingEnabled, (ViInt32, bool), (override));
    MOCK_METHOD(ViStatus, measureVoltage, (ViInt32, double&), (override));
    MOCK_METHOD(ViStatus, measurePower, (ViInt32, double&), (override));
};

using StrictInstrument = testing::StrictMock<MockInstrument>;

} // namespace kvxtest
