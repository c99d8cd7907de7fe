#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gmock/gmock.h>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;

/// The first field of every group.
std::vector<std::string> voltsOf(ManualInstrument& device)
{
    auto groups = device.groups("LIST");
    for (auto& group : groups)
        group.resize(group.find(','));
    return groups;
}

/// A template from 2 V to 6 V with 1 A, as `settings` shapes it further, made the list.
class Template
{
public:
    explicit Template(const std::string& settings)
    {
        device_.exchange("LIST:TEMP:OBJ V,1;MAXV 6;MINV 2;" + settings + ";CONSTruct 1");
        EXPECT_EQ(device_.error(), kNoError);
    }

    std::vector<std::string> groups() { return device_.groups("LIST"); }
    std::vector<std::string> volts() { return voltsOf(device_); }
    std::string ask(std::string_view query) { return device_.exchange(query); }

private:
    ManualInstrument device_;
};

TEST(ListTemplate, SineStartsInTheMiddleAndSwingsBothWays)
{
    Template sine("SEL SINE;PERI 0.8;INTE 0.1");
    EXPECT_THAT(sine.groups(),
                ElementsAre("4.000000,1.000000,0.100000", "5.414214,1.000000,0.100000", "6.000000,1.000000,0.100000",
                            "5.414214,1.000000,0.100000", "4.000000,1.000000,0.100000", "2.585786,1.000000,0.100000",
                            "2.000000,1.000000,0.100000", "2.585786,1.000000,0.100000"));
}

TEST(ListTemplate, PulseTakesTwoGroupsOfDifferentTimes)
{
    Template pulse("SEL PULSE;PERI 1;WIDT 0.3;PULSECount 2");
    EXPECT_THAT(pulse.groups(), ElementsAre("6.000000,1.000000,0.300000", "2.000000,1.000000,0.700000",
                                            "6.000000,1.000000,0.300000", "2.000000,1.000000,0.700000"));
}

TEST(ListTemplate, RampRisesInThePartThatSymmetrySays)
{
    EXPECT_THAT(
        Template("SEL RAMP;PERI 0.8;INTE 0.1;SYMM 50").volts(),
        ElementsAre("2.000000", "3.000000", "4.000000", "5.000000", "6.000000", "5.000000", "4.000000", "3.000000"));
    EXPECT_THAT(Template("SEL RAMP;PERI 0.4;INTE 0.1;SYMM 25").volts(),
                ElementsAre("2.000000", "6.000000", "4.666667", "3.333333"));
    EXPECT_THAT(Template("SEL RAMP;PERI 0.4;INTE 0.1;SYMM 100").volts(),
                ElementsAre("2.000000", "3.000000", "4.000000", "5.000000"));
    EXPECT_THAT(Template("SEL RAMP;PERI 0.4;INTE 0.1;SYMM 0").volts(),
                ElementsAre("6.000000", "5.000000", "4.000000", "3.000000"));
}

TEST(ListTemplate, StaircasesReachBothEnds)
{
    EXPECT_THAT(Template("SEL UP;PERI 0.5;INTE 0.1").volts(),
                ElementsAre("2.000000", "3.000000", "4.000000", "5.000000", "6.000000"));
    EXPECT_THAT(Template("SEL DN;PERI 0.5;INTE 0.1").volts(),
                ElementsAre("6.000000", "5.000000", "4.000000", "3.000000", "2.000000"));
    EXPECT_THAT(Template("SEL UPDN;PERI 0.5;INTE 0.1").volts(),
                ElementsAre("2.000000", "4.000000", "6.000000", "4.000000", "2.000000"));
    EXPECT_THAT(Template("SEL UP;PERI 0.1;INTE 0.1").volts(), ElementsAre("6.000000"));
}

TEST(ListTemplate, RiseAndFallAreExponential)
{
    EXPECT_THAT(Template("SEL RISE;EXPP 5;EXPR 2;INTE 0.25").groups(),
                ElementsAre("2.000000,1.000000,0.250000", "3.820217,1.000000,0.250000", "4.924234,1.000000,0.250000",
                            "5.593855,1.000000,0.250000", "6.000000,1.000000,0.250000"));
    EXPECT_THAT(Template("SEL FALL;EXPP 5;EXPR 2").volts(),
                ElementsAre("6.000000", "4.179783", "3.075766", "2.406145", "2.000000"));
    EXPECT_THAT(Template("SEL RISE;EXPP 3;EXPR 0").volts(), ElementsAre("2.000000", "4.000000", "6.000000"));
    EXPECT_THAT(Template("SEL RISE;EXPP 1;EXPR 10").volts(), ElementsAre("6.000000"));
}

TEST(ListTemplate, InvertedTurnsItUpsideDown)
{
    EXPECT_THAT(Template("SEL UPDN;PERI 0.5;INTE 0.1;INVE ON").volts(),
                ElementsAre("6.000000", "4.000000", "2.000000", "4.000000", "6.000000"));
    EXPECT_THAT(Template("SEL PULSE;PERI 1;WIDT 0.3;INVE ON").volts(), ElementsAre("2.000000", "6.000000"));
}

TEST(ListTemplate, StartIsThePointThatTheGroupsBeginWith)
{
    EXPECT_THAT(Template("SEL UP;PERI 0.5;INTE 0.1;STAI 4").volts(),
                ElementsAre("5.000000", "6.000000", "2.000000", "3.000000", "4.000000"));
    EXPECT_THAT(Template("SEL UP;PERI 0.5;INTE 0.1;STAI 11").volts(),
                ElementsAre("2.000000", "3.000000", "4.000000", "5.000000", "6.000000"));
}

TEST(ListTemplate, ObjectIsTheQuantityThatFollowsIt)
{
    ManualInstrument device;
    device.exchange("LIST:TEMP:OBJ C,5;MAXV 3;MINV 1;SEL UP;PERI 0.3;INTE 0.1;CONSTruct 1");
    EXPECT_THAT(device.groups("LIST"),
                ElementsAre("5.000000,1.000000,0.100000", "5.000000,2.000000,0.100000", "5.000000,3.000000,0.100000"));
}

TEST(ListTemplate, PointsSaysHowManyGroupsItGives)
{
    struct Case
    {
        const char* settings;
        const char* points;
    };
    for (const auto& [settings, points] :
         {Case{"SEL SINE;PERI 2;INTE 0.1", "20\n"}, Case{"SEL RAMP;PERI 1;INTE 0.3", "3\n"},
          Case{"SEL UPDN;PERI 0.1;INTE 3600", "1\n"}, Case{"SEL DN;PERI 3600;INTE 0.001", "3600000\n"},
          Case{"SEL PULSE;PULSECount 8", "16\n"}, Case{"SEL RISE;EXPP 7", "7\n"}, Case{"SEL FALL;EXPP 512", "512\n"}})
    {
        ManualInstrument device;
        EXPECT_EQ(device.exchange(std::string("LIST:TEMP:") + settings + ";POINTs?"), points) << settings;
    }
}

TEST(ListTemplate, TheListTakesItsCycles)
{
    Template five("SEL UP;CYCLE 5");
    EXPECT_EQ(five.ask("LIST:CYCLE?"), "5\n");
}

TEST(ListTemplate, ReplacesTheGroupsFromANumberOn)
{
    ManualInstrument device;
    device.exchange("LIST:GROUP:PARA 1,10,1,1;PARA 2,11,1,1;PARA 3,12,1,1;PARA 4,13,1,1;PARA 5,14,1,1");
    device.exchange("LIST:TEMP:OBJ V,1;SEL UP;MAXV 3;MINV 1;PERI 0.3;INTE 0.1;CONSTruct 3");
    EXPECT_THAT(voltsOf(device), ElementsAre("10.000000", "11.000000", "1.000000", "2.000000", "3.000000"));
    device.exchange("LIST:TEMP:CONSTruct 2");
    EXPECT_THAT(voltsOf(device), ElementsAre("10.000000", "1.000000", "2.000000", "3.000000"));
    device.exchange("LIST:TEMP:CONSTruct 5");
    EXPECT_EQ(device.exchange("LIST:GROUP:NUM?"), "7\n");
    EXPECT_EQ(device.error(), kNoError);
}

TEST(ListTemplate, WhatDoesNotFitIsRefusedWhenItIsMadeAndChangesNothing)
{
    struct Case
    {
        const char* settings;
        const char* error;
    };
    for (const auto& [settings, error] : {
             Case{"OBJ V,5", kOutOfRange},
             Case{"OBJ C,5;MAXV 4", kOutOfRange},
             Case{"MAXV 3;MINV 4", kSettingsConflict},
             Case{"SEL PULSE;WIDT 1;PERI 1", kSettingsConflict},
             Case{"SEL PULSE;WIDT 2;PERI 1", kSettingsConflict},
             Case{"SEL PULSE;WIDT 0.9995;PERI 1", kSettingsConflict},
             Case{"SEL SINE;PERI 51.3;INTE 0.1", "-223,\"Too much data\"\n"},
             Case{"SEL SINE;PERI 3600;INTE 0.001", "-223,\"Too much data\"\n"},
         })
    {
        ManualInstrument device;
        device.exchange("LIST:GROUP:PARA 1,1,1,1;:LIST:CYCLE 3;TEMP:CYCLE 9");
        device.exchange(std::string("LIST:TEMP:") + settings);
        EXPECT_EQ(device.errorOf("LIST:TEMP:CONSTruct 1"), error) << settings;
        EXPECT_THAT(device.groups("LIST"), ElementsAre("1.000000,1.000000,1.000000")) << settings;
        EXPECT_EQ(device.exchange("LIST:CYCLE?"), "3\n") << settings;
    }
}

TEST(ListTemplate, FillsAllTheGroupsThereAre)
{
    Template longest("SEL SINE;PERI 0.512;INTE 0.001;STAI 512");
    EXPECT_EQ(longest.ask("LIST:GROUP:NUM?"), "512\n");
    Template tightPulse("SEL PULSE;WIDT 0.999;PERI 1");
    EXPECT_EQ(tightPulse.ask("LIST:GROUP:PARA? 2"), "2.000000,1.000000,0.001000\n");
}

} // namespace
