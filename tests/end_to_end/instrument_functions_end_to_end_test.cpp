#include "tests/support/driver/driver_end_to_end.h"
#include "tests/support/driver/instrument_calls.h"

#include <array>

// The instrument-specific functions on an instrument that remembers.

namespace kvxtest
{
namespace
{

constexpr const char* kChannel = "OutputChannel3";

/// The state and the group.
using ListState = std::pair<ViInt32, ViInt32>;

class InstrumentSession : public DriverEndToEnd
{
public:
    InstrumentSession() : DriverEndToEnd({"--load", "CH3=10"}) { open("QueryInstrStatus=1"); }

    /// The list's state and group; its times are not looked at.
    ListState listState() const
    {
        ViInt32 state = -1;
        ViReal64 seconds = -1;
        ViInt32 group = -1;
        ViInt32 cycles = -1;
        EXPECT_EQ(KVX2800T_QueryListStatus(vi, kChannel, &state, &seconds, &group, &cycles), VI_SUCCESS);
        return {state, group};
    }

    ViReal64 measured(ViInt32 type) const
    {
        ViReal64 value = -1;
        EXPECT_EQ(KVX2800T_MeasureOutput(vi, kChannel, type, &value), VI_SUCCESS);
        return value;
    }

    ViBoolean isOn() const
    {
        ViBoolean on = 77;
        EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, kChannel, KVX2800T_ATTR_OUTPUT_ENABLED, &on), VI_SUCCESS);
        return on;
    }
};

TEST_F(InstrumentSession, AListRunsPausesGoesOnAndEnds)
{
    constexpr std::array volts = {2.0, 4.0, 8.0};
    constexpr std::array amperes = {1.0, 1.0, 1.0};
    constexpr std::array seconds = {10.0, 10.0, 10.0};
    ASSERT_EQ(KVX2800T_LoadList(vi, kChannel, 3, volts.data(), amperes.data(), seconds.data()), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListCycles(vi, kChannel, 2), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListEndState(vi, kChannel, KVX2800T_VAL_LIST_END_OFF), VI_SUCCESS);
    EXPECT_EQ(listState(), ListState(KVX2800T_VAL_LIST_STOPPED, 0));
    EXPECT_EQ(KVX2800T_RunList(vi, kChannel), VI_SUCCESS);
    EXPECT_EQ(listState(), ListState(KVX2800T_VAL_LIST_RUNNING, 1));
    EXPECT_EQ(measured(KVX2800T_VAL_MEASURE_VOLTAGE), 2.0);
    instrument.control("advance 10500");
    EXPECT_EQ(listState(), ListState(KVX2800T_VAL_LIST_RUNNING, 2));
    EXPECT_EQ(KVX2800T_PauseList(vi, kChannel), VI_SUCCESS);
    EXPECT_EQ(listState(), ListState(KVX2800T_VAL_LIST_PAUSED, 2));
    instrument.control("advance 60000");
    EXPECT_EQ(listState(), ListState(KVX2800T_VAL_LIST_PAUSED, 2));
    EXPECT_EQ(KVX2800T_RunList(vi, kChannel), VI_SUCCESS);
    EXPECT_EQ(listState(), ListState(KVX2800T_VAL_LIST_RUNNING, 2));
    EXPECT_EQ(measured(KVX2800T_VAL_MEASURE_POWER), 1.6);
    instrument.control("advance 10000");
    EXPECT_EQ(measured(KVX2800T_VAL_MEASURE_CURRENT), 0.8);
    instrument.control("advance 60000");
    EXPECT_EQ(listState(), ListState(KVX2800T_VAL_LIST_STOPPED, 0));
    EXPECT_EQ(isOn(), VI_FALSE);
}

TEST_F(InstrumentSession, ATemplateMakesTheGroupsOfAList)
{
    EXPECT_EQ(KVX2800T_ConfigureListTemplateWaveform(vi, kChannel, KVX2800T_VAL_LIST_WAVEFORM_UP), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListTemplateObject(vi, kChannel, KVX2800T_VAL_LIST_OBJECT_VOLTAGE, 0.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListTemplateMinimum(vi, kChannel, 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListTemplateMaximum(vi, kChannel, 5.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListTemplatePeriod(vi, kChannel, 5.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureListTemplateInterval(vi, kChannel, 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConstructList(vi, kChannel, 1), VI_SUCCESS);
    ViInt32 points = 0;
    ViInt32 groups = 0;
    EXPECT_EQ(KVX2800T_QueryListTemplatePoints(vi, kChannel, &points), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_QueryListGroupCount(vi, kChannel, &groups), VI_SUCCESS);
    EXPECT_EQ(groups, points);
    ASSERT_GE(groups, 2);
    ViReal64 volts = -1;
    ViReal64 amperes = -1;
    ViReal64 seconds = -1;
    EXPECT_EQ(KVX2800T_QueryListGroup(vi, kChannel, groups, &volts, &amperes, &seconds), VI_SUCCESS);
    EXPECT_EQ(volts, 5.0);
    EXPECT_EQ(amperes, 0.5);
    EXPECT_EQ(seconds, 1.0);
}

TEST_F(InstrumentSession, ADelayProgramSwitchesTheOutput)
{
    constexpr std::array<ViBoolean, 2> on = {VI_TRUE, VI_FALSE};
    constexpr std::array seconds = {10.0, 10.0};
    ASSERT_EQ(KVX2800T_LoadDelay(vi, kChannel, 2, on.data(), seconds.data()), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureDelayCycles(vi, kChannel, 1), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureDelayEndState(vi, kChannel, KVX2800T_VAL_DELAY_END_ON), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureDelayEnabled(vi, kChannel, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(isOn(), VI_TRUE);
    instrument.control("advance 10500");
    EXPECT_EQ(isOn(), VI_FALSE);
    instrument.control("advance 10000");
    EXPECT_EQ(isOn(), VI_TRUE);
    ViInt32 state = -1;
    ViReal64 left = -1;
    ViInt32 group = -1;
    ViInt32 cycles = -1;
    EXPECT_EQ(KVX2800T_QueryDelayStatus(vi, kChannel, &state, &left, &group, &cycles), VI_SUCCESS);
    EXPECT_EQ(state, KVX2800T_VAL_DELAY_STOPPED);
    EXPECT_EQ(group, 0);
}

TEST_F(InstrumentSession, ATripIsToldUntilTheOutputIsSwitchedOnAgain)
{
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kChannel, 5.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, kChannel, KVX2800T_VAL_CURRENT_REGULATE, 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, kChannel, VI_TRUE), VI_SUCCESS);
    ViBoolean overVoltage = 77;
    ViBoolean overCurrent = 77;
    EXPECT_EQ(KVX2800T_QueryProtectionState(vi, kChannel, &overVoltage, &overCurrent), VI_SUCCESS);
    EXPECT_EQ(std::pair(overVoltage, overCurrent), std::pair(ViBoolean{VI_FALSE}, ViBoolean{VI_FALSE}));
    EXPECT_EQ(KVX2800T_ConfigureOVPValue(vi, kChannel, 4.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOVPEnabled(vi, kChannel, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_QueryProtectionState(vi, kChannel, &overVoltage, &overCurrent), VI_SUCCESS);
    EXPECT_EQ(std::pair(overVoltage, overCurrent), std::pair(ViBoolean{VI_TRUE}, ViBoolean{VI_FALSE}));
    EXPECT_EQ(isOn(), VI_FALSE);
    EXPECT_EQ(KVX2800T_ConfigureOVPEnabled(vi, kChannel, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, kChannel, VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_QueryProtectionState(vi, kChannel, &overVoltage, &overCurrent), VI_SUCCESS);
    EXPECT_EQ(std::pair(overVoltage, overCurrent), std::pair(ViBoolean{VI_FALSE}, ViBoolean{VI_FALSE}));
    EXPECT_EQ(isOn(), VI_TRUE);
}

TEST_F(InstrumentSession, WhatTheInstrumentRefusesIsAnErrorOfItsStatus)
{
    EXPECT_EQ(KVX2800T_ConfigureOVPValue(vi, kChannel, 1000.0), IVI_ERROR_INSTRUMENT_STATUS);
    EXPECT_EQ(recordedError(vi),
              (RecordedError{IVI_ERROR_INSTRUMENT_STATUS,
                             "Instrument error detected.  Use ErrorQuery() to determine the error(s)."}));
    ViInt32 number = 0;
    std::array<ViChar, 256> message{};
    EXPECT_EQ(KVX2800T_error_query(vi, &number, message.data()), VI_SUCCESS);
    EXPECT_EQ(number, -222);
}

TEST_F(InstrumentSession, MeasureAllReadsTheMetersOfEveryChannel)
{
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, kChannel, 5.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, kChannel, KVX2800T_VAL_CURRENT_REGULATE, 0.25), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, kChannel, VI_TRUE), VI_SUCCESS);
    std::array<ViReal64, 2> volts{};
    std::array<ViReal64, 2> amperes{};
    std::array<ViReal64, 2> watts{};
    ViInt32 count = 0;
    EXPECT_EQ(
        KVX2800T_MeasureAll(vi, "OutputChannel4,OutputChannel3", 2, volts.data(), amperes.data(), watts.data(), &count),
        VI_SUCCESS);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(volts, (std::array{0.0, 2.5}));
    EXPECT_EQ(amperes, (std::array{0.0, 0.25}));
    EXPECT_EQ(watts, (std::array{0.0, 0.625}));
}

TEST_F(InstrumentSession, AGarbledReplyIsAStatusAndTheNextCallWorks)
{
    instrument.control("answer about\\x07five");
    ViReal64 volts = 77;
    EXPECT_EQ(KVX2800T_MeasureOutput(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts),
              IVI_ERROR_UNEXPECTED_RESPONSE);
    EXPECT_EQ(volts, 77);
    EXPECT_EQ(recordedError(vi),
              (RecordedError{IVI_ERROR_UNEXPECTED_RESPONSE,
                             "Unexpected response from instrument.  The reply was 'about\\x07five'."}));
    EXPECT_EQ(KVX2800T_MeasureOutput(vi, kChannel, KVX2800T_VAL_MEASURE_VOLTAGE, &volts), VI_SUCCESS);
    EXPECT_EQ(volts, 0.0);
}

TEST_F(InstrumentSession, MessagesOfTheProgramsOwnReachTheInstrument)
{
    newLines();
    std::string command = "*IDN?;:SYST:VERS?";
    ViInt64 count = 0;
    EXPECT_EQ(
        KVX2800T_viWrite(vi, reinterpret_cast<ViByte*>(command.data()), static_cast<ViInt64>(command.size()), &count),
        VI_SUCCESS);
    EXPECT_EQ(count, 17);
    std::array<char, 64> reply{};
    EXPECT_EQ(KVX2800T_viRead(vi, 64, reinterpret_cast<ViByte*>(reply.data()), &count), VI_SUCCESS);
    EXPECT_EQ(std::string(reply.data(), static_cast<std::size_t>(count)),
              "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00;1999.0\n");
    EXPECT_EQ(newLines(), (Lines{"*IDN?;:SYST:VERS?"}));
    EXPECT_EQ(KVX2800T_viWrite(vi, reinterpret_cast<ViByte*>(command.data()), 5, &count), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_viRead(vi, 7, reinterpret_cast<ViByte*>(reply.data()), &count), KVX2800T_WARN_ARRAY_TRUNCATED);
    EXPECT_EQ(std::string(reply.data(), 7), "Tessaro");
    ASSERT_EQ(KVX2800T_SetIoTimeout(vi, 50), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_viRead(vi, 7, reinterpret_cast<ViByte*>(reply.data()), &count),
              static_cast<ViStatus>(0xBFFF0015U));
    EXPECT_EQ(count, 0);
}

TEST_F(InstrumentSession, EverySettingAndQueryIsUnderstood)
{
    // Groups for those that read or change one.
    constexpr std::array volts = {1.0, 2.0, 3.0};
    ASSERT_EQ(KVX2800T_LoadList(vi, kChannel, 3, volts.data(), volts.data(), volts.data()), VI_SUCCESS);
    constexpr std::array<ViBoolean, 2> on = {VI_TRUE, VI_FALSE};
    ASSERT_EQ(KVX2800T_LoadDelay(vi, kChannel, 2, on.data(), volts.data()), VI_SUCCESS);
    for (const InstrumentCall& call : instrumentCalls()) {
        EXPECT_EQ(call(vi, kChannel), VI_SUCCESS) << call.name << ": " << recordedError(vi).text;
        // One program after the other, and none while settings of the next are made.
        KVX2800T_ConfigureListEnabled(vi, kChannel, VI_FALSE);
        KVX2800T_ConfigureDelayEnabled(vi, kChannel, VI_FALSE);
        recordedError(vi);
    }
}

} // namespace
} // namespace kvxtest
