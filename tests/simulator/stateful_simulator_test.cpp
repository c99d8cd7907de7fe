#include "simulator/stateful_simulator.h"

#include "simulator/virtual_connection.h"
#include "tests/support/comma_locale.h"
#include "tests/support/driver/operation_preparation.h"
#include "tests/support/driver/operation_table.h"
#include "tests/support/driver/visa_statuses.h"
#include "tests/support/fakes/platform_fakes.h"
#include "virtual_instrument/scpi/virtual_instrument.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

namespace
{

using kvxtest::kNoConnection;
using kvxtest::kTermChar;
using kvxtest::kTimedOut;
using kvxtest::Operation;
using kvxtest::preparationOf;
using kvxtest::Values;
using testing::ElementsAre;
using testing::IsEmpty;
using TSRO::InstBase;
using TSRO::makeStatefulSimulator;
using namespace std::chrono_literals;

constexpr ViStatus kIoError = static_cast<ViStatus>(0xBFFA4214);
constexpr ViStatus kOutOfRange = static_cast<ViStatus>(0xBFFA4217);
constexpr ViStatus kTruncated = base::kWarnArrayTruncated;

constexpr const char* kNoError = "0,\"No error\"";

/// The next entry of the error queue, as the instrument words it.
std::string errorOf(InstBase& instrument)
{
    ViInt32 code = -1;
    std::string message;
    EXPECT_EQ(instrument.nextError(code, message), 0);
    return std::to_string(code) + ',' + message;
}

double voltageLevelOf(InstBase& instrument, ViInt32 channel)
{
    double volts = -1.0;
    EXPECT_EQ(instrument.voltageLevel(channel, volts), 0);
    return volts;
}

/// On a clock that stands still until the test advances it.
class StatefulSimulator : public testing::Test
{
public:
    StatefulSimulator() { kvxtest::reset(); }

    void SetUp() override { ASSERT_EQ(simulator->open("GPIB0::5::INSTR", ""), 0); }

    void TearDown() override
    {
        // Whatever a test has done: no simulated operation calls VISA, or anything else of the platform.
        EXPECT_THAT(kvxtest::calls(), IsEmpty());
    }

    void expectError(const std::string& error) { EXPECT_EQ(errorOf(*simulator), error); }

    /// As after a reset, with what the operation needs.
    void prepare(const Operation& operation)
    {
        ASSERT_EQ(simulator->reset(), 0);
        for (const std::string& line : preparationOf(operation.name))
            ASSERT_EQ(simulator->writeRaw(line), 0);
        // Outputs settle after a change of the source mode.
        now += 1s;
        expectError(kNoError);
    }

    void expectEverySettingReadsBack()
    {
        std::size_t readBack = 0;
        for (const Operation& setting : kvxtest::settings()) {
            if (!setting.readBack)
                continue;
            SCOPED_TRACE(setting.name);
            prepare(setting);
            Values outputs;
            EXPECT_EQ(setting.run(*simulator, outputs), 0);
            EXPECT_EQ(setting.readBack->run(*simulator, outputs), 0);
            EXPECT_EQ(outputs, setting.results);
            expectError(kNoError);
            ++readBack;
        }
        EXPECT_GT(readBack, 50U);
    }

    /// One message as it is read, with what reading it returned.
    std::tuple<ViStatus, std::string> message(std::size_t bufferSize = 128)
    {
        std::string text(bufferSize, '?');
        std::size_t count = 0;
        const ViStatus status = simulator->readMessage({reinterpret_cast<ViByte*>(text.data()), text.size()}, count);
        text.resize(count);
        return {status, text};
    }

    std::chrono::nanoseconds now{0};
    const std::shared_ptr<InstBase> simulator = makeStatefulSimulator([this] { return now; });
};

// ---- Connection and identity

TEST_F(StatefulSimulator, IsASupportedModelThatTellsWhoItIs)
{
    const auto identity = simulator->identity();
    EXPECT_EQ(identity->manufacturer, "Tessaro Instruments");
    EXPECT_EQ(identity->model, "KVX2833T");
    EXPECT_EQ(identity->serialNumber, "VIRT0000001");
    EXPECT_EQ(identity->firmwareRevision, "V1.00");
}

TEST_F(StatefulSimulator, ConnectsWhateverTheResource)
{
    for (const std::string& resource : {std::string(), std::string("nothing"), std::string(1000, ':')}) {
        EXPECT_EQ(simulator->open(resource, ""), 0);
        EXPECT_TRUE(simulator->isOpen());
    }
}

TEST_F(StatefulSimulator, TakesItsOptionsFromTheOptionString)
{
    ASSERT_EQ(simulator->open("", "Simulate=1,QueryInstrStatus=1,Cache=0,DriverSetup=Model:KVX2833T"), 0);
    EXPECT_TRUE(simulator->options().simulate);
    EXPECT_TRUE(simulator->options().queryInstrumentStatus);
    EXPECT_FALSE(simulator->options().cache);
    EXPECT_EQ(simulator->options().model, "KVX2833T");
}

TEST_F(StatefulSimulator, IsAConnectionLessBeforeItIsOpenedAndAfterItIsClosed)
{
    const auto unopened = makeStatefulSimulator();
    double volts = -1.0;
    EXPECT_FALSE(unopened->isOpen());
    EXPECT_EQ(unopened->voltageLevel(1, volts), kIoError);
    EXPECT_EQ(unopened->close(), kNoConnection);
    EXPECT_TRUE(simulator->isOpen());
    EXPECT_EQ(simulator->close(), 0);
    EXPECT_FALSE(simulator->isOpen());
    EXPECT_EQ(simulator->voltageLevel(1, volts), kIoError);
    EXPECT_EQ(simulator->close(), kNoConnection);
    EXPECT_EQ(volts, -1.0);
}

TEST_F(StatefulSimulator, IsAnInstrumentJustSwitchedOnEachTimeItIsOpened)
{
    ASSERT_EQ(simulator->setVoltageLevel(1, 5.0), 0);
    ASSERT_EQ(simulator->close(), 0);
    ASSERT_EQ(simulator->open("", ""), 0);
    EXPECT_TRUE(simulator->isOpen());
    EXPECT_EQ(voltageLevelOf(*simulator, 1), 0.0);
    ASSERT_EQ(simulator->setVoltageLevel(1, 5.0), 0);
    ASSERT_EQ(simulator->open("", ""), 0);
    EXPECT_EQ(voltageLevelOf(*simulator, 1), 0.0);
    ViInt32 events = -1;
    EXPECT_EQ(simulator->eventStatus(events), 0);
    EXPECT_EQ(events, 128);
}

TEST_F(StatefulSimulator, HasTheTimeoutOfAConnection)
{
    EXPECT_EQ(simulator->ioTimeout(), 2000);
    EXPECT_EQ(simulator->setIoTimeout(5000), 0);
    EXPECT_EQ(simulator->ioTimeout(), 5000);
    ASSERT_EQ(simulator->close(), 0);
    EXPECT_EQ(simulator->setIoTimeout(7000), 0);
    ASSERT_EQ(simulator->open("", ""), 0);
    EXPECT_EQ(simulator->ioTimeout(), 7000);
}

TEST_F(StatefulSimulator, SharesNothingWithAnother)
{
    const auto other = makeStatefulSimulator();
    ASSERT_EQ(other->open("GPIB0::5::INSTR", ""), 0);
    ASSERT_EQ(simulator->setVoltageLevel(1, 5.0), 0);
    ASSERT_EQ(other->setVoltageLevel(1, 7.0), 0);
    ASSERT_EQ(other->writeRaw("WRONG"), 0);
    EXPECT_EQ(voltageLevelOf(*simulator, 1), 5.0);
    EXPECT_EQ(voltageLevelOf(*other, 1), 7.0);
    expectError(kNoError);
    EXPECT_EQ(errorOf(*other), "-113,\"Undefined header\"");
}

TEST_F(StatefulSimulator, WorksInAThreadBesideAnother)
{
    const auto setAndRead = [](double volts) {
        const auto instrument = makeStatefulSimulator();
        ASSERT_EQ(instrument->open("", ""), 0);
        for (int round = 0; round < 100; ++round) {
            ASSERT_EQ(instrument->setVoltageLevel(3, volts), 0);
            ASSERT_EQ(voltageLevelOf(*instrument, 3), volts);
        }
    };
    std::thread beside(setAndRead, 2.5);
    setAndRead(7.5);
    beside.join();
}

// ---- Every operation

TEST_F(StatefulSimulator, EverySettingReadsBack)
{
    expectEverySettingReadsBack();
}

TEST_F(StatefulSimulator, EveryOperationIsTakenWithoutAnError)
{
    for (const Operation& operation : kvxtest::operations()) {
        SCOPED_TRACE(operation.name);
        prepare(operation);
        Values outputs;
        EXPECT_EQ(operation.run(*simulator, outputs), 0);
        expectError(kNoError);
    }
}

/// What the instrument itself says of a line that an operation sends; its clock runs with the test's.
class BesideAnInstrument : public StatefulSimulator
{
public:
    std::string exchange(const std::string& line)
    {
        const auto response = instrument.receive(line);
        return response ? response->bytes : std::string();
    }

    void prepareBoth(const Operation& operation)
    {
        exchange("*RST");
        for (const std::string& line : preparationOf(operation.name))
            exchange(line);
        prepare(operation);
        ASSERT_EQ(exchange("SYST:ERR?"), std::string(kNoError) + '\n');
    }

    kvxvirtual::VirtualInstrument instrument{{}, [this] { return now; }};
};

TEST_F(BesideAnInstrument, TakesAndRefusesEverySampleValueAsTheInstrumentDoes)
{
    std::size_t taken = 0;
    std::size_t refused = 0;
    for (const Operation& operation : kvxtest::operations()) {
        for (const Operation::Variation& variation : operation.variations) {
            SCOPED_TRACE(variation.line);
            prepareBoth(operation);
            Values outputs;
            const ViStatus status = variation.run(*simulator, outputs);
            if (status == kOutOfRange)
                continue; // The driver has a limit of its own, and sends nothing.
            const std::string reply = exchange(variation.line);
            const std::string error = exchange("SYST:ERR?");
            EXPECT_EQ(errorOf(*simulator) + '\n', error);
            const bool fails = operation.isQuery() && reply.empty();
            EXPECT_EQ(status, fails ? kIoError : VI_SUCCESS);
            ++(error == std::string(kNoError) + '\n' ? taken : refused);
        }
    }
    EXPECT_GT(taken, 400U);
    EXPECT_GT(refused, 50U);
}

// ---- Limits and status

TEST_F(StatefulSimulator, RefusesWhatIsBeyondItsLimitsInItsErrorQueueAndKeepsWhatWasSet)
{
    ASSERT_EQ(simulator->clearStatus(), 0);
    ASSERT_EQ(simulator->setOvpValue(1, 30.0), 0);
    ASSERT_EQ(simulator->setOvpValue(1, 36.4), 0);
    double volts = -1.0;
    EXPECT_EQ(simulator->ovpValue(1, volts), 0);
    EXPECT_EQ(volts, 30.0);
    ViInt32 events = -1;
    EXPECT_EQ(simulator->eventStatus(events), 0);
    EXPECT_EQ(events, 16);
    expectError("-222,\"Data out of range\"");
    expectError(kNoError);
}

TEST_F(StatefulSimulator, RefusesAChannelThatTheSourceModeDoesNotHave)
{
    ASSERT_EQ(simulator->setVoltageLevel(5, 40.0), 0);
    expectError("-221,\"Settings conflict\"");
    ASSERT_EQ(simulator->setSourceMode(TSRO::SourceMode::Series), 0);
    now += 500ms;
    ASSERT_EQ(simulator->setVoltageLevel(5, 40.0), 0);
    expectError(kNoError);
    EXPECT_EQ(voltageLevelOf(*simulator, 5), 40.0);
}

TEST_F(StatefulSimulator, ErrorsAreReadOneByOneUntilTheyAreCleared)
{
    for (const char* wrong : {"WRONG", ":OUTP:STAT CH9,ON", "WRONGER"})
        simulator->writeRaw(wrong);
    expectError("-113,\"Undefined header\"");
    expectError("-141,\"Invalid character data\"");
    EXPECT_EQ(simulator->clearStatus(), 0);
    expectError(kNoError);
}

TEST_F(StatefulSimulator, AnOutputThatIsOnRegulatesItsVoltage)
{
    ASSERT_EQ(simulator->setVoltageLevel(3, 12.5), 0);
    ASSERT_EQ(simulator->setOutputEnabled(3, true), 0);
    double volts = -1.0;
    double amperes = -1.0;
    double watts = -1.0;
    EXPECT_EQ(simulator->measureAll(3, volts, amperes, watts), 0);
    EXPECT_EQ(std::tuple(volts, amperes, watts), std::tuple(12.5, 0.0, 0.0));
    ViInt32 condition = -1;
    EXPECT_EQ(simulator->questionableCondition(3, condition), 0);
    EXPECT_EQ(condition, 2);
    ViInt32 event = -1;
    EXPECT_EQ(simulator->questionableEvent(3, event), 0);
    EXPECT_EQ(event, 2);
    EXPECT_EQ(simulator->questionableEvent(3, event), 0);
    EXPECT_EQ(event, 0);
}

TEST_F(StatefulSimulator, ALevelAboveItsProtectionTripsTheOutput)
{
    ASSERT_EQ(simulator->setVoltageLevel(3, 12.0), 0);
    ASSERT_EQ(simulator->setOvpValue(3, 10.0), 0);
    ASSERT_EQ(simulator->setOvpEnabled(3, true), 0);
    ASSERT_EQ(simulator->setOutputEnabled(3, true), 0);
    bool on = true;
    EXPECT_EQ(simulator->outputEnabled(3, on), 0);
    EXPECT_FALSE(on);
    ViInt32 condition = -1;
    EXPECT_EQ(simulator->questionableCondition(3, condition), 0);
    EXPECT_EQ(condition, 4);
}

// ---- Programs

template <class State>
using RunStatus = std::tuple<State, double, ViInt32, ViInt32>;

RunStatus<TSRO::ListRunState> listStatusOf(InstBase& instrument)
{
    RunStatus<TSRO::ListRunState> status{static_cast<TSRO::ListRunState>(-1), -1.0, -1, -1};
    auto& [state, seconds, group, cycles] = status;
    EXPECT_EQ(instrument.listStatus(state, seconds, group, cycles), 0);
    return status;
}

RunStatus<TSRO::DelayRunState> delayStatusOf(InstBase& instrument)
{
    RunStatus<TSRO::DelayRunState> status{static_cast<TSRO::DelayRunState>(-1), -1.0, -1, -1};
    auto& [state, seconds, group, cycles] = status;
    EXPECT_EQ(instrument.delayStatus(state, seconds, group, cycles), 0);
    return status;
}

double measuredVolts(InstBase& instrument, ViInt32 channel)
{
    double volts = -1.0;
    EXPECT_EQ(instrument.measureVoltage(channel, volts), 0);
    return volts;
}

TEST_F(StatefulSimulator, AListRunsOnTheClock)
{
    using State = TSRO::ListRunState;
    ASSERT_EQ(simulator->selectChannel(3), 0);
    ASSERT_EQ(simulator->setListGroup(1, 10.0, 1.0, 1.0), 0);
    ASSERT_EQ(simulator->setListGroup(2, 5.0, 1.0, 2.0), 0);
    ASSERT_EQ(simulator->setListCycles(3), 0);
    ASSERT_EQ(simulator->setListEndState(TSRO::ListEndState::Off), 0);
    ASSERT_EQ(simulator->setListEnabled(true), 0);
    EXPECT_EQ(listStatusOf(*simulator), RunStatus<State>(State::Ready, 1.0, 1, 3));
    ASSERT_EQ(simulator->setOutputEnabled(3, true), 0);
    EXPECT_EQ(listStatusOf(*simulator), RunStatus<State>(State::Running, 1.0, 1, 3));
    EXPECT_EQ(measuredVolts(*simulator, 3), 10.0);
    now += 1500ms;
    EXPECT_EQ(listStatusOf(*simulator), RunStatus<State>(State::Running, 1.5, 2, 3));
    EXPECT_EQ(measuredVolts(*simulator, 3), 5.0);
    now += 5s;
    EXPECT_EQ(listStatusOf(*simulator), RunStatus<State>(State::Running, 0.5, 1, 1));
    now += 2500ms;
    EXPECT_EQ(listStatusOf(*simulator), RunStatus<State>(State::Stopped, 0.0, 0, 0));
    EXPECT_EQ(measuredVolts(*simulator, 3), 0.0);
    expectError(kNoError);
}

TEST_F(StatefulSimulator, ADelayProgramRunsOnTheClock)
{
    using State = TSRO::DelayRunState;
    ASSERT_EQ(simulator->setVoltageLevel(4, 6.0), 0);
    ASSERT_EQ(simulator->selectChannel(4), 0);
    ASSERT_EQ(simulator->setDelayGroup(1, true, 1.0), 0);
    ASSERT_EQ(simulator->setDelayGroup(2, false, 2.0), 0);
    ASSERT_EQ(simulator->setDelayCycles(1), 0);
    ASSERT_EQ(simulator->setDelayEndState(TSRO::DelayEndState::On), 0);
    ASSERT_EQ(simulator->setDelayEnabled(true), 0);
    EXPECT_EQ(delayStatusOf(*simulator), RunStatus<State>(State::Running, 1.0, 1, 1));
    EXPECT_EQ(measuredVolts(*simulator, 4), 6.0);
    now += 1s;
    EXPECT_EQ(delayStatusOf(*simulator), RunStatus<State>(State::Running, 2.0, 2, 1));
    EXPECT_EQ(measuredVolts(*simulator, 4), 0.0);
    now += 2s;
    EXPECT_EQ(delayStatusOf(*simulator), RunStatus<State>(State::Stopped, 0.0, 0, 0));
    EXPECT_EQ(measuredVolts(*simulator, 4), 6.0);
    expectError(kNoError);
}

TEST_F(StatefulSimulator, EachChannelHasGroupsOfItsOwn)
{
    ASSERT_EQ(simulator->selectChannel(1), 0);
    ASSERT_EQ(simulator->setListGroup(1, 10.0, 1.0, 1.0), 0);
    ASSERT_EQ(simulator->setListGroup(2, 5.0, 1.0, 2.0), 0);
    ASSERT_EQ(simulator->insertListGroup(1), 0);
    ASSERT_EQ(simulator->selectChannel(2), 0);
    ASSERT_EQ(simulator->setListGroup(1, 7.0, 2.0, 3.0), 0);
    ViInt32 count = -1;
    EXPECT_EQ(simulator->listGroupCount(count), 0);
    EXPECT_EQ(count, 1);
    ASSERT_EQ(simulator->selectChannel(1), 0);
    EXPECT_EQ(simulator->listGroupCount(count), 0);
    EXPECT_EQ(count, 3);
    double volts = -1.0;
    double amperes = -1.0;
    double seconds = -1.0;
    EXPECT_EQ(simulator->listGroup(3, volts, amperes, seconds), 0);
    EXPECT_EQ(std::tuple(volts, amperes, seconds), std::tuple(5.0, 1.0, 2.0));
    expectError(kNoError);
}

TEST(StatefulSimulatorOnTheSteadyClock, RunsItsListsInRealTime)
{
    const auto simulator = makeStatefulSimulator();
    ASSERT_EQ(simulator->open("", ""), 0);
    ASSERT_EQ(simulator->setListGroup(1, 10.0, 1.0, 0.05), 0);
    ASSERT_EQ(simulator->setListCycles(1), 0);
    ASSERT_EQ(simulator->setOutputEnabled(1, true), 0);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(simulator->setListEnabled(true), 0);
    while (std::get<0>(listStatusOf(*simulator)) == TSRO::ListRunState::Running)
        std::this_thread::yield();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 50ms);
    EXPECT_EQ(errorOf(*simulator), kNoError);
}

// ---- Messages

TEST_F(StatefulSimulator, KeepsItsLastReply)
{
    ASSERT_EQ(simulator->setVoltageLevel(1, 5.25), 0);
    voltageLevelOf(*simulator, 1);
    EXPECT_EQ(simulator->lastReply(), "5.250000");
    double seconds = 0.0;
    bool on = false;
    EXPECT_EQ(simulator->delayGroup(9, on, seconds), kIoError);
    EXPECT_EQ(simulator->lastReply(), "");
}

TEST_F(StatefulSimulator, AnswersMessagesOfTheCallersOwn)
{
    std::string reply;
    EXPECT_EQ(simulator->queryRaw("SOUR2:CURR?;:OUTP:STAT? CH1", reply), 0);
    EXPECT_EQ(reply, "0.100000;0");
    EXPECT_EQ(simulator->writeMessage("*TST?"), 0);
    EXPECT_EQ(message(), std::tuple(kTermChar, "0\n"));
    EXPECT_EQ(simulator->writeMessage("*TST?\r\n"), 0);
    EXPECT_EQ(message(), std::tuple(kTermChar, "0\n"));
}

TEST_F(StatefulSimulator, AReadThatFindsNothingHasTimedOut)
{
    EXPECT_EQ(message(), std::tuple(kTimedOut, ""));
    std::string reply = "before";
    EXPECT_EQ(simulator->queryRaw("*CLS", reply), 0);
    EXPECT_EQ(reply, "before");
}

TEST_F(StatefulSimulator, AnswersThatWereNotReadWaitInTheirOrder)
{
    ASSERT_EQ(simulator->writeMessage("*OPC?"), 0);
    ASSERT_EQ(simulator->writeMessage("*TST?\nSOUR1:VOLT 3\nSOUR1:VOLT?"), 0);
    double volts = -1.0;
    EXPECT_EQ(simulator->voltageLevel(2, volts), 0);
    EXPECT_EQ(volts, 1.0);
    EXPECT_EQ(message(), std::tuple(kTermChar, "0\n"));
    EXPECT_EQ(message(), std::tuple(kTermChar, "3.000000\n"));
    EXPECT_EQ(message(), std::tuple(kTermChar, "0.000000\n"));
    EXPECT_EQ(message(), std::tuple(kTimedOut, ""));
}

TEST_F(StatefulSimulator, DropsTheRestOfAMessageThatIsLongerThanTheBuffer)
{
    ASSERT_EQ(simulator->writeMessage("*IDN?\n*OPC?"), 0);
    EXPECT_EQ(message(4), std::tuple(kTruncated, "Tess"));
    EXPECT_EQ(message(2), std::tuple(kTermChar, "1\n"));
    ASSERT_EQ(simulator->writeMessage("*OPC?\n*TST?"), 0);
    EXPECT_EQ(message(1), std::tuple(kTruncated, "1"));
    EXPECT_EQ(message(0), std::tuple(kTruncated, ""));
    EXPECT_EQ(message(), std::tuple(kTimedOut, ""));
}

TEST_F(StatefulSimulator, AReplyLongerThanTheReadBufferComesInSeveralReads)
{
    std::string asked = "*IDN?";
    std::string answer = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00";
    for (int n = 1; n < 32; ++n) {
        asked += ";*IDN?";
        answer += ";Tessaro Instruments,KVX2833T,VIRT0000001,V1.00";
    }
    std::string first;
    ASSERT_EQ(simulator->queryRaw(asked, first), 0);
    EXPECT_EQ(first, answer.substr(0, 1024));
    EXPECT_EQ(message(1024), std::tuple(kTermChar, answer.substr(1024) + '\n'));
}

TEST_F(StatefulSimulator, AMessageThatItsInputBufferCannotHoldIsAnError)
{
    EXPECT_EQ(simulator->writeMessage(std::string(4097, ' ')), 0);
    expectError("-363,\"Input buffer overrun\"");
    EXPECT_EQ(simulator->writeMessage("*OPC?" + std::string(4091, ' ')), 0);
    EXPECT_EQ(message(), std::tuple(kTermChar, "1\n"));
    expectError(kNoError);
}

TEST_F(StatefulSimulator, TakesNoMoreMessagesWhileTooMuchWaitsToBeRead)
{
    std::size_t queries = 0;
    while (queries < 100'000 && simulator->writeMessage("*OPC?") == VI_SUCCESS)
        ++queries;
    EXPECT_EQ(queries * 2, 65536U);
    EXPECT_EQ(simulator->writeMessage("*OPC?"), kTimedOut);
    EXPECT_EQ(message(), std::tuple(kTermChar, "1\n"));
    EXPECT_EQ(simulator->writeMessage("*OPC?"), 0);
}

TEST(VirtualConnection, TakesAndGivesNothingOnceItIsClosed)
{
    TSRO::VirtualConnection connection([] { return 0ns; });
    EXPECT_TRUE(connection.isOpen());
    EXPECT_EQ(connection.write("*OPC?"), 0);
    EXPECT_EQ(connection.reopen(), 0);
    EXPECT_EQ(connection.close(), 0);
    EXPECT_FALSE(connection.isOpen());
    EXPECT_EQ(connection.reopen(), kNoConnection);
    EXPECT_EQ(connection.write("*OPC?"), kNoConnection);
    std::string reply = "before";
    EXPECT_EQ(connection.read(reply), kNoConnection);
    EXPECT_EQ(reply, "before");
    EXPECT_EQ(connection.close(), 0);
}

// ---- Locale

TEST_F(StatefulSimulator, KeepsTheDecimalPointInALocaleWithAComma)
{
    const kvxtest::CommaLocale locale;
    if (!locale.problem().empty())
        GTEST_SKIP() << locale.problem();
    expectEverySettingReadsBack();
}

} // namespace
