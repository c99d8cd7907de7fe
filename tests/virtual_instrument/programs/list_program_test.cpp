#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

/// 10 ohms at channel 1, and a list of 5 V for one second and 8 V for two.
class List : public testing::Test
{
public:
    List()
    {
        device.control("load CH1 10");
        device.exchange("LIST:GROUP:PARA 1,5,1,1;PARA 2,8,1,2");
    }

    std::string status() { return device.exchange("LIST:STATUS?"); }
    std::string output() { return device.exchange("OUTP:STAT? CH1"); }
    std::string volts() { return device.exchange("MEAS:VOLT? CH1"); }
    void advance(int milliseconds) { device.control("advance " + std::to_string(milliseconds)); }

    void expectOutput(const char* expectedStatus, const char* expectedVolts)
    {
        EXPECT_EQ(status(), expectedStatus);
        EXPECT_EQ(volts(), expectedVolts);
    }

    ManualInstrument device;
};

constexpr const char* kStoppedList = "STOPPED,0.000000,0,0\n";

TEST_F(List, WaitsForTheOutputAndThenGoesThroughItsGroups)
{
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kNoError);
    expectOutput("READY,1.000000,1,1\n", "0.000\n");
    advance(5000);
    EXPECT_EQ(status(), "READY,1.000000,1,1\n");
    device.exchange("OUTP:STAT CH1,ON");
    expectOutput("RUNNING,1.000000,1,1\n", "5.000\n");
    advance(400);
    expectOutput("RUNNING,0.600000,1,1\n", "5.000\n");
    advance(600);
    expectOutput("RUNNING,2.000000,2,1\n", "8.000\n");
    EXPECT_EQ(device.exchange("LIST:STAT?"), "1\n");
    advance(1999);
    EXPECT_EQ(status(), "RUNNING,0.001000,2,1\n");
    advance(1);
    expectOutput(kStoppedList, "0.000\n");
    EXPECT_EQ(device.exchange("LIST:STAT?;:OUTP:STAT? CH1"), "0;0\n");
}

TEST_F(List, StartsAtOnceWithTheOutputOn)
{
    device.exchange("OUTP:STAT CH1,ON;:LIST:STAT ON");
    expectOutput("RUNNING,1.000000,1,1\n", "5.000\n");
    EXPECT_EQ(device.exchange("MEAS:ALL? CH1"), "5.000,0.500,2.500\n");
}

TEST_F(List, RegulatesAtTheLevelsOfItsGroup)
{
    device.exchange("LIST:GROUP:PARA 1,20,1.5,1;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    EXPECT_EQ(device.exchange("MEAS:ALL? CH1"), "15.000,1.500,22.500\n");
    EXPECT_EQ(device.exchange("OUTP:CVCC? CH1;:STAT:QUES:INST:ISUM1:COND?"), "CC;1\n");
    advance(1000);
    EXPECT_EQ(device.exchange("OUTP:CVCC? CH1;:STAT:QUES:INST:ISUM1:COND?"), "CV;2\n");
}

TEST_F(List, LeavesTheSettingsOfTheChannelAlone)
{
    device.exchange("SOUR1:VOLT 3;CURR 2;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    EXPECT_EQ(device.exchange("SOUR1:VOLT?;CURR?"), "3.000000;2.000000\n");
    device.exchange("SOUR1:VOLT 4");
    EXPECT_EQ(volts(), "5.000\n");
    advance(3000);
    EXPECT_EQ(device.exchange("SOUR1:VOLT?;CURR?"), "4.000000;2.000000\n");
    device.exchange("OUTP:STAT CH1,ON");
    EXPECT_EQ(volts(), "4.000\n");
}

TEST_F(List, EndStateLastMakesTheLastGroupTheSettings)
{
    device.exchange("SOUR1:VOLT 3;:LIST:ENDS LAST;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(3000);
    expectOutput(kStoppedList, "8.000\n");
    EXPECT_EQ(device.exchange("OUTP:STAT? CH1;:SOUR1:VOLT?;CURR?"), "1;8.000000;1.000000\n");
}

TEST_F(List, SwitchingItOffBringsTheEndStateAbout)
{
    device.exchange("OUTP:STAT CH1,ON;:LIST:STAT ON;STAT OFF");
    EXPECT_EQ(status(), kStoppedList);
    EXPECT_EQ(output(), "0\n");

    device.exchange("LIST:ENDS LAST;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(1500);
    device.exchange("LIST:STAT OFF");
    expectOutput(kStoppedList, "8.000\n");

    device.exchange("LIST:STAT ON;:OUTP:STAT CH1,OFF;:LIST:STAT OFF");
    EXPECT_EQ(device.exchange("OUTP:STAT? CH1;:SOUR1:VOLT?"), "0;5.000000\n");
}

TEST_F(List, SwitchingItOffBeforeItHasBegunAppliesItsEndState)
{
    device.exchange("TRIG:IN:ENAB CH1,ON;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    EXPECT_EQ(status(), "READY,1.000000,1,1\n");
    device.exchange("LIST:STAT OFF");
    EXPECT_EQ(status(), kStoppedList);
    EXPECT_EQ(output(), "0\n");
}

TEST_F(List, SwitchingItOffBeforeItHasBegunWithLastLeavesTheLevelsAlone)
{
    device.exchange(
        "SOUR1:VOLT 12.5;:TRIG:IN:ENAB CH1,ON;:OUTP:STAT CH1,ON;:LIST:ENDS LAST;:LIST:STAT ON;:LIST:STAT OFF");
    EXPECT_EQ(status(), kStoppedList);
    EXPECT_EQ(output(), "1\n");
    EXPECT_EQ(device.exchange("SOUR1:VOLT?"), "12.500000\n");
}

TEST_F(List, SwitchingItToWhatItIsDoesNothing)
{
    EXPECT_EQ(device.errorOf("LIST:STAT OFF"), kNoError);
    device.exchange("OUTP:STAT CH1,ON;:LIST:STAT OFF");
    EXPECT_EQ(output(), "1\n");
    device.exchange("LIST:STAT ON");
    advance(1500);
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kNoError);
    EXPECT_EQ(status(), "RUNNING,1.500000,2,1\n");
}

TEST_F(List, PausesWhileTheOutputIsOff)
{
    device.exchange("LIST:STAT ON;:OUTP:STAT CH1,ON");
    advance(1250);
    device.exchange("OUTP:STAT CH1,OFF");
    expectOutput("PAUSED,1.750000,2,1\n", "0.000\n");
    EXPECT_EQ(device.exchange("LIST:STAT?"), "1\n");
    advance(60'000);
    EXPECT_EQ(status(), "PAUSED,1.750000,2,1\n");
    device.exchange("OUTP:STAT ALL,ON");
    expectOutput("RUNNING,1.750000,2,1\n", "8.000\n");
    device.exchange("OUTP:STAT ALL,OFF");
    EXPECT_EQ(status(), "PAUSED,1.750000,2,1\n");
}

TEST_F(List, AwaitsATriggerWithTheTriggerInputEnabled)
{
    device.exchange("TRIG:IN:ENAB CH1,ON;:LIST:STAT ON;*TRG");
    EXPECT_EQ(status(), "READY,1.000000,1,1\n");
    device.exchange("OUTP:STAT CH1,ON");
    advance(100);
    expectOutput("READY,1.000000,1,1\n", "0.000\n");
    device.exchange("*TRG");
    expectOutput("RUNNING,1.000000,1,1\n", "5.000\n");
    advance(500);
    device.exchange("*TRG");
    EXPECT_EQ(status(), "RUNNING,0.500000,1,1\n");
    device.exchange("OUTP:STAT CH1,OFF");
    device.exchange("OUTP:STAT CH1,ON");
    EXPECT_EQ(status(), "RUNNING,0.500000,1,1\n");
    EXPECT_EQ(device.error(), kNoError);
}

TEST_F(List, StartsWhenTheTriggerInputIsDisabled)
{
    device.exchange("TRIG:IN:ENAB CH1,ON;:LIST:STAT ON;:OUTP:STAT CH1,ON;:TRIG:IN:ENAB CH1,OFF");
    EXPECT_EQ(status(), "RUNNING,1.000000,1,1\n");
}

TEST_F(List, ATriggerStartsTheListsOfAllChannels)
{
    device.exchange("INST:SELE CH2;:LIST:GROUP:PARA 1,1,1,1");
    device.exchange("TRIG:IN:ENAB CH1,ON;ENAB CH2,ON;:LIST:STAT ON;:INST:SELE CH1;:LIST:STAT ON;:OUTP:STAT ALL,ON");
    EXPECT_EQ(status(), "READY,1.000000,1,1\n");
    device.exchange("*TRG");
    EXPECT_EQ(status(), "RUNNING,1.000000,1,1\n");
    EXPECT_EQ(device.exchange("INST:SELE CH2;:LIST:STATUS?"), "RUNNING,1.000000,1,1\n");
}

TEST_F(List, CountsItsCyclesDown)
{
    device.exchange("LIST:CYCLE 3;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    EXPECT_EQ(status(), "RUNNING,1.000000,1,3\n");
    advance(3500);
    EXPECT_EQ(status(), "RUNNING,0.500000,1,2\n");
    advance(3000);
    EXPECT_EQ(status(), "RUNNING,0.500000,1,1\n");
    advance(2499);
    EXPECT_EQ(status(), "RUNNING,0.001000,2,1\n");
    advance(1);
    EXPECT_EQ(status(), kStoppedList);
}

TEST_F(List, CyclesOfZeroHaveNoEnd)
{
    device.exchange("LIST:CYCLE 0;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    EXPECT_EQ(status(), "RUNNING,1.000000,1,0\n");
    for (int day = 0; day < 400; ++day)
        advance(86'400'000);
    EXPECT_EQ(status(), "RUNNING,1.000000,1,0\n");
    advance(1001);
    EXPECT_EQ(status(), "RUNNING,1.999000,2,0\n");
}

TEST_F(List, TheLongestOneEndsWhenItShould)
{
    device.exchange("LIST:GROUP:CLE;:LIST:CYCLE 99999");
    for (int number = 1; number <= 512; ++number)
        device.exchange("LIST:GROUP:PARA " + std::to_string(number) + ",5,1,0.001");
    device.exchange("OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(51'199'487);
    EXPECT_EQ(status(), "RUNNING,0.001000,512,1\n");
    advance(1);
    EXPECT_EQ(status(), kStoppedList);
    device.exchange("OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(86'400'000);
    EXPECT_EQ(status(), kStoppedList);
}

TEST_F(List, AnEndlessOneOfTheShortestGroupsRunsForACentury)
{
    device.exchange("LIST:GROUP:CLE;:LIST:CYCLE 0;GROUP:PARA 1,5,1,0.001;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    for (int day = 0; day < 36'600; ++day)
        advance(86'400'000);
    EXPECT_EQ(status(), "RUNNING,0.001000,1,0\n");
}

TEST_F(List, ProtectionSeesEveryGroupOfOneLongStep)
{
    device.exchange("LIST:GROUP:CLE;PARA 1,5,1,1;PARA 2,9,1,0.3;PARA 3,9,1,0.3;:LIST:CYCLE 5");
    device.exchange("OUTP:OCP:VAL CH1,0.8;DEL CH1,0.5;STAT CH1,ON;:OUTP:STAT CH1,ON;:LIST:STAT ON;*CLS");
    advance(1499);
    EXPECT_EQ(output(), "1\n");
    advance(86'400'000);
    EXPECT_EQ(output(), "0\n");
    EXPECT_EQ(status(), kStoppedList);
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?;EVEN?"), "8;8\n");
}

TEST_F(List, ADemandThatEndsInTimeNeverTrips)
{
    device.exchange("LIST:GROUP:CLE;PARA 1,5,1,0.1;PARA 2,9,1,0.499;:LIST:CYCLE 1000");
    device.exchange("OUTP:OCP:VAL CH1,0.8;DEL CH1,0.5;STAT CH1,ON;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(598'999);
    EXPECT_EQ(status(), "RUNNING,0.001000,2,1\n");
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:EVEN?"), "2\n");
}

TEST_F(List, ADemandAcrossTheEndOfACycleTrips)
{
    device.exchange("LIST:GROUP:CLE;PARA 1,9,1,0.2;PARA 2,5,1,1;PARA 3,9,1,0.4;:LIST:CYCLE 1000");
    device.exchange("OUTP:OCP:VAL CH1,0.8;DEL CH1,0.5;STAT CH1,ON;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(1699);
    EXPECT_EQ(output(), "1\n");
    advance(1);
    EXPECT_EQ(output(), "0\n");
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?"), "8\n");
}

TEST_F(List, ADemandAsLongAsTheDelayTripsAtTheEndOfItsGroup)
{
    device.exchange("LIST:GROUP:CLE;PARA 1,9,1,0.5;PARA 2,5,1,1");
    device.exchange("OUTP:OCP:VAL CH1,0.8;DEL CH1,0.5;STAT CH1,ON;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(500);
    EXPECT_EQ(output(), "0\n");
    EXPECT_EQ(status(), kStoppedList);
}

TEST_F(List, AGroupAboveTheOverVoltageLevelTripsAndEndsIt)
{
    device.exchange("SOUR1:VOLT 3;:LIST:ENDS LAST;:OUTP:OVP:VAL CH1,7;STAT CH1,ON;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    advance(999);
    EXPECT_EQ(status(), "RUNNING,0.001000,1,1\n");
    advance(100'000);
    EXPECT_EQ(status(), kStoppedList);
    EXPECT_EQ(device.exchange("OUTP:STAT? CH1;:SOUR1:VOLT?;:STAT:QUES:INST:ISUM1:COND?"), "0;3.000000;4\n");
}

TEST_F(List, EventsOfGroupsThatHavePassedStayLatched)
{
    device.exchange("LIST:GROUP:CLE;PARA 1,5,1,1;PARA 2,5,0.1,0.001;PARA 3,5,1,1;:LIST:ENDS LAST");
    device.exchange("OUTP:STAT CH1,ON;:LIST:STAT ON;*CLS");
    advance(5000);
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?;EVEN?"), "2;3\n");
}

TEST_F(List, ListsOfDifferentChannelsRunByThemselves)
{
    device.exchange("LIST:STAT ON;:OUTP:STAT CH1,ON");
    advance(500);
    device.exchange("INST:SELE CH3;:LIST:GROUP:PARA 1,2,1,10;:OUTP:STAT CH3,ON;:LIST:STAT ON");
    advance(1000);
    EXPECT_EQ(status(), "RUNNING,9.000000,1,1\n");
    EXPECT_EQ(device.exchange("MEAS:VOLT? CH1;VOLT? CH3"), "8.000;2.000\n");
    EXPECT_EQ(device.exchange("INST:SELE CH1;:LIST:STATUS?"), "RUNNING,1.500000,2,1\n");
}

TEST_F(List, CannotStartWithoutGroups)
{
    device.exchange("LIST:GROUP:CLE");
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kSettingsConflict);
    EXPECT_EQ(device.exchange("LIST:STAT?"), "0\n");
}

TEST_F(List, CannotStartOnAChannelThatIsNotLiveOrSettles)
{
    device.exchange("INST:SELE SER;:LIST:GROUP:PARA 1,1,1,1");
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kSettingsConflict);
    device.exchange("SOUR:MODE SER");
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kSettingsConflict);
    EXPECT_EQ(device.errorOf("LIST:STAT OFF"), kNoError);
    advance(500);
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kNoError);
    EXPECT_EQ(status(), "READY,1.000000,1,1\n");
}

TEST_F(List, CannotStartWhileTheDelayProgramRuns)
{
    device.exchange("DELAY:GROUP:PARA 1,ON,1;:DELAY:STAT ON");
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kSettingsConflict);
    EXPECT_EQ(status(), kStoppedList);
    device.exchange("DELAY:STAT OFF");
    EXPECT_EQ(device.errorOf("LIST:STAT ON"), kNoError);
}

TEST_F(List, CannotBeEditedWhileItIsActive)
{
    device.exchange("LIST:STAT ON");
    for (const auto* const state : {"READY,1.000000,1,1\n", "RUNNING,1.000000,1,1\n", "PAUSED,1.000000,1,1\n"}) {
        EXPECT_EQ(status(), state);
        for (const auto* const edit :
             {"LIST:GROUP:PARA 1,1,1,1", "LIST:GROUP:PARA 3,1,1,1", "LIST:GROUP:INS 1", "LIST:GROUP:DEL 1",
              "LIST:GROUP:CLE", "LIST:TEMP:CONST 1", "LIST:CYCLE 2", "LIST:ENDS LAST"})
            EXPECT_EQ(device.errorOf(edit), kSettingsConflict) << edit << " in " << state;
        device.exchange(output() == "0\n" ? "OUTP:STAT CH1,ON" : "OUTP:STAT CH1,OFF");
    }
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?;PARA? 1"), "2;5.000000,1.000000,1.000000\n");
    EXPECT_EQ(device.exchange("LIST:CYCLE?;ENDS?"), "1;OFF\n");
}

TEST_F(List, ItsTemplateAndTheDelayProgramMayBeEditedWhileItRuns)
{
    device.exchange("LIST:STAT ON");
    EXPECT_EQ(device.errorOf("LIST:TEMP:SEL UP;MAXV 3"), kNoError);
    EXPECT_EQ(device.errorOf("DELAY:GROUP:PARA 1,ON,1;:DELAY:GEN:CONST 1"), kNoError);
}

TEST_F(List, ASourceModeEndsThoseOfTheOutputsItConcerns)
{
    device.exchange("LIST:ENDS LAST;:OUTP:STAT ALL,ON;:LIST:STAT ON");
    device.exchange("INST:SELE CH3;:LIST:GROUP:PARA 1,1,1,10;:LIST:STAT ON;:SOUR:MODE PARA");
    EXPECT_EQ(status(), "RUNNING,10.000000,1,1\n");
    device.exchange("INST:SELE CH1");
    EXPECT_EQ(status(), kStoppedList);
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?;:SOUR1:VOLT?"), "2;0.000000\n");
    device.exchange("SOUR:MODE NORMAL");
    advance(500);
    device.exchange("OUTP:STAT CH1,ON");
    EXPECT_EQ(status(), kStoppedList);
}

TEST_F(List, TheSameSourceModeAgainLeavesItRunning)
{
    device.exchange("OUTP:STAT CH1,ON;:LIST:STAT ON;:SOUR:MODE NORMAL");
    EXPECT_EQ(status(), "RUNNING,1.000000,1,1\n");
}

TEST_F(List, RunsOnACombinedChannel)
{
    device.exchange("SOUR:MODE SER;:INST:SELE SER;:LIST:GROUP:PARA 1,40,1,1");
    advance(500);
    device.exchange("OUTP:STAT SER,ON;:LIST:STAT ON");
    EXPECT_EQ(device.exchange("MEAS:VOLT? SER;VOLT? CH1"), "40.000;20.000\n");
}

TEST_F(List, ResetStopsAndClearsIt)
{
    device.exchange("LIST:CYCLE 5;ENDS LAST;TEMP:SEL FALL;:OUTP:STAT CH1,ON;:LIST:STAT ON;*RST");
    EXPECT_EQ(status(), kStoppedList);
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?;:LIST:CYCLE?;ENDS?;TEMP:SEL?;:OUTP:STAT? CH1;:SOUR1:VOLT?"),
              "0;1;OFF;SINE;0;0.000000\n");
}

TEST_F(List, APowerCycleStopsItAndKeepsItAsThePowerOnStateSays)
{
    device.exchange("OUTP:PONS:STAT CH1,LAST;:SOUR1:VOLT 3;CURR 1;:LIST:ENDS LAST;:OUTP:STAT CH1,ON;:LIST:STAT ON");
    device.control("power-cycle");
    expectOutput(kStoppedList, "3.000\n");
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?;:LIST:ENDS?"), "2;LAST\n");
    device.exchange("OUTP:PONS:STAT CH1,RST");
    device.control("power-cycle");
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?;:LIST:ENDS?"), "0;OFF\n");
}

} // namespace
