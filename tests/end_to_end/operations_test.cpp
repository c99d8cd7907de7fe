// Every operation of the instrument over a real socket, against the virtual instrument in a process of its own.

#include "instrument/kvx2800t.h"

#include "tests/support/driver/operation_preparation.h"
#include "tests/support/driver/operation_table.h"
#include "tests/support/processes/virtual_instrument_process.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

namespace kvxtest
{
namespace
{

using testing::AllOf;
using testing::Ge;
using testing::Gt;
using testing::Le;
using TextLines = std::vector<std::string>;

constexpr const char* kErrorQuery = ":SYSTem:ERRor?";

class OverTcp : public testing::Test
{
public:
    /// The options are those of the virtual instrument.
    explicit OverTcp(TextLines options = {}) : supply(withoutSettling(std::move(options))) {}

    void SetUp() override { ASSERT_EQ(instrument.open(supply.resource(), ""), 0); }

    void TearDown() override { EXPECT_EQ(instrument.close(), 0); }

    void prepare(const Operation& operation)
    {
        for (const std::string& line : preparationOf(operation.name))
            instrument.writeRaw(line);
        expectNoError();
        supply.clearLog();
    }

    void expectNoError()
    {
        ViInt32 code = -1;
        std::string message;
        EXPECT_EQ(instrument.nextError(code, message), 0);
        EXPECT_EQ(code, 0) << message;
        EXPECT_EQ(message, "\"No error\"");
    }

    /// What is set reads back, and nothing but the lines of the two is sent.
    void expectReadsBack(const Operation& setting)
    {
        prepare(setting);
        Values outputs;
        EXPECT_EQ(setting.run(instrument, outputs), 0);
        EXPECT_EQ(setting.readBack->run(instrument, outputs), 0);
        EXPECT_EQ(outputs, setting.results);
        expectNoError();
        EXPECT_EQ(supply.receivedLines(), (TextLines{setting.line, setting.readBack->line, kErrorQuery}));
    }

    VirtualInstrumentProcess supply;
    TSRO::KVX2800T instrument;

private:
    static TextLines withoutSettling(TextLines options)
    {
        options.insert(options.end(), {"--settle-ms", "0"});
        return options;
    }
};

std::string nameOf(const testing::TestParamInfo<Operation>& operation)
{
    return operation.param.name;
}

std::vector<Operation> settingsThat(bool readBack)
{
    std::vector<Operation> chosen;
    for (const Operation& setting : settings())
        if (setting.readBack.has_value() == readBack)
            chosen.push_back(setting);
    return chosen;
}

// ---- One operation a test

class EverySettingOverTcp : public OverTcp, public testing::WithParamInterface<Operation>
{
};

TEST_P(EverySettingOverTcp, ReadsBack)
{
    expectReadsBack(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Operations, EverySettingOverTcp, testing::ValuesIn(settingsThat(true)), nameOf);

class EveryOtherOperationOverTcp : public OverTcp, public testing::WithParamInterface<Operation>
{
};

TEST_P(EveryOtherOperationOverTcp, IsTakenWithoutAnError)
{
    prepare(GetParam());
    Values outputs;
    EXPECT_EQ(GetParam().run(instrument, outputs), 0);
    expectNoError();
    EXPECT_EQ(supply.receivedLines(), (TextLines{GetParam().line, kErrorQuery}));
}

INSTANTIATE_TEST_SUITE_P(Actions, EveryOtherOperationOverTcp, testing::ValuesIn(settingsThat(false)), nameOf);
INSTANTIATE_TEST_SUITE_P(Queries, EveryOtherOperationOverTcp, testing::ValuesIn(queries()), nameOf);

// ---- An instrument that spells its replies in the other way

class InWords : public OverTcp
{
public:
    InWords() : OverTcp({"--boolean-words", "--alternate-keywords"}) {}
};

TEST_F(InWords, EverySettingReadsBack)
{
    for (const Operation& setting : settingsThat(true)) {
        SCOPED_TRACE(setting.name);
        ASSERT_EQ(instrument.reset(), 0);
        expectReadsBack(setting);
    }
}

// ---- Status

TEST_F(OverTcp, ErrorsAreReadOneByOneUntilTheyAreCleared)
{
    for (const char* wrong : {"WRONG", ":OUTP:STAT CH9,ON", "WRONGER"})
        instrument.writeRaw(wrong);
    ViInt32 code = 0;
    std::string message;
    EXPECT_EQ(instrument.nextError(code, message), 0);
    EXPECT_EQ(code, -113);
    EXPECT_EQ(message, "\"Undefined header\"");
    EXPECT_EQ(instrument.nextError(code, message), 0);
    EXPECT_EQ(code, -141);
    EXPECT_EQ(instrument.clearStatus(), 0);
    expectNoError();
}

TEST_F(OverTcp, TheEventStatusTellsOfACommandErrorOnce)
{
    ViInt32 bits = -1;
    ASSERT_EQ(instrument.clearStatus(), 0);
    instrument.writeRaw("WRONG");
    EXPECT_EQ(instrument.eventStatus(bits), 0);
    EXPECT_EQ(bits, 32);
    EXPECT_EQ(instrument.eventStatus(bits), 0);
    EXPECT_EQ(bits, 0);
}

TEST_F(OverTcp, AResetSwitchesTheOutputOff)
{
    bool enabled = false;
    ASSERT_EQ(instrument.setOutputEnabled(3, true), 0);
    ASSERT_EQ(instrument.outputEnabled(3, enabled), 0);
    EXPECT_TRUE(enabled);
    ASSERT_EQ(instrument.reset(), 0);
    ASSERT_EQ(instrument.outputEnabled(3, enabled), 0);
    EXPECT_FALSE(enabled);
}

// ---- Measurements

class EveryChannelOverTcp : public OverTcp, public testing::WithParamInterface<ViInt32>
{
public:
    EveryChannelOverTcp() : OverTcp({"--load", kNames[GetParam() - 1] + std::string("=10")}) {}

    void SetUp() override
    {
        OverTcp::SetUp();
        const auto mode = channel == 5   ? TSRO::SourceMode::Series
                          : channel == 6 ? TSRO::SourceMode::Parallel
                                         : TSRO::SourceMode::Normal;
        ASSERT_EQ(instrument.setSourceMode(mode), 0);
        ASSERT_EQ(instrument.setVoltageLevel(channel, 5.0), 0);
        ASSERT_EQ(instrument.setCurrentLevel(channel, 1.0), 0);
        ASSERT_EQ(instrument.setOutputEnabled(channel, true), 0);
    }

    /// Whatever the single measurements and the one of all say.
    void expectMeasured(double expectedVolts, double expectedAmperes, double expectedWatts)
    {
        double volts = -1.0;
        double amperes = -1.0;
        double watts = -1.0;
        EXPECT_EQ(instrument.measureAll(channel, volts, amperes, watts), 0);
        EXPECT_EQ(std::tuple(volts, amperes, watts), std::tuple(expectedVolts, expectedAmperes, expectedWatts));
        volts = amperes = watts = -1.0;
        EXPECT_EQ(instrument.measureVoltage(channel, volts), 0);
        EXPECT_EQ(instrument.measureCurrent(channel, amperes), 0);
        EXPECT_EQ(instrument.measurePower(channel, watts), 0);
        EXPECT_EQ(std::tuple(volts, amperes, watts), std::tuple(expectedVolts, expectedAmperes, expectedWatts));
        expectNoError();
    }

    void expectRegulation(TSRO::RegulationState expectedState, ViInt32 expectedCondition)
    {
        auto state = static_cast<TSRO::RegulationState>(-1);
        ViInt32 condition = -1;
        EXPECT_EQ(instrument.regulationState(channel, state), 0);
        EXPECT_EQ(state, expectedState);
        EXPECT_EQ(instrument.questionableCondition(channel, condition), 0);
        EXPECT_EQ(condition, expectedCondition);
    }

    const ViInt32 channel = GetParam();

private:
    static constexpr const char* kNames[] = {"CH1", "CH2", "CH3", "CH4", "SER", "PAR"};
};

TEST_P(EveryChannelOverTcp, MeasuresWhatItsLoadDrawsInConstantVoltage)
{
    expectMeasured(5.0, 0.5, 2.5);
    expectRegulation(TSRO::RegulationState::ConstantVoltage, 2);
}

TEST_P(EveryChannelOverTcp, MeasuresItsCurrentLevelInConstantCurrent)
{
    ASSERT_EQ(instrument.setCurrentLevel(channel, 0.25), 0);
    expectMeasured(2.5, 0.25, 0.625);
    expectRegulation(TSRO::RegulationState::ConstantCurrent, 1);
}

TEST_P(EveryChannelOverTcp, MeasuresNothingWhileItIsOff)
{
    ASSERT_EQ(instrument.setOutputEnabled(channel, false), 0);
    expectMeasured(0.0, 0.0, 0.0);
}

INSTANTIATE_TEST_SUITE_P(Channels, EveryChannelOverTcp, testing::Range(ViInt32{1}, ViInt32{7}),
                         [](const testing::TestParamInfo<ViInt32>& channel) {
                             return "Channel" + std::to_string(channel.param);
                         });

// ---- Programs

class ProgramOverTcp : public OverTcp
{
public:
    using Count = ViStatus (TSRO::InstBase::*)(ViInt32&);

    void expectGroups(Count count, ViInt32 expected)
    {
        ViInt32 groups = -1;
        EXPECT_EQ((instrument.*count)(groups), 0);
        EXPECT_EQ(groups, expected);
    }

    template <class State>
    using Status = ViStatus (TSRO::InstBase::*)(State& state, double& seconds, ViInt32& group, ViInt32& cycles);

    /// In the first group of a program, which takes `seconds`.
    template <class State>
    void expectRunning(Status<State> status, State running, double seconds, ViInt32 cycles)
    {
        auto state = static_cast<State>(-1);
        double remainingSeconds = -1.0;
        ViInt32 group = -1;
        ViInt32 remainingCycles = -1;
        EXPECT_EQ((instrument.*status)(state, remainingSeconds, group, remainingCycles), 0);
        EXPECT_EQ(state, running);
        EXPECT_THAT(remainingSeconds, AllOf(Gt(0.0), Le(seconds)));
        EXPECT_EQ(group, 1);
        EXPECT_THAT(remainingCycles, AllOf(Ge(1), Le(cycles)));
    }

    template <class State>
    void expectStopped(Status<State> status, State stopped)
    {
        auto state = static_cast<State>(-1);
        double remainingSeconds = -1.0;
        ViInt32 group = -1;
        ViInt32 remainingCycles = -1;
        EXPECT_EQ((instrument.*status)(state, remainingSeconds, group, remainingCycles), 0);
        EXPECT_EQ(state, stopped);
        EXPECT_EQ(group, 0);
    }
};

TEST_F(ProgramOverTcp, ListGroupsAreAppendedInsertedDeletedAndCleared)
{
    const Count count = &TSRO::InstBase::listGroupCount;
    ASSERT_EQ(instrument.setListGroup(1, 5.0, 1.0, 10.0), 0);
    ASSERT_EQ(instrument.setListGroup(2, 6.0, 1.0, 10.0), 0);
    expectGroups(count, 2);
    EXPECT_EQ(instrument.insertListGroup(2), 0);
    expectGroups(count, 3);
    EXPECT_EQ(instrument.deleteListGroup(2), 0);
    expectGroups(count, 2);
    double volts = -1.0;
    double amperes = -1.0;
    double seconds = -1.0;
    EXPECT_EQ(instrument.listGroup(2, volts, amperes, seconds), 0);
    EXPECT_EQ(std::tuple(volts, amperes, seconds), std::tuple(6.0, 1.0, 10.0));
    EXPECT_EQ(instrument.clearListGroups(), 0);
    expectGroups(count, 0);
    expectNoError();
}

TEST_F(ProgramOverTcp, DelayGroupsAreAppendedInsertedDeletedAndCleared)
{
    const Count count = &TSRO::InstBase::delayGroupCount;
    ASSERT_EQ(instrument.setDelayGroup(1, true, 10.0), 0);
    ASSERT_EQ(instrument.setDelayGroup(2, false, 20.0), 0);
    expectGroups(count, 2);
    EXPECT_EQ(instrument.insertDelayGroup(1), 0);
    expectGroups(count, 3);
    EXPECT_EQ(instrument.deleteDelayGroup(1), 0);
    expectGroups(count, 2);
    bool on = true;
    double seconds = -1.0;
    EXPECT_EQ(instrument.delayGroup(2, on, seconds), 0);
    EXPECT_EQ(std::tuple(on, seconds), std::tuple(false, 20.0));
    EXPECT_EQ(instrument.clearDelayGroups(), 0);
    expectGroups(count, 0);
    expectNoError();
}

TEST_F(ProgramOverTcp, AListThatRunsTellsHowFarItIs)
{
    ASSERT_EQ(instrument.selectChannel(3), 0);
    ASSERT_EQ(instrument.setListGroup(1, 5.0, 1.0, 100.0), 0);
    ASSERT_EQ(instrument.setListCycles(3), 0);
    ASSERT_EQ(instrument.setOutputEnabled(3, true), 0);
    ASSERT_EQ(instrument.setListEnabled(true), 0);
    expectRunning(&TSRO::InstBase::listStatus, TSRO::ListRunState::Running, 100.0, 3);
    ASSERT_EQ(instrument.setListEnabled(false), 0);
    expectStopped(&TSRO::InstBase::listStatus, TSRO::ListRunState::Stopped);
    expectNoError();
}

TEST_F(ProgramOverTcp, ADelayThatRunsTellsHowFarItIs)
{
    ASSERT_EQ(instrument.selectChannel(3), 0);
    ASSERT_EQ(instrument.setDelayGroup(1, true, 100.0), 0);
    ASSERT_EQ(instrument.setDelayCycles(3), 0);
    ASSERT_EQ(instrument.setOutputEnabled(3, true), 0);
    ASSERT_EQ(instrument.setDelayEnabled(true), 0);
    expectRunning(&TSRO::InstBase::delayStatus, TSRO::DelayRunState::Running, 100.0, 3);
    ASSERT_EQ(instrument.setDelayEnabled(false), 0);
    expectStopped(&TSRO::InstBase::delayStatus, TSRO::DelayRunState::Stopped);
    expectNoError();
}

TEST_F(ProgramOverTcp, ATemplateMakesTheGroupsOfAList)
{
    ASSERT_EQ(instrument.setListTemplateWaveform(TSRO::ListWaveform::Sine), 0);
    ASSERT_EQ(instrument.setListTemplateMaximum(10.0), 0);
    ASSERT_EQ(instrument.setListTemplateMinimum(1.0), 0);
    ASSERT_EQ(instrument.setListTemplatePeriod(2.0), 0);
    ASSERT_EQ(instrument.setListTemplateInterval(0.1), 0);
    ASSERT_EQ(instrument.constructList(1), 0);
    expectNoError();
    ViInt32 groups = 0;
    EXPECT_EQ(instrument.listGroupCount(groups), 0);
    EXPECT_GE(groups, 1);
    EXPECT_LE(groups, 512);
}

TEST_F(ProgramOverTcp, APatternMakesTheGroupsOfADelay)
{
    ASSERT_EQ(instrument.setDelayGeneratePattern(TSRO::DelayPattern::OnOff), 0);
    ASSERT_EQ(instrument.setDelayGeneratePoints(8), 0);
    ASSERT_EQ(instrument.setDelayOnTime(0.2), 0);
    ASSERT_EQ(instrument.setDelayOffTime(0.3), 0);
    ASSERT_EQ(instrument.constructDelay(1), 0);
    expectNoError();
    ViInt32 groups = 0;
    EXPECT_EQ(instrument.delayGroupCount(groups), 0);
    EXPECT_GE(groups, 1);
    EXPECT_LE(groups, 512);
}

} // namespace
} // namespace kvxtest
