#include "tests/support/driver/channel_settings.h"
#include "tests/support/driver/scripted_clock.h"

// The second that a change of the source mode takes, on a clock of the test's.

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::ElementsAreArray;

class ModeChange : public ApiTest, public testing::WithParamInterface<SettingCall>
{
public:
    ModeChange() { open(); }

    ViStatus set(ViConstString channels) const { return GetParam().set(vi, channels); }

    const ScriptedClock clock;
};

TEST_P(ModeChange, IsFollowedByASecondUnderTheLockInFrontOfEverythingElse)
{
    ScriptedClock::whenRead([this] {
        EXPECT_THAT(written(), ElementsAre(":SOUR:Mode?\n", ":SOUR:Mode SER\n"));
        EXPECT_EQ(lockDepth(vi), 1U);
        EXPECT_EQ(timesRecorded(), 0U);
    });
    EXPECT_EQ(set("OutputChannel5"), GetParam().status);
    EXPECT_EQ(ScriptedClock::last(), 10'000'000);
    EXPECT_THAT(written(), ElementsAreArray(linesOfSeriesChannel(GetParam())));
    EXPECT_EQ(recorded().code, GetParam().status);
    EXPECT_EQ(lockDepth(vi), 0U);
}

TEST_P(ModeChange, IsNotMadeAndNotWaitedForInTheRightMode)
{
    answer(":SOUR:Mode?", "SER");
    EXPECT_EQ(set("OutputChannel5"), GetParam().status);
    EXPECT_EQ(ScriptedClock::reads(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Calls, ModeChange, testing::ValuesIn(callsThatChangeTheMode()),
                         [](const auto& call) { return std::string(call.param.name); });

} // namespace
