#pragma once

#include "support/virtual_instrument_process.h"

#include <KVX2800T.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kvxtest
{

using Lines = std::vector<std::string>;

/// The error recorded on a session, or on VI_NULL, and its text; reading clears it.
struct RecordedError
{
    ViStatus code;
    std::string text;

    bool operator==(const RecordedError&) const = default;
};

RecordedError recordedError(ViSession vi);

/// For messages of failed assertions.
void PrintTo(const RecordedError& error, std::ostream* stream);

/// A status by its published bit pattern.
constexpr ViStatus status(ViUInt32 bits)
{
    return static_cast<ViStatus>(bits);
}

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
