#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/channel_limits.h"

#include <cmath>
#include <limits>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::IsEmpty;

class OutputFunctions : public ApiTest
{
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

TEST_F(OutputFunctions, TheCombinationsAreSwitchedToTheirMode)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel5", VI_TRUE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode SER\n", ":OUTP:STAT SER,ON\n"));
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
         {"OutputChannel7", "CH7", "ch1", "", "OutputChannel1:OutputChannel2", "OutputChannel1;2", "OutputChannel2-1"})
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
    EXPECT_EQ(KVX2800T_ConfigureOutputEnabled(vi, "OutputChannel3-4", VI_TRUE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "OutputChannel3", 1, 1.0), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel4", VI_TRUE, 1.0), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

TEST_F(OutputFunctions, LevelsAreCheckedAtTheLimitsOfEveryChannel)
{
    open();
    for (const ChannelMaximum& maximum : kChannelMaxima) {
        SCOPED_TRACE(maximum.name());
        const std::string channel = maximum.name();
        answer(":SOUR:Mode?", maximum.sourceMode);
        for (const ViReal64 volts : {0.0, maximum.volts})
            EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, channel.c_str(), volts), VI_SUCCESS);
        for (const ViReal64 amperes : {0.0, maximum.amperes})
            EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, channel.c_str(), 1, amperes), VI_SUCCESS);
        for (const ViReal64 volts : {std::nextafter(0.0, -1.0), std::nextafter(maximum.volts, 100.0)})
            EXPECT_EQ(KVX2800T_ConfigureVoltageLevel(vi, channel.c_str(), volts), kOutOfRange);
        for (const ViReal64 amperes : {std::nextafter(0.0, -1.0), std::nextafter(maximum.amperes, 100.0)})
            EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, channel.c_str(), 1, amperes), kOutOfRange);
    }
}

TEST_F(OutputFunctions, ShortNamesOfChannelsAreKnown)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureCurrentLimit(vi, "CH1", 1, 2.5), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR1:CURR 2.500000\n", ":SOUR1:CURR:PROT 2.500000\n",
                                       ":SOUR1:CURR:PROT:STAT ON\n"));
}

// Over-voltage protection

TEST_F(OutputFunctions, OvpSetsTheLevelAndThenTheProtection)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel1,OutputChannel4", VI_TRUE, 6.25), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR1:VOLT:PROT 6.250000\n", ":SOUR1:VOLT:PROT:STAT ON\n",
                                       ":SOUR4:VOLT:PROT 6.250000\n", ":SOUR4:VOLT:PROT:STAT ON\n"));
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(OutputFunctions, OvpSetsTheLevelAlsoWhenItIsSwitchedOff)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel3", VI_FALSE, 7.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT:PROT 7.000000\n", ":SOUR3:VOLT:PROT:STAT OFF\n"));
}

TEST_F(OutputFunctions, AnyOvpEnabledButFalseSwitchesOn)
{
    open();
    for (const ViBoolean enabled : std::initializer_list<ViBoolean>{2, 0xFFFF}) {
        clearLog();
        EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel3", enabled, 7.0), VI_SUCCESS);
        EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT:PROT 7.000000\n", ":SOUR3:VOLT:PROT:STAT ON\n"));
    }
}

TEST_F(OutputFunctions, TheOvpLevelIsTheInstrumentsToJudge)
{
    open();
    EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel4", VI_FALSE, -1.5), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel4", VI_FALSE, 1e6), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR4:VOLT:PROT -1.500000\n", ":SOUR4:VOLT:PROT:STAT OFF\n",
                                       ":SOUR4:VOLT:PROT 1000000.000000\n", ":SOUR4:VOLT:PROT:STAT OFF\n"));
}

TEST_F(OutputFunctions, AFailedOvpCommandEndsTheCall)
{
    open("QueryInstrStatus=1");
    for (std::size_t n = 1; n <= 5; ++n) {
        forget();
        failNthCallOf("viWrite", n, VI_ERROR_TMO);
        EXPECT_EQ(KVX2800T_ConfigureOVP(vi, "OutputChannel3-4", VI_TRUE, 1.0), kIoError) << n;
        expectRecordedOnce(kIoError, "I/O error.");
        EXPECT_EQ(written().size(), n - 1);
    }
}

// Functions that only check the channels

TEST_F(OutputFunctions, OutputRangeAndResetOutputProtectionSendNothing)
{
    open("QueryInstrStatus=1");
    for (const char* selector : {"OutputChannel1", "OutputChannel1-6", "[CH5, CH6]"}) {
        for (const ViInt32 rangeType : {0, 1, 2, -7})
            for (const ViReal64 range : {10.0, -1e9, std::nan("")})
                EXPECT_EQ(KVX2800T_ConfigureOutputRange(vi, selector, rangeType, range), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_ResetOutputProtection(vi, selector), VI_SUCCESS);
    }
    EXPECT_THAT(calls("vi"), IsEmpty());
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(OutputFunctions, OutputRangeAndResetOutputProtectionRefuseABadSelector)
{
    open();
    const std::pair<const char*, ViUInt32> selectors[] = {{nullptr, 0xBFFA0044},
                                                          {"  ", 0xBFFA0044},
                                                          {"OutputChannel1:OutputChannel2", 0xBFFA0063},
                                                          {"OutputChannel2-2", 0xBFFA0064},
                                                          {"?", 0xBFFA0066},
                                                          {"OutputChannel7", 0xBFFA0067}};
    for (const auto& [selector, bits] : selectors) {
        forget();
        EXPECT_EQ(KVX2800T_ConfigureOutputRange(vi, selector, 0, 10.0), code(bits));
        EXPECT_EQ(recorded().code, code(bits));
        EXPECT_EQ(timesRecorded(), 1U);
        forget();
        EXPECT_EQ(KVX2800T_ResetOutputProtection(vi, selector), code(bits));
        EXPECT_EQ(recorded().code, code(bits));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(lockDepth(vi), 0U);
    }
}

} // namespace
