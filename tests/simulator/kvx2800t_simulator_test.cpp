// Statistical bounds are so wide that a uniform source misses one of them less than once in 10^14 runs.

#include "simulator/kvx2800t_simulator.h"

#include "support/platform_fakes.h"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using testing::IsEmpty;
using TSRO::InstBase;
using TSRO::KVX2800TSimulator;
using TSRO::SourceMode;

constexpr int kDraws = 10000;

class Simulator : public testing::Test
{
public:
    Simulator() { kvxtest::reset(); }

    void TearDown() override
    {
        // Whatever a test has done: no simulated operation calls VISA, or anything else of the platform.
        EXPECT_THAT(kvxtest::calls(), IsEmpty());
    }

    KVX2800TSimulator simulator;
};

TEST_F(Simulator, SaysWhoItIs)
{
    const auto identity = simulator.identity();
    EXPECT_EQ(identity->manufacturer, "Tessaro Instruments");
    EXPECT_EQ(identity->model, "KVX2803T");
    EXPECT_EQ(identity->serialNumber, "SN12345678901");
    EXPECT_EQ(identity->firmwareRevision, "V1.00");
    EXPECT_EQ(simulator.identity(), identity);
}

TEST_F(Simulator, KeepsItsIdentityWhenItIsOpened)
{
    EXPECT_EQ(simulator.open("GPIB0::5::INSTR", "Simulate=1"), 0);
    EXPECT_EQ(simulator.identity()->model, "KVX2803T");
}

TEST_F(Simulator, IsConnectedBetweenOpenAndClose)
{
    EXPECT_FALSE(simulator.isOpen());
    EXPECT_EQ(simulator.open("GPIB0::5::INSTR", ""), 0);
    EXPECT_TRUE(simulator.isOpen());
    EXPECT_EQ(simulator.close(), 0);
    EXPECT_FALSE(simulator.isOpen());
}

TEST_F(Simulator, ConnectsToAnyDescriptorAnyNumberOfTimes)
{
    for (const std::string& resource : {std::string(), std::string("nothing"), std::string(1000, ':')}) {
        EXPECT_EQ(simulator.open(resource, "no=options"), 0);
        EXPECT_TRUE(simulator.isOpen());
    }
    EXPECT_EQ(simulator.close(), 0);
    EXPECT_EQ(simulator.close(), 0);
}

TEST_F(Simulator, HasTheDefaultOptions)
{
    const TSRO::InherentOptions& options = simulator.options();
    EXPECT_TRUE(options.cache);
    EXPECT_TRUE(options.rangeCheck);
    EXPECT_FALSE(options.interchangeCheck || options.queryInstrumentStatus || options.recordCoercions ||
                 options.simulate);
}

TEST_F(Simulator, HasNoTimeout)
{
    EXPECT_EQ(simulator.ioTimeout(), 0);
    EXPECT_EQ(simulator.setIoTimeout(5000), 0);
    EXPECT_EQ(simulator.ioTimeout(), 0);
}

TEST_F(Simulator, SwallowsRawCommands)
{
    std::string reply = "before";
    EXPECT_EQ(simulator.writeRaw("*RST"), 0);
    EXPECT_EQ(simulator.queryRaw("*IDN?", reply), 0);
    EXPECT_EQ(reply, "before");
}

TEST_F(Simulator, HasNoStatusAndNoErrors)
{
    ViInt32 value = -7;
    EXPECT_EQ(simulator.clearStatus(), 0);
    EXPECT_EQ(simulator.reset(), 0);
    EXPECT_EQ(simulator.eventStatus(value), 0);
    EXPECT_EQ(value, 0);
    value = -7;
    EXPECT_EQ(simulator.questionableCondition(1, value), 0);
    EXPECT_EQ(value, 0);
    value = -7;
    EXPECT_EQ(simulator.questionableEvent(1, value), 0);
    EXPECT_EQ(value, 0);
    value = -7;
    std::string message = "before";
    EXPECT_EQ(simulator.nextError(value, message), 0);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(message, "No error");
}

TEST_F(Simulator, ChecksNoArgument)
{
    for (const ViInt32 channel : {0, 7, -1}) {
        ViInt32 value = -7;
        bool enabled = false;
        EXPECT_EQ(simulator.setVoltageLevel(channel, 1e9), 0);
        EXPECT_EQ(simulator.setCurrentLevel(channel, -1e9), 0);
        EXPECT_EQ(simulator.setCurrentProtectionLevel(channel, 1e9), 0);
        EXPECT_EQ(simulator.setCurrentProtectionEnabled(channel, true), 0);
        EXPECT_EQ(simulator.setOutputEnabled(channel, true), 0);
        EXPECT_EQ(simulator.currentProtectionEnabled(channel, enabled), 0);
        EXPECT_EQ(simulator.outputEnabled(channel, enabled), 0);
        EXPECT_EQ(simulator.questionableCondition(channel, value), 0);
        EXPECT_EQ(simulator.questionableEvent(channel, value), 0);
        EXPECT_EQ(value, 0);
    }
    EXPECT_EQ(simulator.setSourceMode(static_cast<SourceMode>(3)), 0);
}

TEST_F(Simulator, HasTheLimitsOfTheInstrument)
{
    EXPECT_EQ(simulator.channelLimits(4).currentMax, 10.5);
    EXPECT_EQ(simulator.channelLimits(5).voltageMax, 66.0);
}

// ---- Levels

struct Level
{
    std::string name;
    std::function<ViStatus(InstBase&, ViInt32, double&)> read;
};

class SimulatedLevel : public Simulator, public testing::WithParamInterface<Level>
{
};

TEST_P(SimulatedLevel, LiesInTheVoltageRangeOfTheChannel)
{
    constexpr std::array<double, 6> kMaxima = {33.0, 33.0, 16.0, 6.2, 66.0, 33.0};
    for (ViInt32 channel = 1; channel <= 6; ++channel) {
        const double maximum = kMaxima[static_cast<std::size_t>(channel) - 1];
        std::vector<double> values(kDraws, -1.0);
        for (double& value : values) {
            ASSERT_EQ(GetParam().read(simulator, channel, value), 0);
            ASSERT_GE(value, 0.0);
            ASSERT_LE(value, maximum);
        }
        const auto [least, most] = std::minmax_element(values.begin(), values.end());
        EXPECT_LT(*least, 0.01 * maximum);
        EXPECT_GT(*most, 0.99 * maximum);
        const auto half = std::count_if(values.begin(), values.end(), [=](double v) { return v < maximum / 2; });
        EXPECT_GT(half, kDraws * 45 / 100);
        EXPECT_LT(half, kDraws * 55 / 100);
    }
}

TEST_P(SimulatedLevel, IsForgottenOnceItIsSet)
{
    int returned = 0;
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(simulator.setVoltageLevel(1, 5.0), 0);
        ASSERT_EQ(simulator.setCurrentLevel(1, 5.0), 0);
        ASSERT_EQ(simulator.setCurrentProtectionLevel(1, 5.0), 0);
        double value = 0.0;
        ASSERT_EQ(GetParam().read(simulator, 1, value), 0);
        returned += value == 5.0 ? 1 : 0;
    }
    EXPECT_LT(returned, 2);
}

TEST_P(SimulatedLevel, OfAChannelWithoutLimitsIsAnInvalidKey)
{
    for (const ViInt32 channel : {0, 7, -1, std::numeric_limits<ViInt32>::max()}) {
        double value = -7.5;
        try {
            GetParam().read(simulator, channel, value);
            ADD_FAILURE() << "nothing was thrown for channel " << channel;
        } catch (const std::exception& thrown) {
            EXPECT_EQ(typeid(thrown), typeid(std::out_of_range));
            EXPECT_STREQ(thrown.what(), "invalid map<K, T> key");
        }
        EXPECT_EQ(value, -7.5);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Queries, SimulatedLevel,
    testing::Values(
        Level{"Voltage", [](InstBase& i, ViInt32 channel, double& v) { return i.voltageLevel(channel, v); }},
        Level{"Current", [](InstBase& i, ViInt32 channel, double& v) { return i.currentLevel(channel, v); }},
        Level{"CurrentProtection",
              [](InstBase& i, ViInt32 channel, double& v) { return i.currentProtectionLevel(channel, v); }}),
    [](const testing::TestParamInfo<Level>& level) { return level.param.name; });

TEST_F(Simulator, GivesCurrentsAboveTheCurrentLimitFromTheVoltageRange)
{
    int above = 0;
    for (int i = 0; i < 1000; ++i) {
        double amperes = 0.0;
        ASSERT_EQ(simulator.currentLevel(1, amperes), 0);
        above += amperes > simulator.channelLimits(1).currentMax ? 1 : 0;
    }
    // Nine in ten are expected.
    EXPECT_GT(above, 700);
}

// ---- Modes and states

TEST_F(Simulator, DrawsEverySourceMode)
{
    std::array<int, 3> counts{};
    for (int i = 0; i < kDraws; ++i) {
        auto mode = static_cast<SourceMode>(-1);
        ASSERT_EQ(simulator.sourceMode(mode), 0);
        ASSERT_GE(mode, SourceMode::Normal);
        ASSERT_LE(mode, SourceMode::Parallel);
        ++counts[static_cast<std::size_t>(mode)];
    }
    for (const int count : counts) {
        EXPECT_GT(count, 2900);
        EXPECT_LT(count, 3800);
    }
}

TEST_F(Simulator, DrawsStatesOnAndOffAlikeOften)
{
    int outputs = 0;
    int protections = 0;
    for (int i = 0; i < kDraws; ++i) {
        bool enabled = false;
        ASSERT_EQ(simulator.outputEnabled(1, enabled), 0);
        outputs += enabled ? 1 : 0;
        ASSERT_EQ(simulator.currentProtectionEnabled(1, enabled), 0);
        protections += enabled ? 1 : 0;
    }
    for (const int count : {outputs, protections}) {
        EXPECT_GT(count, kDraws * 45 / 100);
        EXPECT_LT(count, kDraws * 55 / 100);
    }
}

// ---- Threads

TEST_F(Simulator, SimulatedSessionsOfEightThreadsDrawAtOnce)
{
    std::vector<std::thread> threads;
    std::array<int, 8> outside{};
    threads.reserve(outside.size());
    for (int& count : outside)
        threads.emplace_back([&count] {
            KVX2800TSimulator own;
            for (int i = 0; i < 2000; ++i) {
                double volts = -1.0;
                bool enabled = false;
                auto mode = SourceMode::Normal;
                own.voltageLevel(3, volts);
                own.outputEnabled(1, enabled);
                own.sourceMode(mode);
                count += volts < 0.0 || volts > 16.0 || mode > SourceMode::Parallel ? 1 : 0;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(outside, testing::Each(0));
}

} // namespace
