// Statistical bounds are so wide that a uniform source misses one of them less than once in 10^14 runs.

#include "simulator/kvx2800t_simulator.h"

#include "instrument/kvx2800t.h"
#include "tests/support/driver/operation_table.h"
#include "tests/support/driver/virtual_places.h"
#include "tests/support/fakes/platform_fakes.h"
#include "tests/support/processes/finished_program.h"
#include "tests/support/thrown.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <variant>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using kvxtest::Operation;
using kvxtest::throwsExactly;
using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using TSRO::KVX2800TSimulator;

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

TEST_F(Simulator, ReplacesEveryOperationButTheIdentityAndTheLimits)
{
    if (!kvxtest::kPlacesAreKnown)
        GTEST_SKIP();
    const TSRO::KVX2800T instrument;
    std::set<std::size_t> inherited;
    for (std::size_t place = 1; place <= 145; ++place)
        if (kvxtest::functionAt(simulator, place) == kvxtest::functionAt(instrument, place))
            inherited.insert(place);
    EXPECT_THAT(inherited, ElementsAre(kvxtest::placeOf(&TSRO::InstBase::identity),
                                       kvxtest::placeOf(&TSRO::InstBase::channelLimits)));
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

TEST_F(Simulator, HasTheDefaultOptionsWhateverItIsOpenedWith)
{
    ASSERT_EQ(simulator.open("", "Cache=0,RangeCheck=0,Simulate=1,DriverSetup=Model:KVX2833T"), 0);
    EXPECT_EQ(simulator.options().model, "");
    const base::InherentOptions& options = simulator.options();
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

TEST_F(Simulator, TakesEverySetting)
{
    kvxtest::Values none;
    for (const Operation& setting : kvxtest::settings()) {
        EXPECT_EQ(setting.run(simulator, none), 0) << setting.name;
        for (const Operation::Variation& variation : setting.variations)
            EXPECT_EQ(variation.run(simulator, none), 0) << setting.name;
    }
}

TEST_F(Simulator, ChecksNoArgumentOfASetting)
{
    for (const Operation& setting : kvxtest::settings())
        for (const auto& call : setting.invalidCalls)
            EXPECT_EQ(call(simulator), 0) << setting.name;
    for (const double level : {1e9, -1e9, std::nan("")}) {
        EXPECT_EQ(simulator.setVoltageLevel(1, level), 0);
        EXPECT_EQ(simulator.setVoltageLevel(7, level), 0);
        EXPECT_EQ(simulator.setCurrentLevel(1, level), 0);
        EXPECT_EQ(simulator.setCurrentLevel(0, level), 0);
    }
    EXPECT_EQ(simulator.setListGroup(-1, 1e9, 1e9, -1.0), 0);
}

TEST_F(Simulator, HasTheLimitsOfTheInstrument)
{
    for (ViInt32 channel = 1; channel <= 6; ++channel)
        EXPECT_EQ(&simulator.channelLimits(channel), &TSRO::channelLimitsOf(channel));
}

TEST_F(Simulator, ForgetsLevelsOnceTheyAreSet)
{
    int returned = 0;
    for (int i = 0; i < 100; ++i) {
        double volts = 0.0;
        double amperes = 0.0;
        ASSERT_EQ(simulator.setVoltageLevel(1, 5.0), 0);
        ASSERT_EQ(simulator.setCurrentLevel(1, 5.0), 0);
        ASSERT_EQ(simulator.voltageLevel(1, volts), 0);
        ASSERT_EQ(simulator.currentLevel(1, amperes), 0);
        returned += volts == 5.0 || amperes == 5.0 ? 1 : 0;
    }
    EXPECT_LT(returned, 2);
}

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

TEST_F(Simulator, MeasuresAVoltageAndACurrentOfTheirOwnAndTheirProduct)
{
    // How often the voltage, and the current, is in the upper half of its range.
    int counts[2][2] = {};
    for (int i = 0; i < kDraws; ++i) {
        double volts = -1.0;
        double amperes = -1.0;
        double watts = -1.0;
        ASSERT_EQ(simulator.measureAll(4, volts, amperes, watts), 0);
        ASSERT_EQ(watts, volts * amperes);
        ++counts[volts > 3.1 ? 1 : 0][amperes > 5.25 ? 1 : 0];
    }
    for (const auto& row : counts)
        for (const int count : row) {
            EXPECT_GT(count, kDraws * 20 / 100);
            EXPECT_LT(count, kDraws * 30 / 100);
        }
}

// ---- Every query

/// The values that an output takes.
struct Drawn
{
    enum class Kind
    {
        Fixed,
        /// True and false alike often, as 1 and 0.
        Switch,
        /// The integers of a range, from one 32-bit draw.
        Integer,
        /// The integers from 0 on, from a real draw.
        Scaled,
        Real,
        /// Between 0 and the channel's maximum.
        Voltage,
        Current,
        Power,
        /// The product of two others.
        Product,
        Unchanged,
    };

    Kind kind;
    double least = 0.0;
    double most = 1.0;
    /// How many 32-bit draws are thrown away before it is drawn.
    int discarded = 0;
};

Drawn fixed(double value)
{
    return {Drawn::Kind::Fixed, value, value};
}

Drawn every(int least, int most)
{
    return {Drawn::Kind::Integer, double(least), double(most)};
}

const Drawn kSwitch{Drawn::Kind::Switch};
const Drawn kUnchanged{Drawn::Kind::Unchanged};
const Drawn kVoltage{Drawn::Kind::Voltage};
const Drawn kCurrent{Drawn::Kind::Current};
const Drawn kPower{Drawn::Kind::Power};
const Drawn kUnit{Drawn::Kind::Real, 0.0, 1.0};
const Drawn kSeconds{Drawn::Kind::Real, 0.001, 3600.0};
const Drawn kGroups{Drawn::Kind::Scaled, 0.0, 510.0};
const Drawn kCycles{Drawn::Kind::Scaled, 0.0, 99998.0};
const Drawn kSwitchBehindADiscardedDraw{Drawn::Kind::Switch, 0.0, 1.0, 1};

/// By the number of the query; an output for each element.
const std::map<int, std::vector<Drawn>>& drawnByQuery()
{
    static const std::map<int, std::vector<Drawn>> all = {
        {11, {fixed(0)}},
        {13, {fixed(0)}},
        {14, {fixed(0)}},
        {17, {every(1, 6)}},
        {19, {every(0, 2)}},
        {21, {kSwitch}},
        {23, {kVoltage}},
        {25, {kVoltage}},
        {27, {kSwitch}},
        {29, {kSwitch}},
        {31, {kVoltage}},
        {33, {kVoltage}},
        {35, {kSwitch}},
        {37, {kUnit}},
        {39, {every(0, 1)}},
        {41, {kSwitch}},
        {42, {every(0, 1)}},
        {44, {kVoltage}},
        {46, {kSwitch}},
        {48, {kCurrent}},
        {50, {kSwitch}},
        {52, {kUnit}},
        {54, {every(0, 1)}},
        {56, {every(0, 2)}},
        {58, {every(0, 2)}},
        {60, {kSwitch}},
        {62, {kSwitch}},
        {64, {every(0, 1)}},
        {65, {kVoltage, kCurrent, {Drawn::Kind::Product}}},
        {66, {kVoltage}},
        {67, {kCurrent}},
        {68, {kPower}},
        {70, {every(0, 2)}},
        {72, {every(0, 2)}},
        {74, {kSwitch}},
        {75, {every(0, 3), kSeconds, kGroups, kCycles}},
        {77, {kCycles}},
        {79, {every(0, 1)}},
        {80, {kGroups}},
        {85, {{Drawn::Kind::Real, 0.0, 33.0}, {Drawn::Kind::Real, 0.0, 3.2}, kSeconds}},
        {87, {every(0, 7)}},
        {89, {every(0, 1), kUnit}},
        {91, {fixed(0)}},
        {93, {fixed(1)}},
        {95, {kUnchanged}},
        {97, {kSeconds}},
        {99, {kCycles}},
        {101, {kSwitch}},
        {103, {kSeconds}},
        {105, {every(1, 256)}},
        {107, {every(0, 100)}},
        {109, {every(1, 512)}},
        {111, {every(1, 512)}},
        {113, {every(0, 10)}},
        {114, {kGroups}},
        {117, {kSwitch}},
        {118, {every(0, 1), kSeconds, kGroups, kCycles}},
        {120, {kCycles}},
        {122, {every(0, 2)}},
        {123, {every(0, 512)}},
        {128, {kSwitchBehindADiscardedDraw, kSeconds}},
        {130, {every(0, 2)}},
        {132, {every(0, 1)}},
        {134, {every(1, 512)}},
        {136, {kSeconds}},
        {138, {kSeconds}},
        {140, {kSeconds}},
        {142, {kSeconds}},
        {145, {kUnchanged}},
    };
    return all;
}

struct Maxima
{
    double volts;
    double amperes;
};

constexpr std::array<Maxima, 6> kMaxima = {
    {{33.0, 3.2}, {33.0, 3.2}, {16.0, 3.2}, {6.2, 10.5}, {66.0, 3.2}, {33.0, 6.4}}};

/// What is drawn for a channel: the kinds that depend on its limits as ranges.
Drawn forChannel(const Drawn& drawn, ViInt32 channel)
{
    const Maxima& maxima = kMaxima.at(static_cast<std::size_t>(channel) - 1);
    switch (drawn.kind) {
    case Drawn::Kind::Voltage:
        return {Drawn::Kind::Real, 0.0, maxima.volts};
    case Drawn::Kind::Current:
        return {Drawn::Kind::Real, 0.0, maxima.amperes};
    case Drawn::Kind::Power:
        return {Drawn::Kind::Real, 0.0, maxima.volts * maxima.amperes};
    default:
        return drawn;
    }
}

bool dependsOnLimits(const std::vector<Drawn>& outputs)
{
    return std::any_of(outputs.begin(), outputs.end(), [](const Drawn& drawn) {
        return drawn.kind == Drawn::Kind::Voltage || drawn.kind == Drawn::Kind::Current ||
               drawn.kind == Drawn::Kind::Power;
    });
}

double numberOf(const kvxtest::Value& value)
{
    return std::visit(
        [](const auto& each) {
            if constexpr (std::is_convertible_v<decltype(each), double>)
                return static_cast<double>(each);
            else
                return std::nan("");
        },
        value);
}

class SimulatedQuery : public Simulator, public testing::WithParamInterface<Operation>
{
public:
    /// The numbers of one output in many calls.
    using Numbers = std::vector<double>;

    /// Many calls; the numbers of each output.
    std::vector<Numbers> draw(ViInt32 number, std::size_t count)
    {
        std::vector<Numbers> numbers(outputs.size());
        for (std::size_t i = 0; i < count && !HasFatalFailure(); ++i) {
            kvxtest::Values values;
            EXPECT_EQ(query.runFor ? query.runFor(simulator, number, values) : query.run(simulator, values), 0);
            for (std::size_t output = 0; output < outputs.size(); ++output)
                numbers[output].push_back(numberOf(values[output]));
        }
        return numbers;
    }

    /// So many that no value of a range is missed: once in 10^30 runs.
    std::size_t drawCount() const
    {
        std::size_t count = kDraws;
        for (const Drawn& drawn : outputs)
            if (isSeenWhole(drawn))
                count = std::max(count, static_cast<std::size_t>(drawn.most - drawn.least + 1) * 80);
        return count;
    }

    void expectDrawn(const Drawn& drawn, const Numbers& numbers, double before)
    {
        switch (drawn.kind) {
        case Drawn::Kind::Fixed:
            EXPECT_THAT(numbers, Each(drawn.least));
            break;
        case Drawn::Kind::Unchanged:
            EXPECT_THAT(numbers, Each(before));
            break;
        case Drawn::Kind::Switch:
            EXPECT_THAT(numbers, Each(AnyOf(0.0, 1.0)));
            expectHalves(drawn, numbers);
            break;
        case Drawn::Kind::Integer:
        case Drawn::Kind::Scaled:
            expectIntegers(drawn, numbers);
            break;
        case Drawn::Kind::Real:
            expectOuterTenths(drawn, numbers);
            expectHalves(drawn, numbers);
            break;
        default:
            break;
        }
    }

    const Operation& query = GetParam();
    const std::vector<Drawn>& outputs = drawnByQuery().at(query.number);

private:
    /// Whether it is an integer of a range so small that each of its values comes.
    static bool isSeenWhole(const Drawn& drawn)
    {
        return (drawn.kind == Drawn::Kind::Integer || drawn.kind == Drawn::Kind::Scaled) && drawn.most < 1000.0;
    }

    static void expectIntegers(const Drawn& drawn, const Numbers& numbers)
    {
        if (isSeenWhole(drawn))
            return expectEveryInteger(drawn, numbers);
        EXPECT_TRUE(std::all_of(numbers.begin(), numbers.end(), [](double each) { return each == std::floor(each); }));
        expectOuterTenths(drawn, numbers);
        expectHalves(drawn, numbers);
    }

    static void expectEveryInteger(const Drawn& drawn, const Numbers& numbers)
    {
        std::vector<double> expected(static_cast<std::size_t>(drawn.most - drawn.least) + 1);
        std::iota(expected.begin(), expected.end(), drawn.least);
        const std::set<double> seen(numbers.begin(), numbers.end());
        EXPECT_EQ(std::vector<double>(seen.begin(), seen.end()), expected);
    }

    static void expectOuterTenths(const Drawn& drawn, const Numbers& numbers)
    {
        const auto [least, most] = std::minmax_element(numbers.begin(), numbers.end());
        const double tenth = (drawn.most - drawn.least) / 10.0;
        EXPECT_GE(*least, drawn.least);
        EXPECT_LE(*most, drawn.most);
        EXPECT_LT(*least, drawn.least + tenth);
        EXPECT_GT(*most, drawn.most - tenth);
    }

    /// Uniform values, so half of them in each half.
    static void expectHalves(const Drawn& drawn, const Numbers& numbers)
    {
        const double middle = (drawn.least + drawn.most) / 2.0;
        const auto lower = std::count_if(numbers.begin(), numbers.end(), [=](double each) { return each < middle; });
        const auto all = static_cast<std::ptrdiff_t>(numbers.size());
        EXPECT_GT(lower, all * 45 / 100);
        EXPECT_LT(lower, all * 55 / 100);
    }
};

/// The answers that a generator's draws lead to.
class ExpectedAnswers
{
public:
    explicit ExpectedAnswers(std::uint32_t seed) : generator_(seed) {}

    std::vector<double> next(const Operation& query, const std::vector<Drawn>& outputs, ViInt32 channel)
    {
        std::vector<double> answers;
        for (std::size_t i = 0; i < outputs.size(); ++i)
            answers.push_back(outputs[i].kind == Drawn::Kind::Unchanged ? numberOf(query.before[i])
                              : outputs[i].kind == Drawn::Kind::Product ? answers[0] * answers[1]
                                                                        : answer(forChannel(outputs[i], channel)));
        return answers;
    }

private:
    double answer(const Drawn& drawn)
    {
        generator_.discard(static_cast<unsigned long long>(drawn.discarded));
        switch (drawn.kind) {
        case Drawn::Kind::Switch:
            return real() < 0.5 ? 1.0 : 0.0;
        case Drawn::Kind::Integer:
            return drawn.least + integerBelow(static_cast<std::uint32_t>(drawn.most - drawn.least) + 1);
        case Drawn::Kind::Scaled:
            return std::floor(real() * (drawn.most + 1.0));
        case Drawn::Kind::Real:
            return drawn.least + real() * (drawn.most - drawn.least);
        default:
            return drawn.least;
        }
    }

    double real() { return std::generate_canonical<double, 53>(generator_); }

    /// Of ranges so small that none of these draws is rejected.
    double integerBelow(std::uint32_t count)
    {
        return static_cast<double>((std::uint64_t{generator_()} * count) >> 32U);
    }

    std::mt19937 generator_;
};

TEST_P(SimulatedQuery, AnswersFromTheGeneratorsDrawsInTheirOrder)
{
    constexpr std::uint32_t kSeed = 20240611;
    for (ViInt32 channel = 1; channel <= 6; ++channel) {
        TSRO::RandomSource::seedGenerator(kSeed);
        KVX2800TSimulator seeded;
        ExpectedAnswers expected(kSeed);
        for (int i = 0; i < 100; ++i) {
            kvxtest::Values values;
            ASSERT_EQ(query.runFor ? query.runFor(seeded, channel, values) : query.run(seeded, values), 0);
            std::vector<double> answers;
            for (const kvxtest::Value& value : values)
                answers.push_back(numberOf(value));
            ASSERT_EQ(answers, expected.next(query, outputs, channel)) << "answer " << i << " of channel " << channel;
        }
    }
}

/// The sample number of a query, or every channel when it matters.
std::vector<ViInt32> numbersToAskFor(const std::vector<Drawn>& outputs)
{
    return dependsOnLimits(outputs) ? std::vector<ViInt32>{1, 2, 3, 4, 5, 6} : std::vector<ViInt32>{1};
}

TEST_P(SimulatedQuery, DrawsWithinItsRangeAndAllOfIt)
{
    for (const ViInt32 channel : numbersToAskFor(outputs)) {
        const std::vector<Numbers> numbers = draw(channel, drawCount());
        for (std::size_t output = 0; output < outputs.size(); ++output) {
            SCOPED_TRACE(testing::Message() << "channel " << channel << ", output " << output);
            expectDrawn(forChannel(outputs[output], channel), numbers[output], numberOf(query.before[output]));
        }
    }
}

/// One row for each query, but for the error queue's, which has a text.
std::vector<Operation> simulatedQueries(bool (*chosen)(const Operation&))
{
    std::vector<Operation> rows;
    for (const Operation& query : kvxtest::queries())
        if (query.name != "nextError" && (rows.empty() || rows.back().number != query.number) && chosen(query))
            rows.push_back(query);
    return rows;
}

std::string nameOf(const testing::TestParamInfo<Operation>& query)
{
    return query.param.name;
}

INSTANTIATE_TEST_SUITE_P(Operations, SimulatedQuery,
                         testing::ValuesIn(simulatedQueries([](const Operation&) { return true; })), nameOf);

class SimulatedQueryOfLimits : public SimulatedQuery
{
};

TEST_P(SimulatedQueryOfLimits, OfAChannelWithoutLimitsIsAnInvalidKey)
{
    for (const ViInt32 channel : {ViInt32{0}, ViInt32{7}, ViInt32{-1}, std::numeric_limits<ViInt32>::max()}) {
        kvxtest::Values values;
        EXPECT_TRUE(throwsExactly<std::out_of_range>("invalid map<K, T> key",
                                                     [&] { query.runFor(simulator, channel, values); }));
        EXPECT_EQ(values, query.before);
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, SimulatedQueryOfLimits,
                         testing::ValuesIn(simulatedQueries([](const Operation& query) {
                             return dependsOnLimits(drawnByQuery().at(query.number));
                         })),
                         nameOf);

class SimulatedQueryWithoutLimits : public SimulatedQuery
{
};

TEST_P(SimulatedQueryWithoutLimits, TakesAnyChannelOrGroup)
{
    kvxtest::Values values;
    for (const ViInt32 number : {ViInt32{0}, ViInt32{7}, ViInt32{-1}, std::numeric_limits<ViInt32>::max()})
        EXPECT_EQ(query.runFor(simulator, number, values), 0);
}

INSTANTIATE_TEST_SUITE_P(Operations, SimulatedQueryWithoutLimits,
                         testing::ValuesIn(simulatedQueries([](const Operation& query) {
                             return query.runFor && !dependsOnLimits(drawnByQuery().at(query.number));
                         })),
                         nameOf);

// ---- Draws

TEST_F(Simulator, ADelayGroupCostsADrawThatNobodyGets)
{
    KVX2800TSimulator instrument;
    bool on = false;
    double seconds = 0.0;
    const std::uint64_t before = instrument.drawCount();
    instrument.delayGroup(1, on, seconds);
    const std::uint64_t between = instrument.drawCount();
    instrument.delayOnTime(seconds);
    EXPECT_EQ(between - before, 1U + 2U + 2U);
    EXPECT_EQ(instrument.drawCount() - between, 2U);
}

TEST_F(Simulator, EachProcessIsSeededBySomethingElse)
{
    const kvxtest::FinishedProgram first = kvxtest::runProgram(KVX_SIMULATED_LEVELS, {});
    const kvxtest::FinishedProgram second = kvxtest::runProgram(KVX_SIMULATED_LEVELS, {});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_NE(first.output, "");
    EXPECT_NE(first.output, second.output);
}

// ---- Threads

TEST_F(Simulator, SimulatedSessionsOfEightThreadsWorkAtOnce)
{
    std::vector<std::thread> threads;
    std::array<int, 8> failures{};
    threads.reserve(failures.size());
    for (int& count : failures)
        threads.emplace_back([&count] {
            KVX2800TSimulator own;
            own.open("", "");
            kvxtest::Values values;
            for (int round = 0; round < 50; ++round)
                for (const Operation& operation : kvxtest::operations())
                    count += operation.run(own, values) == 0 ? 0 : 1;
            own.close();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(failures, Each(0));
}

} // namespace
