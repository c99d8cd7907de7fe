#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

TEST(Regulation, FollowsTheLoad)
{
    ManualInstrument supply;
    supply.control("load CH1 10");
    supply.exchange("SOUR1:VOLT 5;CURR 0.5;:OUTP:STAT CH1,ON");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH1"), "5.000,0.500,2.500\n");
    EXPECT_EQ(supply.exchange("OUTP:CVCC? CH1"), "CV\n");
    supply.exchange("SOUR1:VOLT 6");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH1"), "5.000,0.500,2.500\n");
    EXPECT_EQ(supply.exchange("OUTP:CVCC? CH1"), "CC\n");
    supply.control("load CH1 open");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH1"), "6.000,0.000,0.000\n");
    supply.control("load CH1 0");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH1"), "0.000,0.500,0.000\n");
    supply.exchange("OUTP:STAT CH1,OFF");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH1"), "0.000,0.000,0.000\n");
}

TEST(Regulation, PowerIsTheProductOfTheUnroundedValues)
{
    ManualInstrument supply;
    supply.control("load CH1 3");
    supply.exchange("SOUR1:VOLT 1.0006;CURR 3;:OUTP:STAT CH1,ON");
    EXPECT_EQ(supply.exchange("MEAS:VOLT? CH1"), "1.001\n");
    EXPECT_EQ(supply.exchange("MEAS:CURR? CH1"), "0.334\n");
    EXPECT_EQ(supply.exchange("MEAS:POWE? CH1"), "0.334\n");
}

TEST(Questionable, ConditionFollowsAndEventLatches)
{
    ManualInstrument supply;
    supply.control("load CH2 10");
    const auto* const kCondition = "STAT:QUES:INST:ISUM2:COND?";
    const auto* const kEvent = "STAT:QUES:INST:ISUM2:EVEN?";
    EXPECT_EQ(supply.exchange(kCondition), "0\n");
    supply.exchange("SOUR2:VOLT 1;CURR 1;:OUTP:STAT CH2,ON");
    EXPECT_EQ(supply.exchange(kCondition), "2\n");
    supply.exchange("SOUR2:VOLT 20");
    EXPECT_EQ(supply.exchange(kCondition), "1\n");
    supply.exchange("OUTP:STAT CH2,OFF");
    EXPECT_EQ(supply.exchange(kCondition), "0\n");
    EXPECT_EQ(supply.exchange(kEvent), "3\n");
    EXPECT_EQ(supply.exchange(kEvent), "0\n");
    supply.exchange("OUTP:STAT CH2,ON;*CLS");
    EXPECT_EQ(supply.exchange(kEvent), "0\n");
}

TEST(OverVoltage, TripsAtOnceAndLatchesUntilTheOutputIsSwitchedOn)
{
    ManualInstrument supply;
    supply.exchange("SOUR1:VOLT 5;VOLT:PROT 6;PROT:STAT ON;:OUTP:STAT CH1,ON");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1"), "1\n");
    supply.exchange("SOUR1:VOLT 6.5");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1"), "0\n");
    EXPECT_EQ(supply.exchange("STAT:QUES:INST:ISUM1:COND?"), "4\n");
    supply.exchange("OUTP:STAT CH1,OFF;:SOUR1:VOLT 6");
    EXPECT_EQ(supply.exchange("STAT:QUES:INST:ISUM1:COND?"), "4\n");
    supply.exchange("OUTP:STAT CH1,ON");
    EXPECT_EQ(supply.exchange("STAT:QUES:INST:ISUM1:COND?;EVEN?"), "2;6\n");
    EXPECT_EQ(supply.error(), kNoError);
}

TEST(OverVoltage, DoesNothingWhileItIsOff)
{
    ManualInstrument supply;
    supply.exchange("SOUR1:VOLT 5;VOLT:PROT 1;:OUTP:STAT CH1,ON");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1"), "1\n");
    supply.exchange("OUTP:OVP:STAT CH1,ON");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1"), "0\n");
}

TEST(OverCurrent, TripsWhenTheLoadDemandsTooMuchForTheDelay)
{
    ManualInstrument supply;
    supply.control("load CH3 10");
    supply.exchange("SOUR3:VOLT 10;CURR 3;CURR:PROT 0.9;PROT:STAT ON;DEL 0.5;:OUTP:STAT CH3,ON");
    supply.control("advance 499");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH3"), "1\n");
    supply.exchange("SOUR3:VOLT 1");
    supply.exchange("SOUR3:VOLT 10");
    supply.control("advance 499");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH3"), "1\n");
    supply.control("advance 1");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH3"), "0\n");
    EXPECT_EQ(supply.exchange("STAT:QUES:INST:ISUM3:COND?"), "8\n");
    supply.exchange("*RST");
    EXPECT_EQ(supply.exchange("STAT:QUES:INST:ISUM3:COND?"), "0\n");
}

TEST(OverCurrent, WithoutDelayTripsAtOnce)
{
    ManualInstrument supply;
    supply.control("load CH4 1");
    supply.exchange("OUTP:OCP:VAL CH4,1;STAT CH4,ON;:SOUR4:VOLT 2;:OUTP:STAT CH4,ON");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH4"), "0\n");
}

TEST(SourceMode, DecidesWhichChannelsAreLive)
{
    struct Case
    {
        const char* mode;
        const char* live;
    };
    for (const auto& [mode, live] : {Case{"NORMAL", "111100"}, Case{"SER", "001110"}, Case{"PARA", "001101"}}) {
        ManualInstrument supply;
        supply.exchange(std::string("SOUR:MODE ") + mode);
        supply.control("advance 500");
        for (int channel = 1; channel <= 6; ++channel) {
            const auto message = "SOUR" + std::to_string(channel) + ":VOLT 1";
            const bool isLive = live[channel - 1] == '1';
            EXPECT_EQ(supply.errorOf(message), isLive ? kNoError : kSettingsConflict) << mode << ' ' << message;
        }
    }
}

TEST(SourceMode, ChangeSwitchesTheOutputsItConcernsOff)
{
    ManualInstrument supply;
    supply.exchange("OUTP:STAT ALL,ON;:SOUR:MODE SER");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1;STAT? CH2;STAT? CH3;STAT? CH4;STAT? CH5;STAT? CH6"), "0;0;1;1;0;0\n");
    EXPECT_EQ(supply.error(), kNoError);
}

TEST(SourceMode, TheSameModeAgainDoesNothing)
{
    ManualInstrument supply;
    supply.exchange("OUTP:STAT CH1,ON;:SOUR:MODE NORMAL;:SOUR1:VOLT 1");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1"), "1\n");
    EXPECT_EQ(supply.error(), kNoError);
}

TEST(SourceMode, OutputsSettleAfterAChange)
{
    ManualInstrument supply;
    supply.exchange("SOUR:MODE SER");
    supply.control("advance 499");
    EXPECT_EQ(supply.errorOf("SOUR5:VOLT 1"), kSettingsConflict);
    EXPECT_EQ(supply.errorOf("SOUR5:CURR 1"), kSettingsConflict);
    EXPECT_EQ(supply.errorOf("OUTP:OVP:STAT SER,ON"), kSettingsConflict);
    EXPECT_EQ(supply.errorOf("OUTP:STAT SER,ON"), kSettingsConflict);
    EXPECT_EQ(supply.errorOf("OUTP:STAT ALL,ON"), kSettingsConflict);
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH3"), "0\n");
    EXPECT_EQ(supply.errorOf("OUTP:STAT SER,OFF"), kNoError);
    EXPECT_EQ(supply.errorOf("OUTP:STAT ALL,OFF"), kNoError);
    EXPECT_EQ(supply.errorOf("SOUR3:VOLT 1"), kNoError);
    EXPECT_EQ(supply.exchange("SOUR5:VOLT?"), "0.000000\n");
    supply.control("advance 1");
    EXPECT_EQ(supply.errorOf("SOUR5:VOLT 1"), kNoError);
    EXPECT_EQ(supply.exchange("SOUR5:VOLT?"), "1.000000\n");
}

TEST(SourceMode, SettlingTimeIsAnOption)
{
    kvxvirtual::InstrumentSettings settings;
    settings.settleTime = std::chrono::milliseconds(0);
    ManualInstrument supply(settings);
    EXPECT_EQ(supply.errorOf("SOUR:MODE PARA;:SOUR6:VOLT 1"), kNoError);
}

TEST(SourceMode, MetersOfTheCombinedOutputsShowTheirPart)
{
    ManualInstrument supply;
    supply.control("load SER 20");
    supply.control("load PAR 5");
    supply.exchange("SOUR:MODE SER");
    supply.control("advance 500");
    supply.exchange("SOUR5:VOLT 40;CURR 3;:OUTP:STAT SER,ON");
    EXPECT_EQ(supply.exchange("MEAS:ALL? SER"), "40.000,2.000,80.000\n");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH1"), "20.000,2.000,40.000\n");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH2"), "20.000,2.000,40.000\n");
    supply.exchange("SOUR:MODE PARA");
    supply.control("advance 500");
    supply.exchange("SOUR6:VOLT 20;CURR 6;:OUTP:STAT PAR,ON");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH6"), "20.000,4.000,80.000\n");
    EXPECT_EQ(supply.exchange("MEAS:ALL? CH1"), "20.000,2.000,40.000\n");
    EXPECT_EQ(supply.error(), kNoError);
}

TEST(Reset, RestoresEverythingButThePowerOnStates)
{
    ManualInstrument supply;
    supply.exchange("INST:SELE CH3;:SOUR:BLE ON;:SOUR1:VOLT 5;CURR 2;VOLT:PROT 7;PROT:STAT ON;:OUTP:STAT CH1,ON");
    supply.exchange("OUTP:PONS:STAT CH1,LOFF;:OUTP:PAIR CH1,PAR;:MEAS:CURR:RATE CH1,8000;:SOUR:MODE SER;*RST");
    EXPECT_EQ(supply.exchange("INST:SELE?"), "CH1\n");
    EXPECT_EQ(supply.exchange("SOUR:MODE?;BLE?"), "NORMAL;0\n");
    EXPECT_EQ(supply.exchange("SOUR1:VOLT?;CURR?;:OUTP:OVP:VAL? CH1;STAT? CH1;:OUTP:OCP:VAL? CH1"),
              "0.000000;0.100000;36.300000;0;3.520000\n");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1;:OUTP:PONS:STAT? CH1;:OUTP:PAIR? CH1;:MEAS:CURR:RATE? CH1"),
              "0;LOFF;OFF;62\n");
    EXPECT_EQ(supply.errorOf("SOUR1:VOLT 1"), kNoError);
}

TEST(PowerCycle, BringsEachChannelUpAsItsPowerOnStateSays)
{
    ManualInstrument supply;
    supply.exchange("OUTP:PONS:STAT CH2,LAST;STAT CH3,LOFF;*ESE 4;:BAD");
    supply.exchange("SOUR1:VOLT 1;:SOUR2:VOLT 2;:SOUR3:VOLT 3;:OUTP:STAT ALL,ON");
    EXPECT_EQ(supply.control("power-cycle"), "ok\n");
    EXPECT_EQ(supply.exchange("SOUR1:VOLT?;:SOUR2:VOLT?;:SOUR3:VOLT?"), "0.000000;2.000000;3.000000\n");
    EXPECT_EQ(supply.exchange("OUTP:STAT? CH1;STAT? CH2;STAT? CH3;STAT? CH4"), "0;1;0;0\n");
    EXPECT_EQ(supply.exchange("OUTP:PONS:STAT? CH1;STAT? CH2;STAT? CH3"), "RST;LAST;LOFF\n");
    EXPECT_EQ(supply.exchange("*ESR?;*ESE?"), "128;0\n");
    EXPECT_EQ(supply.error(), kNoError);
}

} // namespace
