#include "instrument/channel_limits.h"

#include "tests/support/thrown.h"

#include <limits>
#include <stdexcept>
#include <string>

namespace
{

using kvxtest::kInvalidKey;
using kvxtest::throwsExactly;
using TSRO::ChannelLimits;
using TSRO::channelLimitsOf;

struct Row
{
    ViInt32 channel;
    ChannelLimits limits;
};

class ChannelLimitsOf : public testing::TestWithParam<Row>
{
};

TEST_P(ChannelLimitsOf, GivesTheChannelsVoltsAndAmperes)
{
    const Row& row = GetParam();
    const ChannelLimits& limits = channelLimitsOf(row.channel);
    EXPECT_EQ(limits.voltageMin, row.limits.voltageMin);
    EXPECT_EQ(limits.voltageMax, row.limits.voltageMax);
    EXPECT_EQ(limits.currentMin, row.limits.currentMin);
    EXPECT_EQ(limits.currentMax, row.limits.currentMax);
}

INSTANTIATE_TEST_SUITE_P(Channels, ChannelLimitsOf,
                         testing::Values(Row{1, {0.0, 33.0, 0.0, 3.2}}, Row{2, {0.0, 33.0, 0.0, 3.2}},
                                         Row{3, {0.0, 16.0, 0.0, 3.2}}, Row{4, {0.0, 6.2, 0.0, 10.5}},
                                         Row{5, {0.0, 66.0, 0.0, 3.2}}, Row{6, {0.0, 33.0, 0.0, 6.4}}),
                         [](const testing::TestParamInfo<Row>& row) {
                             return "Channel" + std::to_string(row.param.channel);
                         });

TEST(ChannelWithoutLimits, IsAnInvalidKey)
{
    for (const ViInt32 channel : {ViInt32{0}, ViInt32{7}, ViInt32{-1}, std::numeric_limits<ViInt32>::min(),
                                  std::numeric_limits<ViInt32>::max()})
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [=] { channelLimitsOf(channel); })) << channel;
}

} // namespace
