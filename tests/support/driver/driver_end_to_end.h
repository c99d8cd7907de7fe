#pragma once

#include "tests/support/driver/recorded_error.h"

#include "tests/support/processes/virtual_instrument_process.h"

#include <KVX2800T.h>

#include <gtest/gtest.h>

#include <string>

namespace kvxtest
{

/// Reads, and clears, what is recorded on a session or on VI_NULL.
RecordedError recordedError(ViSession vi);

/// A virtual instrument of its own for each test, and a session on it that is closed at the end if it is still open.
class DriverEndToEnd : public testing::Test
{
public:
    explicit DriverEndToEnd(const Lines& instrumentOptions = {});
    DriverEndToEnd(const DriverEndToEnd&) = delete;
    DriverEndToEnd& operator=(const DriverEndToEnd&) = delete;
    ~DriverEndToEnd() override;

    /// Opens the session; the test fails when that does.
    void open(const std::string& options = "", ViBoolean idQuery = VI_FALSE, ViBoolean reset = VI_FALSE);

    /// What the instrument has received since the last call.
    Lines newLines();

    VirtualInstrumentProcess instrument;
    ViSession vi = VI_NULL;
};

} // namespace kvxtest
