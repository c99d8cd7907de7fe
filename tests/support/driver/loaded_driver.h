#pragma once

#include "tests/support/driver/recorded_error.h"

#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/support/shared_library.h"

#include <KVX2800T.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace kvxtest
{

/// The driver as programs load it at run time: its library, and its functions by their names without the prefix.
/// The test program itself links nothing of the driver.
struct LoadedDriver
{
    const SharedLibrary library{KVX_DRIVER_FILE};

#define KVX_FUNCTION(name)                                                                                             \
    decltype(KVX2800T_##name)* const name = library.find<decltype(KVX2800T_##name)>("KVX2800T_" #name)

    KVX_FUNCTION(init);
    KVX_FUNCTION(InitWithOptions);
    KVX_FUNCTION(close);
    KVX_FUNCTION(LockSession);
    KVX_FUNCTION(UnlockSession);
    KVX_FUNCTION(GetError);
    KVX_FUNCTION(ClearError);
    KVX_FUNCTION(error_message);
    KVX_FUNCTION(error_query);
    KVX_FUNCTION(reset);
    KVX_FUNCTION(ResetWithDefaults);
    KVX_FUNCTION(Disable);
    KVX_FUNCTION(self_test);
    KVX_FUNCTION(revision_query);
    KVX_FUNCTION(InvalidateAllAttributes);
    KVX_FUNCTION(ConfigureOutputEnabled);
    KVX_FUNCTION(ConfigureVoltageLevel);
    KVX_FUNCTION(ConfigureCurrentLimit);
    KVX_FUNCTION(ConfigureOVP);
    KVX_FUNCTION(ConfigureOutputRange);
    KVX_FUNCTION(ResetOutputProtection);
    KVX_FUNCTION(QueryMaxCurrentLimit);
    KVX_FUNCTION(QueryMaxVoltageLevel);
    KVX_FUNCTION(QueryOutputState);
    KVX_FUNCTION(Measure);
    KVX_FUNCTION(GetChannelName);
    KVX_FUNCTION(GetAttributeViInt32);
    KVX_FUNCTION(GetAttributeViReal64);
    KVX_FUNCTION(GetAttributeViBoolean);
    KVX_FUNCTION(GetAttributeViSession);
    KVX_FUNCTION(GetAttributeViString);
    KVX_FUNCTION(SetAttributeViInt32);
    KVX_FUNCTION(SetAttributeViReal64);
    KVX_FUNCTION(SetAttributeViBoolean);
    KVX_FUNCTION(SetAttributeViSession);
    KVX_FUNCTION(SetAttributeViString);

#undef KVX_FUNCTION
};

/// The loaded driver, a virtual instrument of its own for each test, and a session on it that is closed at the end.
class LoadedDriverTest : public testing::Test
{
public:
    LoadedDriverTest() { driver.ClearError(VI_NULL); }
    LoadedDriverTest(const LoadedDriverTest&) = delete;
    LoadedDriverTest& operator=(const LoadedDriverTest&) = delete;
    ~LoadedDriverTest() override
    {
        if (vi != VI_NULL)
            driver.close(vi);
    }

    ViStatus init(const std::string& options, ViBoolean idQuery = VI_FALSE, ViBoolean reset = VI_FALSE)
    {
        std::string resource = instrument.resource();
        return driver.InitWithOptions(resource.data(), idQuery, reset, options.c_str(), &vi);
    }

    /// Opens the session and forgets what that has sent.
    void open(const std::string& options = "")
    {
        ASSERT_EQ(init(options), VI_SUCCESS) << recorded(VI_NULL).text;
        newLines();
    }

    /// Reads, and clears, what is recorded on a session or on VI_NULL.
    RecordedError recorded(ViSession session) const
    {
        RecordedError error{};
        std::array<ViChar, 1024> text{};
        EXPECT_EQ(driver.GetError(session, &error.code, static_cast<ViInt32>(text.size()), text.data()), VI_SUCCESS);
        error.text = text.data();
        return error;
    }

    /// What the instrument has received since the last call.
    Lines newLines()
    {
        Lines lines = instrument.receivedLines();
        instrument.clearLog();
        return lines;
    }

    const LoadedDriver driver;
    VirtualInstrumentProcess instrument;
    ViSession vi = VI_NULL;
};

} // namespace kvxtest
