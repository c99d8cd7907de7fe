#include "api_fixture.h"

#include <cmath>
#include <limits>

namespace
{

using namespace kvxtest;
using testing::DoAll;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::SetArgReferee;

constexpr ViStatus kOutOfRange = code(0xBFFA4217);
constexpr const char* kOutOfRangeText =
    "Attribute or function parameter value is invalid (out of range or not supported).";

class OutputFunctions : public ApiTest
{
public:
    void expectRecordedOnce(ViStatus status, const std::string& text) const
    {
        EXPECT_EQ(recorded(), (ErrorEntry{status, text}));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(lockDepth(vi), 0U);
    }
};

TEST_F(OutputFunctions, VoltageLevelIsSentInTheNormalMode)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1", 5.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR1:VOLT 5.000000\n"));
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(OutputFunctions, Channels3And4NeverAskForTheMode)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 5.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel4", 1, 10.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel4", VI_FALSE), VI_SUCCESS);
    EXPECT_THAT(written(),
                ElementsAre(":SOUR3:VOLT 5.500000\n", ":SOUR4:CURR 10.500000\n", ":SOUR4:CURR:PROT 10.500000\n",
                            ":SOUR4:CURR:PROT:STAT ON\n", ":OUTP:STAT CH4,OFF\n"));
}

TEST_F(OutputFunctions, TheCombinationsAreSwitchedToTheirModeWithAWait)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel5", VI_TRUE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode SER\n", ":OUTP:STAT SER,ON\n"));
    EXPECT_GE(ScriptedClock::last(), drivekit::kTicksPerSecond);
    clearLog();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel6", VI_TRUE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode PARA\n", ":OUTP:STAT PAR,ON\n"));
}

TEST_F(OutputFunctions, TheSingleOutputsAreSwitchedBackToTheNormalMode)
{
    answer(":SOUR:Mode?", "SER");
    open();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel2", 0.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode NORMAL\n", ":SOUR2:VOLT 0.000000\n"));
}

TEST_F(OutputFunctions, TheModeIsAskedForEachChannel)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel2,OutputChannel3,OutputChannel1", 1.5), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR2:VOLT 1.500000\n", ":SOUR3:VOLT 1.500000\n",
                                       ":SOUR:Mode?\n", ":SOUR1:VOLT 1.500000\n"));
}

TEST_F(OutputFunctions, AnyEnabledButFalseSwitchesOn)
{
    open();
    for (const ViBoolean enabled : std::initializer_list<ViBoolean>{VI_TRUE, 2, 0xFFFF})
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3", enabled), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3", VI_FALSE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":OUTP:STAT CH3,ON\n", ":OUTP:STAT CH3,ON\n", ":OUTP:STAT CH3,ON\n",
                                       ":OUTP:STAT CH3,OFF\n"));
}

TEST_F(OutputFunctions, CurrentLimitSetsLevelProtectionLevelAndProtection)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel1", KVX2800T_VAL_CURRENT_TRIP, 2.5), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR1:CURR 2.500000\n", ":SOUR1:CURR:PROT 2.500000\n",
                                       ":SOUR1:CURR:PROT:STAT ON\n"));
}

TEST_F(OutputFunctions, OnlyTripSwitchesTheProtectionOn)
{
    open();
    for (const ViInt32 behavior : {0, 2, -1, 1001}) {
        clearLog();
        EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", behavior, 1.0), VI_SUCCESS);
        EXPECT_THAT(written(), ElementsAre(":SOUR3:CURR 1.000000\n", ":SOUR3:CURR:PROT 1.000000\n",
                                           ":SOUR3:CURR:PROT:STAT OFF\n"));
    }
}

TEST_F(OutputFunctions, ALevelOutOfRangeIsRecordedAndNotSent)
{
    open();
    for (const ViReal64 level : {-0.1, 16.000001, std::nan(""), std::numeric_limits<double>::infinity()}) {
        clearLog();
        EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", level), kOutOfRange) << level;
        expectRecordedOnce(kOutOfRange, kOutOfRangeText);
        EXPECT_THAT(written(), IsEmpty());
        IviSession_ClearError(vi);
    }
    clearLog();
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", 1, 3.3), kOutOfRange);
    expectRecordedOnce(kOutOfRange, kOutOfRangeText);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(OutputFunctions, TheModeIsChangedBeforeALevelIsChecked)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel5", 66.1), kOutOfRange);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode SER\n"));
}

TEST_F(OutputFunctions, TheFirstChannelThatFailsEndsTheCall)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3-4,OutputChannel1", 10.0), kOutOfRange);
    expectRecordedOnce(kOutOfRange, kOutOfRangeText);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT 10.000000\n"));
}

TEST_F(OutputFunctions, AFailedCommandEndsTheCall)
{
    open();
    for (std::size_t n = 1; n <= 3; ++n) {
        clearLog();
        failNthCallOf("viWrite", n, VI_ERROR_TMO);
        EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3,OutputChannel4", 1, 1.0), kIoError) << n;
        expectRecordedOnce(kIoError, "I/O error.");
        EXPECT_EQ(written().size(), n - 1);
        IviSession_ClearError(vi);
    }
}

TEST_F(OutputFunctions, AFailedModeChangeEndsTheCall)
{
    open();
    for (const auto& [function, n] : {std::pair("viWrite", 1U), std::pair("viRead", 1U), std::pair("viWrite", 2U)}) {
        clearLog();
        failNthCallOf(function, n, VI_ERROR_TMO);
        EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel5", VI_TRUE), kIoError) << function << n;
        expectRecordedOnce(kIoError, "I/O error.");
        EXPECT_THAT(written(), testing::Not(testing::Contains(":OUTP:STAT SER,ON\n")));
        IviSession_ClearError(vi);
    }
}

TEST_F(OutputFunctions, AModeThatTheDriverDoesNotKnowIsAnUnexpectedResponse)
{
    answer(":SOUR:Mode?", "NORMA");
    open();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1", VI_TRUE), code(0xBFFA0059));
    expectRecordedOnce(code(0xBFFA0059), "Unexpected response from instrument.");
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n"));
}

TEST_F(OutputFunctions, ABadSelectorIsRecordedOnceAndSendsNothing)
{
    open();
    for (const char* selector :
         {"OutputChannel7", "CH1", "", "OutputChannel1:OutputChannel2", "OutputChannel1;2", "OutputChannel2-1"})
    {
        clearLog();
        const ViStatus status = KVX2800T_ConfigureVoltageLevel(vi, selector, 1.0);
        EXPECT_LT(status, 0) << selector;
        EXPECT_EQ(recorded().code, status) << selector;
        EXPECT_EQ(timesRecorded(), 1U) << selector;
        EXPECT_THAT(calls("vi"), IsEmpty()) << selector;
        IviSession_ClearError(vi);
    }
}

TEST_F(OutputFunctions, ANullSelectorNamesNoChannel)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, nullptr, VI_TRUE), code(0xBFFA0044));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, nullptr, 1.0), code(0xBFFA0044));
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, nullptr, 0, 1.0), code(0xBFFA0044));
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(OutputFunctions, TheStatusIsCheckedOnceAfterAllChannels)
{
    open("QueryInstrStatus=1");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3-4", 1.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT 1.000000\n", ":SOUR4:VOLT 1.000000\n", "*ESR?\n"));
}

TEST_F(OutputFunctions, AnErrorThatTheInstrumentHasNotedIsRecordedOnce)
{
    open("QueryInstrStatus=1");
    answer("*ESR?", "32");
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), code(0xBFFA0001));
    expectRecordedOnce(code(0xBFFA0001), "Instrument error detected.  Use ErrorQuery() to determine the error(s).");
}

TEST_F(OutputFunctions, AStatusThatCannotBeReadIsRecordedOnce)
{
    open("QueryInstrStatus=1");
    failCall("viRead", VI_ERROR_TMO);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
}

TEST_F(OutputFunctions, AStatusThatIsNoNumberLeavesAsAnException)
{
    open("QueryInstrStatus=1");
    answer("*ESR?", "none");
    expectException<std::invalid_argument>(vi, "invalid stol argument",
                                           [this] { KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0); });
    answer("*ESR?", "99999999999");
    expectException<std::out_of_range>(vi, "stol argument out of range",
                                       [this] { KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0); });
}

TEST_F(OutputFunctions, ARangeBeyond32BitsLeavesAsAnException)
{
    open();
    expectException<std::out_of_range>(vi, "stoi argument out of range", [this] {
        KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1-99999999999", 1.0);
    });
}

TEST_F(OutputFunctions, CompletionCodesOfVisaAreSuccess)
{
    open("QueryInstrStatus=1");
    failCall("viWrite", VI_WARN_NULL_OBJECT);
    failCall("viRead", VI_SUCCESS_MAX_CNT);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel1", 1, 1.0), VI_SUCCESS);
    EXPECT_EQ(written().size(), 5U);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(OutputFunctions, SimulatingSendsNothing)
{
    open("Simulate=1, QueryInstrStatus=1");
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1-6", VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel5", 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel6", 1, 1.0), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

/// Output functions on a scripted instrument.
class OutputFunctionsOnMock : public ApiTest
{
public:
    OutputFunctionsOnMock()
    {
        EXPECT_CALL(*instrument, close).WillOnce(Return(VI_SUCCESS));
        IviSession_New(&vi);
        auto* const scripted = new TestSession(vi);
        scripted->setQueryInstrumentStatus(true);
        scripted->setInstrument(instrument);
        IviSession_SetDataPtr(vi, static_cast<drivekit::DriverSession*>(scripted));
        clearLog();
    }

    std::shared_ptr<StrictInstrument> instrument = std::make_shared<StrictInstrument>();
};

TEST_F(OutputFunctionsOnMock, AWarningEndsTheCallUnrecordedAndUnchecked)
{
    EXPECT_CALL(*instrument, setVoltageLevel(3, 1.0)).WillOnce(Return(code(0x3FFA4001)));
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3-4", 1.0), code(0x3FFA4001));
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_F(OutputFunctionsOnMock, AWarningOfAStepEndsTheStepsOfAChannel)
{
    EXPECT_CALL(*instrument, setCurrentLevel(3, 1.0)).WillOnce(Return(VI_SUCCESS));
    EXPECT_CALL(*instrument, setCurrentProtectionLevel(3, 1.0)).WillOnce(Return(5));
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", 1, 1.0), 5);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(OutputFunctionsOnMock, AWarningOfTheModeEndsTheCall)
{
    EXPECT_CALL(*instrument, sourceMode).WillOnce(DoAll(SetArgReferee<0>(TSRO::SourceMode::Normal), Return(5)));
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel1", VI_TRUE), 5);
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(OutputFunctionsOnMock, AFailureOfTheInstrumentIsRecordedWithItsMessage)
{
    EXPECT_CALL(*instrument, setOutputEnabled(4, true)).WillOnce(Return(code(0xBFFA4216)));
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel4", VI_TRUE), code(0xBFFA4216));
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA4216), "The operation (attribute or function) is not supported."}));
    EXPECT_EQ(timesRecorded(), 1U);
}

} // namespace
