#include "tests/support/driver/driver_end_to_end.h"

namespace kvxtest
{
namespace
{

class Selector : public DriverEndToEnd
{
};

TEST_F(Selector, RangeConfiguresItsChannelsInOrder)
{
    open();
    newLines();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3-OutputChannel4", 2.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "[OutputChannel4, OutputChannel3]", 2.5), VI_SUCCESS);
    EXPECT_EQ(newLines(),
              (Lines{":SOUR3:VOLT 2.000000", ":SOUR4:VOLT 2.000000", ":SOUR4:VOLT 2.500000", ":SOUR3:VOLT 2.500000"}));
}

TEST_F(Selector, GetterRefusesARange)
{
    open();
    newLines();
    ViReal64 volts = -1.0;
    EXPECT_EQ(KVX2800T_GetAttributeViReal64(vi, "OutputChannel1-2", KVX2800T_ATTR_VOLTAGE_LEVEL, &volts),
              status(0xBFFA0066));
    EXPECT_EQ(volts, -1.0);
    EXPECT_EQ(newLines(), Lines{});
    EXPECT_EQ(recordedError(vi),
              (RecordedError{status(0xBFFA0066),
                             "Only a single repeated capability identifier can be specified for the current "
                             "operation."}));
}

TEST_F(Selector, EmptySelectorNamesTheCountOfChannels)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, nullptr, VI_TRUE), status(0xBFFA0044));
    EXPECT_EQ(recordedError(vi),
              (RecordedError{status(0xBFFA0044),
                             "No selector was specified for repeated capability 'OutputChannel'.  The repeated "
                             "capability identifier can be null or empty only when there is exactly one physical name "
                             "defined.  Repeated capability 'OutputChannel' has 6 physical names defined."}));
}

} // namespace
} // namespace kvxtest
