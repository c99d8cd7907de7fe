#include "instrument/kvx2800t.h"

#include "tests/support/driver/scripted_connection.h"
#include "tests/support/thrown.h"

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using kvxtest::kInvalidKey;
using kvxtest::portOn;
using kvxtest::ScriptedConnection;
using kvxtest::throwsExactly;
using testing::ElementsAre;
using testing::IsEmpty;
using TSRO::KVX2800T;

constexpr ViStatus kOutOfRange = static_cast<ViStatus>(0xBFFA4217);
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Maxima
{
    ViInt32 channel;
    double volts;
    const char* voltsText;
    double amperes;
    const char* amperesText;
};

class Levels : public testing::TestWithParam<Maxima>
{
public:
    std::string prefix(const std::string& node) const
    {
        return ":SOUR" + std::to_string(GetParam().channel) + ":" + node + " ";
    }

    std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
    KVX2800T instrument{portOn(connection)};
};

std::vector<double> outside(double minimum, double maximum)
{
    return {std::nextafter(minimum, -kInfinity),
            std::nextafter(maximum, kInfinity),
            minimum - 1.0,
            maximum + 0.000001,
            kInfinity,
            -kInfinity,
            std::numeric_limits<double>::max(),
            std::numeric_limits<double>::lowest(),
            std::nan(""),
            -std::nan("")};
}

TEST_P(Levels, OfVoltageAreSentUpToBothLimits)
{
    const Maxima& maxima = GetParam();
    EXPECT_EQ(instrument.setVoltageLevel(maxima.channel, 0.0), 0);
    EXPECT_EQ(instrument.setVoltageLevel(maxima.channel, maxima.volts), 0);
    EXPECT_EQ(instrument.setVoltageLevel(maxima.channel, std::nextafter(0.0, 1.0)), 0);
    EXPECT_EQ(instrument.setVoltageLevel(maxima.channel, std::nextafter(maxima.volts, 0.0)), 0);
    EXPECT_THAT(connection->written, ElementsAre(prefix("VOLT") + "0.000000", prefix("VOLT") + maxima.voltsText,
                                                 prefix("VOLT") + "0.000000", prefix("VOLT") + maxima.voltsText));
}

TEST_P(Levels, OfCurrentAreSentUpToBothLimits)
{
    const Maxima& maxima = GetParam();
    EXPECT_EQ(instrument.setCurrentLevel(maxima.channel, 0.0), 0);
    EXPECT_EQ(instrument.setCurrentLevel(maxima.channel, maxima.amperes), 0);
    EXPECT_EQ(instrument.setCurrentLevel(maxima.channel, std::nextafter(0.0, 1.0)), 0);
    EXPECT_EQ(instrument.setCurrentLevel(maxima.channel, std::nextafter(maxima.amperes, 0.0)), 0);
    EXPECT_THAT(connection->written, ElementsAre(prefix("CURR") + "0.000000", prefix("CURR") + maxima.amperesText,
                                                 prefix("CURR") + "0.000000", prefix("CURR") + maxima.amperesText));
}

TEST_P(Levels, OfZeroKeepTheirSign)
{
    EXPECT_EQ(instrument.setVoltageLevel(GetParam().channel, -0.0), 0);
    EXPECT_EQ(instrument.setCurrentLevel(GetParam().channel, -0.0), 0);
    EXPECT_THAT(connection->written, ElementsAre(prefix("VOLT") + "-0.000000", prefix("CURR") + "-0.000000"));
}

TEST_P(Levels, OfVoltageOutsideTheLimitsAreRefusedUnsent)
{
    for (const double volts : outside(0.0, GetParam().volts))
        EXPECT_EQ(instrument.setVoltageLevel(GetParam().channel, volts), kOutOfRange) << volts;
    EXPECT_THAT(connection->written, IsEmpty());
}

TEST_P(Levels, OfCurrentOutsideTheLimitsAreRefusedUnsent)
{
    for (const double amperes : outside(0.0, GetParam().amperes))
        EXPECT_EQ(instrument.setCurrentLevel(GetParam().channel, amperes), kOutOfRange) << amperes;
    EXPECT_THAT(connection->written, IsEmpty());
}

TEST_P(Levels, OutsideTheLimitsAreRefusedWithoutAConnectionToo)
{
    KVX2800T unconnected;
    EXPECT_EQ(unconnected.setVoltageLevel(GetParam().channel, GetParam().volts + 1.0), kOutOfRange);
    EXPECT_EQ(unconnected.setCurrentLevel(GetParam().channel, GetParam().amperes + 1.0), kOutOfRange);
}

TEST_P(Levels, OfProtectionAreSentUnchecked)
{
    for (const double level : {1000.0, -1.0}) {
        EXPECT_EQ(instrument.setVoltageProtectionLevel(GetParam().channel, level), 0);
        EXPECT_EQ(instrument.setCurrentProtectionLevel(GetParam().channel, level), 0);
    }
    EXPECT_THAT(connection->written,
                ElementsAre(prefix("VOLT:PROT") + "1000.000000", prefix("CURR:PROT") + "1000.000000",
                            prefix("VOLT:PROT") + "-1.000000", prefix("CURR:PROT") + "-1.000000"));
}

TEST_P(Levels, AreLimitedAsTheInstrumentSays)
{
    const TSRO::ChannelLimits& limits = instrument.channelLimits(GetParam().channel);
    EXPECT_EQ(limits.voltageMin, 0.0);
    EXPECT_EQ(limits.voltageMax, GetParam().volts);
    EXPECT_EQ(limits.currentMin, 0.0);
    EXPECT_EQ(limits.currentMax, GetParam().amperes);
    EXPECT_THAT(connection->written, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Channels, Levels,
    testing::Values(Maxima{1, 33.0, "33.000000", 3.2, "3.200000"}, Maxima{2, 33.0, "33.000000", 3.2, "3.200000"},
                    Maxima{3, 16.0, "16.000000", 3.2, "3.200000"}, Maxima{4, 6.2, "6.200000", 10.5, "10.500000"},
                    Maxima{5, 66.0, "66.000000", 3.2, "3.200000"}, Maxima{6, 33.0, "33.000000", 6.4, "6.400000"}),
    [](const testing::TestParamInfo<Maxima>& maxima) { return "Channel" + std::to_string(maxima.param.channel); });

TEST(LevelsOfUnknownChannels, AreInvalidKeysAndNothingIsSent)
{
    const auto connection = std::make_shared<ScriptedConnection>();
    KVX2800T instrument(portOn(connection));
    for (const ViInt32 channel : {ViInt32{0}, ViInt32{7}, ViInt32{-1}, std::numeric_limits<ViInt32>::min(),
                                  std::numeric_limits<ViInt32>::max()})
    {
        SCOPED_TRACE(channel);
        for (const double level : {1.0, -1.0, 1e9, std::nan("")}) {
            EXPECT_TRUE(
                throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.setVoltageLevel(channel, level); }));
            EXPECT_TRUE(
                throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.setCurrentLevel(channel, level); }));
        }
        EXPECT_TRUE(throwsExactly<std::out_of_range>(kInvalidKey, [&] { instrument.channelLimits(channel); }));
    }
    EXPECT_THAT(connection->written, IsEmpty());
}

} // namespace
