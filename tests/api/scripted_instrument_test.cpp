#include "tests/support/driver/session_fixture.h"

#include "tests/support/driver/scripted_clock.h"

// What exported functions make of statuses that no connection gives.

namespace
{

using namespace kvxtest;
using testing::DoAll;
using testing::Return;
using testing::SetArgReferee;

constexpr ViStatus kPositive = 5;

class ScriptedInstrument : public ScriptedInstrumentTest
{
public:
    /// Expects that a call has returned a warning, with nothing recorded and the lock given back.
    void expectWarning(ViStatus status) const
    {
        EXPECT_EQ(status, kPositive);
        EXPECT_EQ(timesRecorded(), 0U);
        EXPECT_EQ(lockDepth(vi), 0U);
    }
};

TEST_F(ScriptedInstrument, AWarningEndsTheCallUnrecordedAndUnchecked)
{
    EXPECT_CALL(*instrument, setVoltageLevel(3, 1.0)).WillOnce(Return(code(0x3FFA4001)));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3-4", 1.0), code(0x3FFA4001));
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(ScriptedInstrument, AWarningOfAStepEndsTheStepsOfAChannel)
{
    EXPECT_CALL(*instrument, setCurrentLevel(4, 1.0)).WillOnce(Return(kPositive));
    expectWarning(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel4", 1, 1.0));
    EXPECT_CALL(*instrument, setCurrentLevel(3, 1.0)).WillOnce(Return(VI_SUCCESS));
    EXPECT_CALL(*instrument, setCurrentProtectionLevel(3, 1.0)).WillOnce(Return(5));
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", 1, 1.0), 5);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(ScriptedInstrument, AWarningOfTheModeEndsTheCall)
{
    EXPECT_CALL(*instrument, sourceMode).WillOnce(DoAll(SetArgReferee<0>(TSRO::SourceMode::Normal), Return(5)));
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1", VI_TRUE), 5);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(ScriptedInstrument, AFailureOfTheInstrumentIsRecordedWithItsMessage)
{
    EXPECT_CALL(*instrument, setOutputEnabled(4, true)).WillOnce(Return(code(0xBFFA4216)));
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel4", VI_TRUE), code(0xBFFA4216));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4216), "The operation (attribute or function) is not supported."}));
    EXPECT_EQ(timesRecorded(), 1U);
}

TEST_F(ScriptedInstrument, AWarningOfTheOvpLevelEndsTheCall)
{
    EXPECT_CALL(*instrument, setVoltageProtectionLevel(3, 1.0)).WillOnce(Return(kPositive));
    expectWarning(KVX2800T_ConfigureOVP(vi, "OutputChannel3-4", VI_TRUE, 1.0));
}

TEST_F(ScriptedInstrument, AWarningOfTheModeChangeEndsTheCallWithoutAWait)
{
    const ScriptedClock clock;
    EXPECT_CALL(*instrument, sourceMode).WillOnce(DoAll(SetArgReferee<0>(TSRO::SourceMode::Normal), Return(0)));
    EXPECT_CALL(*instrument, setSourceMode(TSRO::SourceMode::Series)).WillOnce(Return(kPositive));
    expectWarning(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel5", 1.0));
    EXPECT_EQ(ScriptedClock::reads(), 0U);
}

TEST_F(ScriptedInstrument, AModeChangeIsFollowedByASecondsWait)
{
    const ScriptedClock clock;
    EXPECT_CALL(*instrument, sourceMode).WillOnce(DoAll(SetArgReferee<0>(TSRO::SourceMode::Normal), Return(0)));
    EXPECT_CALL(*instrument, setSourceMode(TSRO::SourceMode::Series)).WillOnce(Return(0));
    EXPECT_CALL(*instrument, setVoltageLevel(5, 1.0)).WillOnce([](ViInt32, double) {
        EXPECT_GE(ScriptedClock::last(), drivekit::kTicksPerSecond);
        return kPositive;
    });
    expectWarning(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel5", 1.0));
}

TEST_F(ScriptedInstrument, AWarningEndsASetterUnrecordedAndUnchecked)
{
    EXPECT_CALL(*instrument, setCurrentLevel(3, 1.0)).WillOnce(Return(0));
    EXPECT_CALL(*instrument, setCurrentProtectionLevel(3, 1.0)).WillOnce(Return(kPositive));
    expectWarning(KVX2800T_SetAttributeViReal64(vi, "OutputChannel3-4", KVX2800T_ATTR_CURRENT_LIMIT, 1.0));
    EXPECT_CALL(*instrument, setCurrentProtectionEnabled(4, true)).WillOnce(Return(kPositive));
    expectWarning(
        KVX2800T_SetAttributeViInt32(vi, "OutputChannel4,OutputChannel3", KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, 1));
    EXPECT_CALL(*instrument, setVoltageProtectionEnabled(3, false)).WillOnce(Return(kPositive));
    expectWarning(KVX2800T_SetAttributeViBoolean(vi, "OutputChannel3-4", KVX2800T_ATTR_OVP_ENABLED, VI_FALSE));
}

TEST_F(ScriptedInstrument, AWarningEndsAQueryUnrecordedAndUncheckedWithTheLastGoodValue)
{
    EXPECT_CALL(*instrument, voltageLevel(3, testing::_)).WillOnce(DoAll(SetArgReferee<1>(3.5), Return(0)));
    EXPECT_CALL(*instrument, voltageLevel(4, testing::_)).WillOnce(Return(kPositive));
    ViReal64 volts = 77;
    expectWarning(KVX2800T_Measure(vi, "OutputChannel3-4,OutputChannel1", KVX2800T_VAL_MEASURE_VOLTAGE, &volts));
    EXPECT_EQ(volts, 3.5);
}

TEST_F(ScriptedInstrument, AWarningOfTheConditionLeavesTheOutput)
{
    EXPECT_CALL(*instrument, questionableCondition(1, testing::_))
        .WillOnce(DoAll(SetArgReferee<1>(3), Return(kPositive)));
    ViBoolean inState = 77;
    expectWarning(KVX2800T_QueryOutputState(vi, "OutputChannel1-2", 0, &inState));
    EXPECT_EQ(inState, 77);
}

TEST_F(ScriptedInstrument, AWarningEndsAGetterUnrecorded)
{
    EXPECT_CALL(*instrument, outputEnabled(2, testing::_)).WillOnce(Return(kPositive));
    ViBoolean enabled = 77;
    expectWarning(KVX2800T_GetAttributeViBoolean(vi, "OutputChannel2", KVX2800T_ATTR_OUTPUT_ENABLED, &enabled));
    EXPECT_EQ(enabled, 77);
}

TEST_F(ScriptedInstrument, AFailedWriteOfDisableIsRecordedOnceAndReturned)
{
    EXPECT_CALL(*instrument, writeRaw(":OUTPut:STATe ALL,OFF")).WillOnce(Return(kIoError));
    EXPECT_EQ(KVX2800T_Disable(vi), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
}

TEST_F(ScriptedInstrument, AWarningOfDisableOrOfAResetIsTheCallsStatus)
{
    EXPECT_CALL(*instrument, writeRaw).WillOnce(Return(kPositive));
    expectWarning(KVX2800T_Disable(vi));
    EXPECT_CALL(*instrument, reset).Times(2).WillRepeatedly(Return(kPositive));
    expectWarning(KVX2800T_reset(vi));
    expectWarning(KVX2800T_ResetWithDefaults(vi));
}

TEST_F(ScriptedInstrument, AWarningOfTheErrorQueueLeavesBothOutputs)
{
    EXPECT_CALL(*instrument, nextError)
        .WillOnce(DoAll(SetArgReferee<0>(-113), SetArgReferee<1>("message"), Return(kPositive)));
    ViInt32 number = 77;
    std::array<ViChar, 256> text{};
    text.fill('#');
    expectWarning(KVX2800T_error_query(vi, &number, text.data()));
    EXPECT_EQ(number, 77);
    EXPECT_THAT(text, testing::Each('#'));
}

TEST_F(ScriptedInstrument, ErrorBitsBehindAWarningOfTheStatusCheckAreAnError)
{
    EXPECT_CALL(*instrument, setVoltageLevel(3, 1.0)).WillOnce(Return(0));
    EXPECT_CALL(*instrument, eventStatus).WillOnce(DoAll(SetArgReferee<0>(0x20), Return(kPositive)));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), code(0xBFFA0001));
    expectRecordedOnce(code(0xBFFA0001), "Instrument error detected.  Use ErrorQuery() to determine the error(s).");
}

TEST_F(ScriptedInstrument, ASimulatorThatDoesNotOpenIsRecordedOnceAndTheInstrumentStays)
{
    session->simulationStatus = kIoError;
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
    EXPECT_EQ(session->instrument(), instrument);
    EXPECT_FALSE(session->runsSimulated());
    // The option has been set by then.
    ViBoolean simulates = VI_FALSE;
    EXPECT_EQ(KVX2800T_GetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, &simulates), VI_SUCCESS);
    EXPECT_EQ(simulates, VI_TRUE);
    session->simulationStatus = kPositive;
    clearLog();
    expectWarning(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE));
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_FALSE), VI_SUCCESS);
    EXPECT_FALSE(session->simulate());
}

TEST_F(ScriptedInstrument, AWarningOfTheStatusCheckIsTheCallsStatus)
{
    EXPECT_CALL(*instrument, setVoltageLevel(3, 1.0)).WillOnce(Return(0));
    EXPECT_CALL(*instrument, eventStatus).WillOnce(DoAll(SetArgReferee<0>(0), Return(kPositive)));
    expectWarning(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0));
}

} // namespace
