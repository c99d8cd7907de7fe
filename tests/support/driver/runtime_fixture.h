#pragma once

#include "instrument/kvx2800t.h"
#include "runtime/attribute_registry.h"
#include "runtime/kvx2800t_driver_session.h"
#include "tests/support/fakes/platform_fakes.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace kvxtest
{

/// An instrument whose operations a test expects one by one. Those that no test expects are the ones of an instrument
/// without a connection: they fail.
class MockInstrument : public TSRO::KVX2800T
{
public:
    MockInstrument() = default;
    explicit MockInstrument(TSRO::Identity identity) { mutableIdentity() = std::move(identity); }

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

inline constexpr drivekit::AttributeRegistry kNoAttributes{{}};

/// A driver session that takes a test's instrument.
class TestSession : public KVX2800TDriverSession
{
public:
    explicit TestSession(ViSession vi, const drivekit::AttributeRegistry& attributes = kNoAttributes)
        : KVX2800TDriverSession(vi, attributes)
    {
    }

    ViStatus StartSimulation() override
    {
        return simulationStatus ? *simulationStatus : KVX2800TDriverSession::StartSimulation();
    }

    using KVX2800TDriverSession::setInstrument;

    /// What comes of starting the simulation, in place of a simulator.
    std::optional<ViStatus> simulationStatus;
};

/// A fresh platform with one IVI session in it.
class RuntimeTest : public testing::Test
{
public:
    RuntimeTest() { startOver(); }

    void TearDown() override { reset(); }

    /// Another fresh platform.
    void startOver()
    {
        reset();
        IviSession_New(&vi);
        clearLog();
    }

    /// What the session has recorded.
    ErrorEntry recorded() const { return errorOf(vi); }

    std::size_t timesRecorded() const { return calls("IviSession_SetError").size(); }

    ViSession vi = VI_NULL;
};

} // namespace kvxtest
