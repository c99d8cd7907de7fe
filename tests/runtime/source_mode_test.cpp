#include "runtime/source_mode.h"

#include "tests/support/driver/mock_instrument.h"
#include "tests/support/driver/runtime_fixture.h"
#include "tests/support/driver/scripted_clock.h"

namespace
{

using namespace kvxtest;
using drivekit::ensureSourceMode;
using testing::DoAll;
using testing::InSequence;
using testing::Return;
using testing::SetArgReferee;
using TSRO::SourceMode;

struct Needed
{
    ViInt32 channel;
    SourceMode mode;
};

constexpr Needed kNeeded[] = {
    {1, SourceMode::Normal}, {2, SourceMode::Normal}, {5, SourceMode::Series}, {6, SourceMode::Parallel}};
constexpr SourceMode kModes[] = {SourceMode::Normal, SourceMode::Series, SourceMode::Parallel};

class SourceModeTest : public testing::Test
{
public:
    void instrumentIsIn(SourceMode mode)
    {
        EXPECT_CALL(instrument, sourceMode).WillOnce(DoAll(SetArgReferee<0>(mode), Return(VI_SUCCESS)));
    }

    ScriptedClock clock;
    StrictInstrument instrument;
};

TEST_F(SourceModeTest, Channels3And4AskNothing)
{
    EXPECT_EQ(ensureSourceMode(instrument, 3), VI_SUCCESS);
    EXPECT_EQ(ensureSourceMode(instrument, 4), VI_SUCCESS);
    EXPECT_EQ(ScriptedClock::reads(), 0U);
}

TEST_F(SourceModeTest, TheRightModeIsLeftAloneWithoutAWait)
{
    for (const auto& [channel, mode] : kNeeded) {
        instrumentIsIn(mode);
        EXPECT_EQ(ensureSourceMode(instrument, channel), VI_SUCCESS) << channel;
    }
    EXPECT_EQ(ScriptedClock::reads(), 0U);
}

TEST_F(SourceModeTest, AnotherModeIsReplacedByTheNeededOne)
{
    for (const auto& [channel, needed] : kNeeded)
        for (const SourceMode present : kModes) {
            if (present == needed)
                continue;
            const InSequence order;
            instrumentIsIn(present);
            EXPECT_CALL(instrument, setSourceMode(needed)).WillOnce(Return(VI_SUCCESS));
            EXPECT_EQ(ensureSourceMode(instrument, channel), VI_SUCCESS) << channel;
        }
}

TEST_F(SourceModeTest, AChangeIsFollowedByAWaitOfOneSecond)
{
    const ScriptedClock exact({5, 5 + 9'999'999, 5 + 10'000'000, 5 + 10'000'001});
    instrumentIsIn(SourceMode::Normal);
    EXPECT_CALL(instrument, setSourceMode(SourceMode::Series)).WillOnce([](SourceMode) {
        EXPECT_EQ(ScriptedClock::reads(), 0U);
        return VI_SUCCESS;
    });
    EXPECT_EQ(ensureSourceMode(instrument, 5), VI_SUCCESS);
    EXPECT_EQ(ScriptedClock::reads(), 3U);
}

TEST_F(SourceModeTest, AFailedQueryEndsTheStep)
{
    EXPECT_CALL(instrument, sourceMode).WillOnce(Return(code(0xBFFA4214)));
    EXPECT_EQ(ensureSourceMode(instrument, 1), code(0xBFFA4214));
    EXPECT_EQ(ScriptedClock::reads(), 0U);
}

TEST_F(SourceModeTest, AFailedChangeIsReturnedWithoutAWait)
{
    instrumentIsIn(SourceMode::Normal);
    EXPECT_CALL(instrument, setSourceMode(SourceMode::Parallel)).WillOnce(Return(code(0xBFFA4214)));
    EXPECT_EQ(ensureSourceMode(instrument, 6), code(0xBFFA4214));
    EXPECT_EQ(ScriptedClock::reads(), 0U);
}

TEST_F(SourceModeTest, AWarningEndsTheStepWithoutAWait)
{
    EXPECT_CALL(instrument, sourceMode)
        .WillOnce(DoAll(SetArgReferee<0>(SourceMode::Series), Return(5)))
        .WillOnce(DoAll(SetArgReferee<0>(SourceMode::Series), Return(VI_SUCCESS)));
    EXPECT_EQ(ensureSourceMode(instrument, 1), 5);
    EXPECT_CALL(instrument, setSourceMode(SourceMode::Normal)).WillOnce(Return(6));
    EXPECT_EQ(ensureSourceMode(instrument, 1), 6);
    EXPECT_EQ(ScriptedClock::reads(), 0U);
}

TEST_F(SourceModeTest, NothingIsRecorded)
{
    reset();
    EXPECT_CALL(instrument, sourceMode).WillOnce(Return(code(0xBFFA4214)));
    ensureSourceMode(instrument, 1);
    EXPECT_THAT(calls(), testing::IsEmpty());
}

} // namespace
