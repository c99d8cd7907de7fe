#include "tests/support/driver/driver_end_to_end.h"

namespace kvxtest
{

RecordedError recordedError(ViSession vi)
{
    RecordedError error{};
    char text[1024] = "";
    EXPECT_EQ(KVX2800T_GetError(vi, &error.code, sizeof text, text), VI_SUCCESS);
    error.text = text;
    return error;
}

DriverEndToEnd::DriverEndToEnd(const Lines& instrumentOptions) : instrument(instrumentOptions)
{
    KVX2800T_ClearError(VI_NULL);
}

DriverEndToEnd::~DriverEndToEnd()
{
    if (vi != VI_NULL)
        KVX2800T_close(vi);
}

void DriverEndToEnd::open(const std::string& options, ViBoolean idQuery, ViBoolean reset)
{
    std::string resource = instrument.resource();
    const ViStatus opened = KVX2800T_InitWithOptions(resource.data(), idQuery, reset, options.c_str(), &vi);
    ASSERT_EQ(opened, VI_SUCCESS) << recordedError(VI_NULL).text;
}

Lines DriverEndToEnd::newLines()
{
    Lines lines = instrument.receivedLines();
    instrument.clearLog();
    return lines;
}

} // namespace kvxtest
