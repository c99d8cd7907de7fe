#include "tests/support/driver/loaded_driver.h"

#include "tests/support/driver/channel_limits.h"

namespace kvxtest
{
namespace
{

class LoadedChannels : public LoadedDriverTest
{
public:
    LoadedChannels() : LoadedDriverTest({"--load", "CH3=10"}) { open(); }

    /// Expects that a call has been refused for its channel and has sent nothing.
    void expectUnknownChannelRefused(ViStatus returned)
    {
        expectRefused(returned, IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER,
                      "The identifier 'OutputChannel7' is not defined for repeated capability 'OutputChannel'.");
        EXPECT_EQ(newLines(), Lines{});
    }
};

TEST_F(LoadedChannels, EverySettingSendsItsCommands)
{
    EXPECT_EQ(driver.ConfigureOutputEnabled(vi, "OutputChannel3", 9), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel3", 1.5), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureOVP(vi, "OutputChannel3", VI_FALSE, 6.0), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":OUTP:STAT CH3,ON", ":SOUR3:VOLT 1.500000", ":SOUR3:VOLT:PROT 6.000000",
                                 ":SOUR3:VOLT:PROT:STAT OFF"}));
}

TEST_F(LoadedChannels, OnlyTripSwitchesTheCurrentProtectionOn)
{
    for (const ViInt32 behavior : {KVX2800T_VAL_CURRENT_TRIP, KVX2800T_VAL_CURRENT_REGULATE, 2, -1}) {
        EXPECT_EQ(driver.ConfigureCurrentLimit(vi, "CH1", behavior, 2.5), VI_SUCCESS);
        const std::string state = behavior == KVX2800T_VAL_CURRENT_TRIP ? "ON" : "OFF";
        EXPECT_EQ(newLines(), (Lines{":SOUR:Mode?", ":SOUR1:CURR 2.500000", ":SOUR1:CURR:PROT 2.500000",
                                     ":SOUR1:CURR:PROT:STAT " + state}));
    }
}

TEST_F(LoadedChannels, ASeriesOutputIsSwitchedOnASecondAfterTheSourceMode)
{
    // The instrument refuses settings for half a second after a change of the source mode.
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureOutputEnabled(vi, "CH5", VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR:Mode?", ":SOUR:Mode SER", ":OUTP:STAT SER,ON", "*ESR?"}));
}

TEST_F(LoadedChannels, LevelsAreCheckedAgainstTheLimitsOfEveryChannel)
{
    for (const ChannelMaximum& channel : kChannelMaxima) {
        SCOPED_TRACE(channel.name());
        for (const ViReal64 volts : {0.0, channel.volts})
            EXPECT_EQ(driver.ConfigureVoltageLevel(vi, channel.name().c_str(), volts), VI_SUCCESS);
        for (const ViReal64 amperes : {0.0, channel.amperes})
            EXPECT_EQ(driver.ConfigureCurrentLimit(vi, channel.name().c_str(), 0, amperes), VI_SUCCESS);
        newLines();
        for (const ViReal64 volts : {-0.001, channel.volts + 0.001})
            expectRefused(driver.ConfigureVoltageLevel(vi, channel.name().c_str(), volts),
                          KVX2800T_ERROR_VALUE_OUT_OF_RANGE, kOutOfRangeText);
        for (const ViReal64 amperes : {-0.001, channel.amperes + 0.001})
            expectRefused(driver.ConfigureCurrentLimit(vi, channel.name().c_str(), 0, amperes),
                          KVX2800T_ERROR_VALUE_OUT_OF_RANGE, kOutOfRangeText);
        EXPECT_EQ(newLines(), channel.needsMode() ? Lines(4, ":SOUR:Mode?") : Lines{});
    }
}

TEST_F(LoadedChannels, ChannelsInFrontOfARefusedOneKeepTheNewLevel)
{
    expectRefused(driver.ConfigureVoltageLevel(vi, "OutputChannel3,OutputChannel4,OutputChannel1", 10.0),
                  KVX2800T_ERROR_VALUE_OUT_OF_RANGE, kOutOfRangeText);
    EXPECT_EQ(newLines(), Lines{":SOUR3:VOLT 10.000000"});
}

TEST_F(LoadedChannels, FunctionsWithoutACommandSendNothing)
{
    EXPECT_EQ(driver.ConfigureOutputRange(vi, "CH1", KVX2800T_VAL_RANGE_CURRENT, 10.0), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureOutputRange(vi, "CH1", 99, -10.0), VI_SUCCESS);
    EXPECT_EQ(driver.ResetOutputProtection(vi, "CH1"), VI_SUCCESS);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedChannels, EveryFunctionRefusesAnUnknownChannel)
{
    const char* const unknown = "OutputChannel7";
    ViReal64 value = -1.0;
    ViBoolean state = 77;
    expectUnknownChannelRefused(driver.ConfigureOutputEnabled(vi, unknown, VI_TRUE));
    expectUnknownChannelRefused(driver.ConfigureVoltageLevel(vi, unknown, 1.0));
    expectUnknownChannelRefused(driver.ConfigureCurrentLimit(vi, unknown, KVX2800T_VAL_CURRENT_TRIP, 1.0));
    expectUnknownChannelRefused(driver.ConfigureOVP(vi, unknown, VI_TRUE, 1.0));
    expectUnknownChannelRefused(driver.ConfigureOutputRange(vi, unknown, KVX2800T_VAL_RANGE_VOLTAGE, 1.0));
    expectUnknownChannelRefused(driver.ResetOutputProtection(vi, unknown));
    expectUnknownChannelRefused(driver.QueryMaxCurrentLimit(vi, unknown, 0.0, &value));
    expectUnknownChannelRefused(driver.QueryMaxVoltageLevel(vi, unknown, 0.0, &value));
    expectUnknownChannelRefused(driver.QueryOutputState(vi, unknown, KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE, &state));
    expectUnknownChannelRefused(driver.Measure(vi, unknown, KVX2800T_VAL_MEASURE_VOLTAGE, &value));
    EXPECT_EQ(value, -1.0);
    EXPECT_EQ(state, 77);
}

TEST_F(LoadedChannels, NullOutputsAreRefusedBeforeTheChannel)
{
    const char* const unknown = "OutputChannel7";
    expectNullPointerRefused(driver.QueryMaxCurrentLimit(vi, unknown, 0.0, nullptr), "KVX2800T_QueryMaxCurrentLimit",
                             "MaxCurrentLimit");
    expectNullPointerRefused(driver.QueryMaxVoltageLevel(vi, unknown, 0.0, nullptr), "KVX2800T_QueryMaxVoltageLevel",
                             "MaxVoltageLevel");
    expectNullPointerRefused(driver.QueryOutputState(vi, unknown, 0, nullptr), "KVX2800T_QueryOutputState", "inState");
    expectNullPointerRefused(driver.Measure(vi, unknown, 0, nullptr), "KVX2800T_Measure", "Measurement");
    expectNullPointerRefused(driver.GetChannelName(vi, 0, 0, nullptr), "KVX2800T_GetChannelName", "Name");
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedChannels, TheMaximaAreThoseOfTheLastChannelWhateverTheOtherQuantity)
{
    for (const ChannelMaximum& channel : kChannelMaxima) {
        ViReal64 volts = -1.0;
        ViReal64 amperes = -1.0;
        EXPECT_EQ(driver.QueryMaxVoltageLevel(vi, channel.name().c_str(), 1e9, &volts), VI_SUCCESS);
        EXPECT_EQ(driver.QueryMaxCurrentLimit(vi, channel.name().c_str(), -1e9, &amperes), VI_SUCCESS);
        EXPECT_EQ(volts, channel.volts) << channel.name();
        EXPECT_EQ(amperes, channel.amperes) << channel.name();
    }
    ViReal64 volts = -1.0;
    EXPECT_EQ(driver.QueryMaxVoltageLevel(vi, "OutputChannel1-4", 0.0, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 6.2);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedChannels, OutputStatesAreAskedOnlyWhereTheInstrumentTells)
{
    const auto state = [this](ViInt32 outputState) {
        ViBoolean isIn = 77;
        EXPECT_EQ(driver.QueryOutputState(vi, "OutputChannel3", outputState, &isIn), VI_SUCCESS);
        return isIn;
    };
    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel3", 5.0), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureCurrentLimit(vi, "OutputChannel3", KVX2800T_VAL_CURRENT_REGULATE, 1.0), VI_SUCCESS);
    EXPECT_EQ(driver.ConfigureOutputEnabled(vi, "OutputChannel3", VI_TRUE), VI_SUCCESS);
    newLines();
    EXPECT_EQ(state(KVX2800T_VAL_OUTPUT_CONSTANT_VOLTAGE), VI_TRUE);
    EXPECT_EQ(state(KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT), VI_FALSE);
    EXPECT_EQ(newLines(), Lines(2, ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?"));
    EXPECT_EQ(state(KVX2800T_VAL_OUTPUT_OVER_VOLTAGE), VI_FALSE);
    EXPECT_EQ(state(KVX2800T_VAL_OUTPUT_OVER_CURRENT), VI_FALSE);
    EXPECT_EQ(state(KVX2800T_VAL_OUTPUT_UNREGULATED), VI_FALSE);
    EXPECT_EQ(state(7), 77);
    EXPECT_EQ(state(-1), 77);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedChannels, WithStatusCheckingTheEventStatusIsAskedAfterEveryQuery)
{
    EXPECT_EQ(driver.SetAttributeViBoolean(vi, "", KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, VI_TRUE), VI_SUCCESS);
    ViReal64 value = -1.0;
    ViBoolean state = 77;
    EXPECT_EQ(driver.QueryMaxVoltageLevel(vi, "OutputChannel3", 0.0, &value), VI_SUCCESS);
    EXPECT_EQ(driver.QueryMaxCurrentLimit(vi, "OutputChannel3", 0.0, &value), VI_SUCCESS);
    EXPECT_EQ(driver.QueryOutputState(vi, "OutputChannel3", KVX2800T_VAL_OUTPUT_UNREGULATED, &state), VI_SUCCESS);
    EXPECT_EQ(driver.Measure(vi, "OutputChannel3", KVX2800T_VAL_MEASURE_CURRENT, &value), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{"*ESR?", "*ESR?", "*ESR?", ":SOUR3:CURR?", "*ESR?"}));
}

TEST_F(LoadedChannels, MeasureGivesTheLevelsThatAreSet)
{
    EXPECT_EQ(driver.ConfigureVoltageLevel(vi, "OutputChannel4", 5.0), VI_SUCCESS);
    newLines();
    ViReal64 value = -1.0;
    EXPECT_EQ(driver.Measure(vi, "OutputChannel3,OutputChannel4", KVX2800T_VAL_MEASURE_VOLTAGE, &value), VI_SUCCESS);
    EXPECT_EQ(value, 5.0);
    EXPECT_EQ(driver.Measure(vi, "OutputChannel5", KVX2800T_VAL_MEASURE_CURRENT, &value), VI_SUCCESS);
    EXPECT_EQ(value, 0.1);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT?", ":SOUR4:VOLT?", ":SOUR5:CURR?"}));
    value = -1.0;
    for (const ViInt32 unknown : {2, -1})
        expectRefused(driver.Measure(vi, "OutputChannel3", unknown, &value), KVX2800T_ERROR_VALUE_OUT_OF_RANGE,
                      kOutOfRangeText);
    EXPECT_EQ(value, -1.0);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedChannels, AnIoErrorEndsAQuery)
{
    instrument.control("disconnect");
    ViReal64 value = -1.0;
    expectRefused(driver.Measure(vi, "OutputChannel3-4", KVX2800T_VAL_MEASURE_VOLTAGE, &value), KVX2800T_ERROR_IO,
                  "I/O error.");
    EXPECT_EQ(value, -1.0);
    ViBoolean state = 77;
    expectRefused(driver.QueryOutputState(vi, "OutputChannel3", KVX2800T_VAL_OUTPUT_CONSTANT_CURRENT, &state),
                  KVX2800T_ERROR_IO, "I/O error.");
    EXPECT_EQ(state, 77);
}

TEST_F(LoadedChannels, ChannelNamesAreCountedFromOneAndCutWithoutAWord)
{
    std::array<ViChar, 16> name{};
    for (ViInt32 index = 1; index <= 6; ++index) {
        EXPECT_EQ(driver.GetChannelName(vi, index, 16, name.data()), VI_SUCCESS);
        EXPECT_EQ(name.data(), "OutputChannel" + std::to_string(index));
    }
    name.fill('#');
    EXPECT_EQ(driver.GetChannelName(vi, 1, 3, name.data()), VI_SUCCESS);
    EXPECT_STREQ(name.data(), "Ou");
    EXPECT_EQ(name[3], '#');
    name.fill('#');
    for (const ViInt32 size : {0, -1})
        EXPECT_EQ(driver.GetChannelName(vi, 1, size, name.data()), VI_SUCCESS);
    EXPECT_EQ(name[0], '#');
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(LoadedChannels, OtherIndexesAreRefusedAsCountedFromZero)
{
    struct Refused
    {
        ViInt32 index;
        const char* position;
    };
    constexpr Refused kRefused[] = {{0, "-1"}, {7, "6"}, {-2147483647 - 1, "-2147483649"}};
    std::array<ViChar, 16> name{"as it was"};
    for (const auto& [index, position] : kRefused)
        expectRefused(driver.GetChannelName(vi, index, 16, name.data()), IVI_ERROR_INVALID_VALUE,
                      "Invalid value '" + std::string(position) +
                          "' for function 'GetOutputChannelName', parameter 'Index'.");
    EXPECT_STREQ(name.data(), "as it was");
}

} // namespace
} // namespace kvxtest
