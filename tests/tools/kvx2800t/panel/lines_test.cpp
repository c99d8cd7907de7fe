#include "tools/kvx2800t/panel/lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

using namespace panel;
using testing::ElementsAre;

namespace
{

Action action(ActionKind kind, int channel = 1, double value = 0.0, bool on = false)
{
    Action made;
    made.kind = kind;
    made.channel = channel;
    made.value = value;
    made.on = on;
    return made;
}

const SessionTexts kSession = {R"(a"b\)", "DriverSetup=Profile:Bench", false};

std::vector<std::string> linesOfC(const Action& made)
{
    return panel::linesOfC(made, kSession);
}

std::vector<std::string> linesOfPython(const Action& made)
{
    return panel::linesOfPython(made, kSession);
}

} // namespace

TEST(PanelLines, ALevelIsSetByOneLine)
{
    const Action volts = action(ActionKind::SetVoltage, 5, 12.5);
    EXPECT_THAT(linesOfC(volts), ElementsAre("KVX2800T_ConfigureVoltageLevel(vi, \"OutputChannel5\", 12.5);"));
    EXPECT_THAT(linesOfPython(volts), ElementsAre("supply.channels[\"CH5\"].voltage_level = 12.5"));
}

TEST(PanelLines, SwitchesAreTheWordsOfEachLanguage)
{
    EXPECT_THAT(linesOfC(action(ActionKind::SetOutput, 1, 0.0, true)),
                ElementsAre("KVX2800T_ConfigureOutputEnabled(vi, \"OutputChannel1\", VI_TRUE);"));
    EXPECT_THAT(linesOfPython(action(ActionKind::SetOutput, 1, 0.0, false)),
                ElementsAre("supply.channels[\"CH1\"].output_enabled = False"));
    EXPECT_THAT(linesOfC(action(ActionKind::SetOvp, 2, 6.0, false)),
                ElementsAre("KVX2800T_ConfigureOVP(vi, \"OutputChannel2\", VI_FALSE, 6.0);"));
    EXPECT_THAT(linesOfPython(action(ActionKind::SetOcp, 2, 0.1, true)),
                ElementsAre("supply.channels[\"CH2\"].protection.output_ocp_value = 0.1",
                            "supply.channels[\"CH2\"].protection.output_ocp_enabled = True"));
}

TEST(PanelLines, ModesAreTheNamesOfEachLanguage)
{
    Action made = action(ActionKind::SetSourceMode);
    made.mode = kvx2800t::SourceMode::series;
    EXPECT_THAT(linesOfC(made), ElementsAre("KVX2800T_ConfigureSourceMode(vi, KVX2800T_VAL_SOURCE_MODE_SERIES);"));
    EXPECT_THAT(linesOfPython(made), ElementsAre("supply.source_mode = SourceMode.SERIES"));
}

TEST(PanelLines, AListIsLoadedWithAllOfItsGroups)
{
    Action made = action(ActionKind::LoadList, 3);
    made.groups = {{1.0, 0.5, 0.1}, {2.0, 0.25, 3.0}};
    made.cycles = 4;
    made.end = kvx2800t::ListEnd::last;
    EXPECT_THAT(linesOfC(made),
                ElementsAre("const ViReal64 volts[] = {1.0, 2.0};", "const ViReal64 amperes[] = {0.5, 0.25};",
                            "const ViReal64 seconds[] = {0.1, 3.0};",
                            "KVX2800T_LoadList(vi, \"OutputChannel3\", 2, volts, amperes, seconds);",
                            "KVX2800T_ConfigureListCycles(vi, \"OutputChannel3\", 4);",
                            "KVX2800T_ConfigureListEndState(vi, \"OutputChannel3\", KVX2800T_VAL_LIST_END_LAST);"));
    EXPECT_THAT(linesOfPython(made),
                ElementsAre("supply.channels[\"CH3\"].list.load([(1.0, 0.5, 0.1), (2.0, 0.25, 3.0)])",
                            "supply.channels[\"CH3\"].list.cycles = 4",
                            "supply.channels[\"CH3\"].list.end_state = ListEnd.LAST"));
}

TEST(PanelLines, ASessionIsOpenedAgainAsItWas)
{
    EXPECT_THAT(linesOfC(action(ActionKind::Reconnect)),
                ElementsAre("KVX2800T_close(vi);", "KVX2800T_InitWithOptions(\"a\\\"b\\\\\", VI_FALSE, VI_FALSE, "
                                                   "\"DriverSetup=Profile:Bench\", &vi);"));
    EXPECT_THAT(panel::linesOfPython(action(ActionKind::Reconnect), {"", "", true}),
                ElementsAre("supply.close()", "supply = Supply(\"\", simulate=True)"));
}

TEST(PanelLines, EveryActionHasLinesWithNothingLeftToFillIn)
{
    for (const ActionRow& row : actionTable()) {
        Action made = action(row.kind);
        made.groups = {{1.0, 1.0, 1.0}};
        for (const auto& lines : {linesOfC(made), linesOfPython(made)}) {
            EXPECT_FALSE(lines.empty()) << row.name;
            for (const std::string& line : lines)
                EXPECT_EQ(line.find('$'), std::string::npos) << line;
        }
    }
}

TEST(PanelLines, NumbersHaveTheFewestDigitsThatAreThem)
{
    EXPECT_EQ(literal(5.0), "5.0");
    EXPECT_EQ(literal(0.1), "0.1");
    EXPECT_EQ(literal(-2.0), "-2.0");
    EXPECT_EQ(literal(1e300), "1e+300");
    EXPECT_EQ(literal(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(literal(std::numeric_limits<double>::max()), "1.7976931348623157e+308");
    EXPECT_EQ(literal(std::numeric_limits<double>::denorm_min()), "5e-324");
}
