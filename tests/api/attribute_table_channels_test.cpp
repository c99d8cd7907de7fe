#include "tests/support/driver/channel_settings.h"

#include <cmath>
#include <initializer_list>
#include <limits>

// Setting the attributes of channels, and the functions of the same purpose.

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using TextLines = std::vector<std::string>;

const ChannelMaximum& channel(int number)
{
    return kChannelMaxima.at(static_cast<std::size_t>(number) - 1);
}

class ChannelSetting : public ApiTest, public testing::WithParamInterface<SettingCall>
{
public:
    ViStatus set(ViConstString channel) const { return GetParam().set(vi, channel); }

    /// Everything that the call for these channels sends while the source mode suits them.
    static TextLines commandsOf(std::initializer_list<int> numbers)
    {
        TextLines lines;
        for (const int number : numbers) {
            if (channel(number).needsMode())
                lines.emplace_back(":SOUR:Mode?\n");
            for (std::string& line : GetParam().linesTo(channel(number)))
                lines.push_back(std::move(line));
        }
        return lines;
    }
};

TEST_P(ChannelSetting, SendsItsCommandsToEveryChannelInTheModeThatItNeeds)
{
    open();
    for (const ChannelMaximum& maximum : kChannelMaxima) {
        answer(":SOUR:Mode?", maximum.sourceMode);
        clearLog();
        EXPECT_EQ(set(maximum.name().c_str()), VI_SUCCESS);
        EXPECT_THAT(written(), ElementsAreArray(commandsOf({maximum.number})));
    }
    EXPECT_EQ(recorded(), ErrorEntry());
}

TEST_P(ChannelSetting, TakesListsAndRangesInTheirOrder)
{
    open();
    EXPECT_EQ(set("[OutputChannel4, OutputChannel1-OutputChannel2]"), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAreArray(commandsOf({4, 1, 2})));
    clearLog();
    EXPECT_EQ(set("CH3,CH1"), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAreArray(commandsOf({3, 1})));
}

TEST_P(ChannelSetting, TakesVirtualNames)
{
    configurationStore().driverSession.emplace().virtualNames = {{"Core", "OutputChannel4,OutputChannel3", {}}};
    open();
    EXPECT_EQ(set("Core"), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAreArray(commandsOf({4, 3})));
}

TEST_P(ChannelSetting, ChecksTheStatusOnceBehindTheLastChannel)
{
    open("QueryInstrStatus=1");
    TextLines expected = commandsOf({3, 4});
    expected.emplace_back("*ESR?\n");
    EXPECT_EQ(set("OutputChannel3-4"), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAreArray(expected));
}

TEST_P(ChannelSetting, ReportsWhatTheInstrumentHasNotedOnce)
{
    open("QueryInstrStatus=1");
    for (const char* events : {"4", "8", "16", "32", "60", "255"}) {
        forget();
        answer("*ESR?", events);
        EXPECT_EQ(set("OutputChannel3"), code(0xBFFA0001)) << events;
        expectRecordedOnce(code(0xBFFA0001), "Instrument error detected.  Use ErrorQuery() to determine the error(s).");
    }
    for (const char* events : {"0", "1", "2", "64", "128", "195"}) {
        forget();
        answer("*ESR?", events);
        EXPECT_EQ(set("OutputChannel3"), VI_SUCCESS) << events;
        EXPECT_EQ(timesRecorded(), 0U);
    }
}

TEST_P(ChannelSetting, StopsAtEveryWriteThatFails)
{
    open("QueryInstrStatus=1");
    const TextLines all = commandsOf({3, 1, 4});
    for (std::size_t n = 1; n <= all.size() + 1; ++n) {
        SCOPED_TRACE(n);
        forget();
        failNthCallOf("viWrite", n, VI_ERROR_TMO);
        EXPECT_EQ(set("OutputChannel3,OutputChannel1,OutputChannel4"), kIoError);
        expectRecordedOnce(kIoError, "I/O error.");
        EXPECT_THAT(written(), ElementsAreArray(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(n) - 1));
    }
}

TEST_P(ChannelSetting, StopsAtAModeThatCannotBeRead)
{
    open("QueryInstrStatus=1");
    failNthCallOf("viRead", 1, VI_ERROR_TMO);
    EXPECT_EQ(set("OutputChannel3,OutputChannel1,OutputChannel4"), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
    TextLines expected = commandsOf({3});
    expected.emplace_back(":SOUR:Mode?\n");
    EXPECT_THAT(written(), ElementsAreArray(expected));
}

TEST_P(ChannelSetting, RecordsABadSelectorOnceAndSendsNothing)
{
    const std::string none =
        "No selector was specified for repeated capability 'OutputChannel'.  The repeated capability identifier can be "
        "null or empty only when there is exactly one physical name defined.  Repeated capability 'OutputChannel' has "
        "6 "
        "physical names defined.";
    const std::string badlyFormed = "The repeated capability selector is badly-formed.";
    const std::tuple<const char*, ViUInt32, std::string> selectors[] = {
        {nullptr, 0xBFFA0044, none},
        {"", 0xBFFA0044, none},
        {" \t", 0xBFFA0044, none},
        {"OutputChannel1:OutputChannel2", 0xBFFA0063,
         "The number of levels in the selector is not valid for the 'OutputChannel' repeated capability."},
        {"OutputChannel3-1", 0xBFFA0064, "The start index must be less than the end index."},
        {"OutputChannel1-Channel3", 0xBFFA0064, "The base names do not match."},
        {"OutputChannel3-4,OutputChannel4", 0xBFFA0064, "An identifier in the range overlaps with another range."},
        {"OutputChannel3,OutputChannel3", 0xBFFA0066, badlyFormed},
        {"OutputChannel1;2", 0xBFFA0066, badlyFormed},
        {"OutputChannel3,OutputChannel7", 0xBFFA0067,
         "The identifier 'OutputChannel7' is not defined for repeated capability 'OutputChannel'."},
    };
    open("QueryInstrStatus=1");
    for (const auto& [selector, bits, text] : selectors) {
        SCOPED_TRACE(text);
        forget();
        EXPECT_EQ(set(selector), code(bits));
        expectRecordedOnce(code(bits), text);
        EXPECT_THAT(calls("vi"), IsEmpty());
    }
}

TEST_P(ChannelSetting, OfASimulatedInstrumentSendsNothing)
{
    open("Simulate=1, QueryInstrStatus=1");
    EXPECT_EQ(set("OutputChannel3-4"), VI_SUCCESS);
    EXPECT_THAT(calls("vi"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Calls, ChannelSetting, testing::ValuesIn(kSettingCalls),
                         [](const auto& setting) { return std::string(setting.param.name); });

class ChannelAttributes : public ApiTest
{
public:
    ChannelAttributes() { open(); }

    ViStatus set(ViConstString channel, ViAttr id, ViReal64 value) const
    {
        return KVX2800T_SetAttributeViReal64(vi, channel, id, value);
    }

    ViStatus setBehavior(ViConstString channel, ViInt32 value) const
    {
        return KVX2800T_SetAttributeViInt32(vi, channel, KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, value);
    }

    /// Expects that a channel takes levels from 0 to the largest and no others.
    void expectLimits(const ChannelMaximum& maximum, ViAttr id, ViReal64 largest) const
    {
        SCOPED_TRACE(maximum.name());
        answer(":SOUR:Mode?", maximum.sourceMode);
        forget();
        for (const ViReal64 level : {0.0, largest, std::nextafter(largest, 0.0)})
            EXPECT_EQ(set(maximum.name().c_str(), id, level), VI_SUCCESS) << level;
        EXPECT_EQ(timesRecorded(), 0U);
        forget();
        constexpr ViReal64 kInfinity = std::numeric_limits<ViReal64>::infinity();
        const TextLines mode = maximum.needsMode() ? TextLines{":SOUR:Mode?\n"} : TextLines{};
        for (const ViReal64 level : {std::nextafter(0.0, -1.0), std::nextafter(largest, kInfinity), -1.0, 1e308,
                                     std::nan(""), kInfinity, -kInfinity})
            expectOutOfRange(set(maximum.name().c_str(), id, level), mode);
    }

    /// Expects that a value is refused with its record, and that only these lines are sent.
    void expectOutOfRange(ViStatus status, const TextLines& lines) const
    {
        EXPECT_EQ(status, kOutOfRange);
        expectRecordedOnce(kOutOfRange, kOutOfRangeText);
        EXPECT_THAT(written(), ElementsAreArray(lines));
        forget();
    }
};

TEST_F(ChannelAttributes, TheSourceModeIsChangedInFrontOfTheCommands)
{
    EXPECT_EQ(set("OutputChannel3,OutputChannel6", KVX2800T_ATTR_OVP_LIMIT, 7.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT:PROT 7.000000\n", ":SOUR:Mode?\n", ":SOUR:Mode PARA\n",
                                       ":SOUR6:VOLT:PROT 7.000000\n"));
}

TEST_F(ChannelAttributes, VoltageLevelIsCheckedAtTheLimitsOfEveryChannel)
{
    for (const ChannelMaximum& maximum : kChannelMaxima)
        expectLimits(maximum, KVX2800T_ATTR_VOLTAGE_LEVEL, maximum.volts);
}

TEST_F(ChannelAttributes, CurrentLimitIsCheckedAtTheLimitsOfEveryChannel)
{
    for (const ChannelMaximum& maximum : kChannelMaxima)
        expectLimits(maximum, KVX2800T_ATTR_CURRENT_LIMIT, maximum.amperes);
}

TEST_F(ChannelAttributes, TheProtectionLevelIsTheInstrumentsToJudge)
{
    EXPECT_EQ(set("OutputChannel3", KVX2800T_ATTR_OVP_LIMIT, -5.0), VI_SUCCESS);
    EXPECT_EQ(set("OutputChannel3", KVX2800T_ATTR_OVP_LIMIT, 1000000.0), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT:PROT -5.000000\n", ":SOUR3:VOLT:PROT 1000000.000000\n"));
}

TEST_F(ChannelAttributes, TheFirstChannelOutOfRangeKeepsTheOnesInFrontOfIt)
{
    expectOutOfRange(set("OutputChannel3-4,OutputChannel1", KVX2800T_ATTR_VOLTAGE_LEVEL, 10.0),
                     {":SOUR3:VOLT 10.000000\n"});
    expectOutOfRange(set("OutputChannel4,OutputChannel3,OutputChannel1", KVX2800T_ATTR_CURRENT_LIMIT, 5.0),
                     {":SOUR4:CURR 5.000000\n", ":SOUR4:CURR:PROT 5.000000\n"});
}

TEST_F(ChannelAttributes, RegulateSwitchesTheCurrentProtectionOff)
{
    EXPECT_EQ(setBehavior("OutputChannel3", KVX2800T_VAL_CURRENT_REGULATE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:CURR:PROT:STAT OFF\n"));
}

TEST_F(ChannelAttributes, ABehaviorThatIsNeitherRegulateNorTripIsRefused)
{
    for (const ViInt32 behavior : std::initializer_list<ViInt32>{2, -1, 1001, std::numeric_limits<ViInt32>::min()})
        expectOutOfRange(setBehavior("OutputChannel3-4", behavior), {});
}

TEST_F(ChannelAttributes, ABadBehaviorComesBehindABadSelectorAndAFailedMode)
{
    EXPECT_EQ(setBehavior("OutputChannel7", 2), code(0xBFFA0067));
    forget();
    failNthCallOf("viWrite", 1, VI_ERROR_TMO);
    EXPECT_EQ(setBehavior("OutputChannel1", 2), kIoError);
    expectRecordedOnce(kIoError, "I/O error.");
}

TEST_F(ChannelAttributes, EverySwitchValueButFalseIsOn)
{
    for (const ViBoolean value : std::initializer_list<ViBoolean>{VI_TRUE, 2, 0x8000, 0xFFFF}) {
        clearLog();
        EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "OutputChannel3", KVX2800T_ATTR_OVP_ENABLED, value), VI_SUCCESS);
        EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "OutputChannel3", KVX2800T_ATTR_OUTPUT_ENABLED, value),
                  VI_SUCCESS);
        EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT:PROT:STAT ON\n", ":OUTP:STAT CH3,ON\n"));
    }
    clearLog();
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "OutputChannel3", KVX2800T_ATTR_OVP_ENABLED, VI_FALSE), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_SetAttributeViBoolean(vi, "OutputChannel3", KVX2800T_ATTR_OUTPUT_ENABLED, VI_FALSE), VI_SUCCESS);
    EXPECT_THAT(written(), ElementsAre(":SOUR3:VOLT:PROT:STAT OFF\n", ":OUTP:STAT CH3,OFF\n"));
}

} // namespace
