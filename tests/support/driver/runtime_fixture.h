#pragma once

#include "runtime/attribute_registry.h"
#include "runtime/kvx2800t_driver_session.h"
#include "tests/support/fakes/platform_fakes.h"

#include <gmock/gmock.h>

#include <optional>

namespace kvxtest
{

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
    using KVX2800TDriverSession::setSettings;

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
