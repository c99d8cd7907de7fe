#include "tests/support/driver/driver_end_to_end.h"

namespace kvxtest
{
namespace
{

class Queries : public DriverEndToEnd
{
public:
    Queries() : DriverEndToEnd({"--load", "CH3=10"}) { open(); }

    /// A voltage on the load, with the output on.
    void drive(ViReal64 volts, ViReal64 amperes)
    {
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", volts), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", KVX2800T_VAL_CURRENT_REGULATE, amperes),
                  VI_SUCCESS);
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3", VI_TRUE), VI_SUCCESS);
        newLines();
    }

    ViBoolean inState(ViInt32 state) const
    {
        ViBoolean isIn = 77;
        EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel3", state, &isIn), VI_SUCCESS);
        return isIn;
    }

    ViReal64 measure(const char* channel, ViInt32 type) const
    {
        ViReal64 value = -1.0;
        EXPECT_EQ(KVX2800T_Measure(vi, channel, type, &value), VI_SUCCESS);
        return value;
    }
};

TEST_F(Queries, ALoadThatTakesLessThanTheLimitIsInConstantVoltage)
{
    drive(5.0, 1.0);
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE), VI_TRUE);
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT), VI_FALSE);
    EXPECT_EQ(newLines(), (Lines{":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?",
                                 ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?"}));
}

TEST_F(Queries, ALoadThatWantsMoreThanTheLimitIsInConstantCurrent)
{
    drive(5.0, 0.25);
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE), VI_FALSE);
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT), VI_TRUE);
}

TEST_F(Queries, AnOutputThatIsOffIsInNeitherState)
{
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE), VI_FALSE);
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT), VI_FALSE);
}

TEST_F(Queries, ATripSwitchesTheOutputOffAndIsNotToldByTheOutputState)
{
    drive(5.0, 1.0);
    EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel3", VI_TRUE, 4.5), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT:PROT 4.500000", ":SOUR3:VOLT:PROT:STAT ON"}));
    ViBoolean enabled = VI_TRUE;
    EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, "OutputChannel3", KVX2800T_ATTR_OUTPUT_ENABLED, &enabled), VI_SUCCESS);
    EXPECT_EQ(enabled, VI_FALSE);
    newLines();
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_OVER_VOLTAGE), VI_FALSE);
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_OVER_CURRENT), VI_FALSE);
    EXPECT_EQ(inState(KVX2800T_VAL_OUTPUT_UNREGULATED), VI_FALSE);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(Queries, MeasureGivesTheLevelsThatAreSetAndNotWhatTheLoadTakes)
{
    drive(5.0, 0.25);
    EXPECT_EQ(measure("OutputChannel3", KVX2800T_VAL_MEASURE_VOLTAGE), 5.0);
    EXPECT_EQ(measure("OutputChannel3", KVX2800T_VAL_MEASURE_CURRENT), 0.25);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT?", ":SOUR3:CURR?"}));
}

TEST_F(Queries, MeasureOfSeveralChannelsGivesTheLastOnes)
{
    drive(5.0, 0.25);
    EXPECT_EQ(measure("OutputChannel1,OutputChannel3", KVX2800T_VAL_MEASURE_VOLTAGE), 5.0);
    EXPECT_EQ(newLines(), (Lines{":SOUR1:VOLT?", ":SOUR3:VOLT?"}));
}

TEST_F(Queries, QueriesLeaveTheSourceModeAlone)
{
    newLines();
    EXPECT_EQ(measure("OutputChannel5", KVX2800T_VAL_MEASURE_VOLTAGE), 0.0);
    ViBoolean isIn = 77;
    EXPECT_EQ(KVX2800T_QueryOutputState(vi, "OutputChannel6", KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE, &isIn), VI_SUCCESS);
    EXPECT_EQ(isIn, VI_FALSE);
    EXPECT_EQ(newLines(), (Lines{":SOUR5:VOLT?", ":STATus:QUEStionable:INSTrument:ISUMmary6:CONDition?"}));
}

TEST_F(Queries, WhatTheDriverKnowsByItselfIsNotAsked)
{
    newLines();
    ViReal64 volts = 0.0;
    ViReal64 amperes = 0.0;
    char name[256] = "";
    EXPECT_EQ(KVX2800T_QueryMaxVoltageLevel(vi, "OutputChannel5", 0.0, &volts), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_QueryMaxCurrentLimit(vi, "OutputChannel4", 0.0, &amperes), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_GetChannelName(vi, 6, sizeof name, name), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputRange(vi, "OutputChannel1", KVX2800T_VAL_RANGE_VOLTAGE, 10.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ResetOutputProtection(vi, "OutputChannel1"), VI_SUCCESS);
    EXPECT_EQ(volts, 66.0);
    EXPECT_EQ(amperes, 10.5);
    EXPECT_STREQ(name, "OutputChannel6");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(Queries, TheInstrumentTakesTheLargestLevelsThatTheDriverTells)
{
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE), VI_SUCCESS);
    for (const char* channel : {"OutputChannel1", "OutputChannel2", "OutputChannel3", "OutputChannel4"}) {
        ViReal64 volts = 0.0;
        ViReal64 amperes = 0.0;
        EXPECT_EQ(KVX2800T_QueryMaxVoltageLevel(vi, channel, 0.0, &volts), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_QueryMaxCurrentLimit(vi, channel, 0.0, &amperes), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, channel, volts), VI_SUCCESS) << channel;
        EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, channel, 1, amperes), VI_SUCCESS) << channel;
    }
}

} // namespace
} // namespace kvxtest
