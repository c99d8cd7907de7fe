#pragma once

#include "tests/support/driver/api_fixture.h"

#include "tests/support/driver/mock_instrument.h"
#include "tests/support/driver/runtime_fixture.h"

#include <memory>

// For tests that look behind the exported functions.

namespace kvxtest
{

class SessionTest : public ApiTest
{
public:
    drivekit::DriverSession& session() const
    {
        ViAddr data = nullptr;
        IviSession_GetDataPtr(vi, &data);
        return *static_cast<drivekit::DriverSession*>(data);
    }
};

/// A session on an instrument whose operations a test expects one by one, with status checking on.
class ScriptedInstrumentTest : public ApiTest
{
public:
    ScriptedInstrumentTest()
    {
        EXPECT_CALL(*instrument, close).WillOnce(testing::Return(VI_SUCCESS));
        IviSession_New(&vi);
        session = new TestSession(vi);
        session->setQueryInstrumentStatus(true);
        session->setInstrument(instrument, false);
        IviSession_SetDataPtr(vi, static_cast<drivekit::DriverSession*>(session));
        clearLog();
    }

    std::shared_ptr<StrictInstrument> instrument = std::make_shared<StrictInstrument>();
    /// KVX2800T_close deletes it.
    TestSession* session = nullptr;
};

} // namespace kvxtest
