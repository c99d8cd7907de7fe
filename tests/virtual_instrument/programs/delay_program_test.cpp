#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gmock/gmock.h>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;

/// 10 ohms at channel 1, set to 5 V, and a delay program of half a second off and one second on.
class Delay : public testing::Test
{
public:
    Delay()
    {
        device.control("load CH1 10");
        device.exchange("SOUR1:VOLT 5;CURR 1;:DELAY:GROUP:PARA 1,OFF,0.5;PARA 2,ON,1");
    }

    std::string status() { return device.exchange("DELAY:STATUS?"); }
    std::string output() { return device.exchange("OUTP:STAT? CH1"); }
    void advance(int milliseconds) { device.control("advance " + std::to_string(milliseconds)); }

    ManualInstrument device;
};

constexpr const char* kStopped = "STOPPED,0.000000,0,0\n";

TEST_F(Delay, SwitchesTheOutputAsItsGroupsSay)
{
    device.exchange("OUTP:STAT CH1,ON");
    EXPECT_EQ(device.errorOf("DELAY:STAT ON"), kNoError);
    EXPECT_EQ(status(), "RUNNING,0.500000,1,1\n");
    EXPECT_EQ(output(), "0\n");
    advance(499);
    EXPECT_EQ(status(), "RUNNING,0.001000,1,1\n");
    advance(1);
    EXPECT_EQ(status(), "RUNNING,1.000000,2,1\n");
    EXPECT_EQ(device.exchange("MEAS:ALL? CH1"), "5.000,0.500,2.500\n");
    EXPECT_EQ(device.exchange("DELAY:STAT?"), "1\n");
    advance(1000);
    EXPECT_EQ(status(), kStopped);
    EXPECT_EQ(device.exchange("DELAY:STAT?;:OUTP:STAT? CH1"), "0;0\n");
}

TEST_F(Delay, NeitherTheOutputNorATriggerHoldsItUp)
{
    device.exchange("TRIG:IN:ENAB CH1,ON;:DELAY:STAT ON");
    advance(500);
    EXPECT_EQ(status(), "RUNNING,1.000000,2,1\n");
    EXPECT_EQ(output(), "1\n");
}

TEST_F(Delay, EndStateDecidesAboutTheOutput)
{
    struct Case
    {
        const char* endState;
        const char* lastGroup;
        const char* output;
    };
    for (const auto& [endState, lastGroup, expected] :
         {Case{"OFF", "ON", "0\n"}, Case{"ON", "ON", "1\n"}, Case{"LAST", "ON", "1\n"}, Case{"OFF", "OFF", "0\n"},
          Case{"ON", "OFF", "1\n"}, Case{"LAST", "OFF", "0\n"}})
    {
        device.exchange(std::string("DELAY:ENDS ") + endState + ";GROUP:PARA 2," + lastGroup + ",1;:DELAY:STAT ON");
        advance(1499);
        EXPECT_EQ(status(), "RUNNING,0.001000,2,1\n");
        advance(1);
        EXPECT_EQ(output(), expected) << endState << " after " << lastGroup;
        EXPECT_EQ(status(), kStopped);
    }
}

TEST_F(Delay, SwitchingItOffBringsTheEndStateAbout)
{
    device.exchange("DELAY:ENDS ON;STAT ON;STAT OFF");
    EXPECT_EQ(status(), kStopped);
    EXPECT_EQ(output(), "1\n");
    device.exchange("DELAY:STAT OFF;:DELAY:ENDS OFF;STAT OFF");
    EXPECT_EQ(output(), "1\n");
}

TEST_F(Delay, SwitchingTheOutputOffStopsIt)
{
    device.exchange("DELAY:ENDS ON;STAT ON");
    advance(600);
    device.exchange("OUTP:STAT CH1,OFF");
    EXPECT_EQ(status(), kStopped);
    advance(10'000);
    EXPECT_EQ(output(), "0\n");
}

TEST_F(Delay, SwitchingTheOutputOnHoldsUntilTheNextGroup)
{
    device.exchange("DELAY:GROUP:PARA 2,OFF,1;:DELAY:STAT ON;:OUTP:STAT CH1,ON");
    EXPECT_EQ(output(), "1\n");
    EXPECT_EQ(status(), "RUNNING,0.500000,1,1\n");
    advance(500);
    EXPECT_EQ(output(), "0\n");
}

TEST_F(Delay, CountsItsCyclesDown)
{
    device.exchange("DELAY:CYCLEs 3;STAT ON");
    EXPECT_EQ(status(), "RUNNING,0.500000,1,3\n");
    advance(1600);
    EXPECT_EQ(status(), "RUNNING,0.400000,1,2\n");
    advance(2899);
    EXPECT_EQ(status(), "RUNNING,0.001000,2,1\n");
    advance(1);
    EXPECT_EQ(status(), kStopped);
}

TEST_F(Delay, TheLongestOneEndsWhenItShould)
{
    device.exchange("DELAY:GROUP:CLE;:DELAY:CYCLEs 99999;GEN:TIM:ON 0.001;OFF 0.001;:DELAY:GEN:POINTs 512;CONST 1");
    device.exchange("DELAY:STAT ON");
    advance(51'199'487);
    EXPECT_EQ(status(), "RUNNING,0.001000,512,1\n");
    advance(1);
    EXPECT_EQ(status(), kStopped);
}

TEST_F(Delay, AnEndlessOneGoesOn)
{
    device.exchange("DELAY:CYCLEs 0;STAT ON");
    for (int day = 0; day < 400; ++day)
        advance(86'400'000);
    EXPECT_EQ(status(), "RUNNING,0.500000,1,0\n");
}

TEST_F(Delay, ProtectionSeesEveryGroupOfOneLongStep)
{
    device.exchange("OUTP:OCP:VAL CH1,0.3;DEL CH1,0.6;STAT CH1,ON;:DELAY:CYCLE 10;ENDS ON;STAT ON");
    advance(1099);
    EXPECT_EQ(output(), "1\n");
    advance(86'400'000);
    EXPECT_EQ(output(), "0\n");
    EXPECT_EQ(status(), kStopped);
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?;EVEN?"), "8;10\n");
}

TEST_F(Delay, EventsOfGroupsThatHavePassedStayLatched)
{
    device.exchange("DELAY:STAT ON");
    advance(5000);
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?;EVEN?"), "0;2\n");
}

TEST_F(Delay, AGroupThatIsOnClearsAnEarlierTrip)
{
    device.exchange("OUTP:OVP:VAL CH1,4;STAT CH1,ON;:OUTP:STAT CH1,ON");
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?"), "4\n");
    device.exchange("OUTP:OVP:STAT CH1,OFF;:DELAY:STAT ON");
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?"), "4\n");
    advance(500);
    EXPECT_EQ(device.exchange("STAT:QUES:INST:ISUM1:COND?"), "2\n");
}

TEST_F(Delay, CannotStartWithoutGroupsOrOnAChannelThatIsNotReady)
{
    device.exchange("DELAY:GROUP:CLE");
    EXPECT_EQ(device.errorOf("DELAY:STAT ON"), kSettingsConflict);
    device.exchange("INST:SELE PAR;:DELAY:GROUP:PARA 1,ON,1");
    EXPECT_EQ(device.errorOf("DELAY:STAT ON"), kSettingsConflict);
    device.exchange("SOUR:MODE PARA");
    EXPECT_EQ(device.errorOf("DELAY:STAT ON"), kSettingsConflict);
    advance(500);
    EXPECT_EQ(device.errorOf("DELAY:STAT ON"), kNoError);
    EXPECT_EQ(device.exchange("OUTP:STAT? PAR"), "1\n");
}

TEST_F(Delay, CannotStartWhileTheListIsActive)
{
    device.exchange("LIST:GROUP:PARA 1,1,1,1;:LIST:STAT ON");
    EXPECT_EQ(device.errorOf("DELAY:STAT ON"), kSettingsConflict);
    device.exchange("OUTP:STAT CH1,ON");
    EXPECT_EQ(device.errorOf("DELAY:STAT ON"), kSettingsConflict);
    EXPECT_EQ(device.exchange("LIST:STATUS?"), "RUNNING,1.000000,1,1\n");
    EXPECT_EQ(status(), kStopped);
}

TEST_F(Delay, CannotBeEditedWhileItRuns)
{
    device.exchange("DELAY:STAT ON");
    for (const auto* const edit :
         {"DELAY:GROUP:PARA 1,ON,1", "DELAY:GROUP:PARA 3,ON,1", "DELAY:GROUP:INS 1", "DELAY:GROUP:DEL 1",
          "DELAY:GROUP:CLE", "DELAY:GEN:CONST 1", "DELAY:CYCLE 2", "DELAY:ENDS LAST"})
        EXPECT_EQ(device.errorOf(edit), kSettingsConflict) << edit;
    EXPECT_EQ(device.errorOf("DELAY:GEN:SEL DEC"), kNoError);
    EXPECT_EQ(device.exchange("DELAY:GROUP:NUM?;PARA? 1;:DELAY:CYCLE?;ENDS?"), "2;0,0.500000;1;OFF\n");
}

TEST_F(Delay, ASourceModeStopsIt)
{
    device.exchange("DELAY:ENDS ON;STAT ON;:SOUR:MODE SER");
    EXPECT_EQ(status(), kStopped);
    advance(10'000);
    EXPECT_EQ(output(), "0\n");
}

TEST_F(Delay, ResetStopsAndClearsIt)
{
    device.exchange("DELAY:CYCLE 5;ENDS LAST;GEN:SEL DEC;:DELAY:STAT ON;*RST");
    EXPECT_EQ(status(), kStopped);
    EXPECT_EQ(device.exchange("DELAY:GROUP:NUM?;:DELAY:CYCLE?;ENDS?;GEN:SEL?"), "0;1;OFF;FIX\n");
}

TEST_F(Delay, APowerCycleStopsItAndKeepsItAsThePowerOnStateSays)
{
    device.exchange("OUTP:PONS:STAT CH1,LAST;:DELAY:STAT ON");
    advance(600);
    device.control("power-cycle");
    EXPECT_EQ(status(), kStopped);
    EXPECT_EQ(device.exchange("OUTP:STAT? CH1;:DELAY:GROUP:NUM?"), "1;2\n");
}

class DelayGenerator : public testing::Test
{
public:
    /// The groups that the settings make, without line ends.
    std::vector<std::string> construct(const std::string& settings, int from = 1)
    {
        device.exchange("DELAY:GEN:" + settings + ";:DELAY:GEN:CONSTruct " + std::to_string(from));
        EXPECT_EQ(device.error(), kNoError);
        return device.groups("DELAY");
    }

    ManualInstrument device;
};

TEST_F(DelayGenerator, FixedTimesDependOnTheSwitch)
{
    EXPECT_THAT(construct("SEL FIX;PATT 01P;POINTs 5;TIM:ON 0.2;OFF 0.3"),
                ElementsAre("0,0.300000", "1,0.200000", "0,0.300000", "1,0.200000", "0,0.300000"));
    EXPECT_THAT(construct("PATT 10P;POINTs 3"), ElementsAre("1,0.200000", "0,0.300000", "1,0.200000"));
}

TEST_F(DelayGenerator, ChangingTimesGoFromTheBaseByTheStep)
{
    EXPECT_THAT(construct("SEL INC;PATT 10P;POINTs 4;TIM:BASE 1;STEP 0.1"),
                ElementsAre("1,1.000000", "0,1.100000", "1,1.200000", "0,1.300000"));
    EXPECT_THAT(construct("SEL DEC;PATT 01P"), ElementsAre("0,1.000000", "1,0.900000", "0,0.800000", "1,0.700000"));
}

TEST_F(DelayGenerator, TimesMayReachTheShortestAndTheLongest)
{
    EXPECT_THAT(construct("SEL DEC;POINTs 3;TIM:BASE 0.003;STEP 0.001"),
                ElementsAre("0,0.003000", "1,0.002000", "0,0.001000"));
    EXPECT_THAT(construct("SEL INC;POINTs 2;TIM:BASE 3599.999;STEP 0.001"),
                ElementsAre("0,3599.999000", "1,3600.000000"));
}

TEST_F(DelayGenerator, TimesBeyondThatAreRefusedAndChangeNothing)
{
    device.exchange("DELAY:GROUP:PARA 1,ON,7");
    for (const auto* const settings :
         {"SEL DEC;POINTs 4;TIM:BASE 0.003;STEP 0.001", "SEL DEC;POINTs 512;TIM:BASE 0.001;STEP 3600",
          "SEL INC;POINTs 3;TIM:BASE 3599.999;STEP 0.001"})
    {
        device.exchange(std::string("DELAY:GEN:") + settings);
        EXPECT_EQ(device.errorOf("DELAY:GEN:CONST 1"), kOutOfRange) << settings;
        EXPECT_EQ(device.exchange("DELAY:GROUP:NUM?;PARA? 1"), "1;1,7.000000\n") << settings;
    }
}

TEST_F(DelayGenerator, ReplacesTheGroupsFromANumberOn)
{
    device.exchange("DELAY:GROUP:PARA 1,ON,7;PARA 2,ON,8;PARA 3,ON,9");
    EXPECT_THAT(construct("POINTs 1", 2), ElementsAre("1,7.000000", "0,1.000000"));
    EXPECT_THAT(construct("POINTs 2", 3), ElementsAre("1,7.000000", "0,1.000000", "0,1.000000", "1,1.000000"));
}

} // namespace
