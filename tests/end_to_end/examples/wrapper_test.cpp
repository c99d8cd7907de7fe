#include "tests/end_to_end/examples/wrapper_error.h"
#include "tests/support/processes/finished_program.h"

#include "tests/support/driver/driver_end_to_end.h"
#include "tests/support/platform/store_fixture.h"

#include <kvx2800t.hpp>

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace kvxtest
{
namespace
{

namespace attribute = kvx2800t::attribute;
using kvx2800t::CurrentLimitBehavior;
using kvx2800t::MeasurementType;
using kvx2800t::Options;
using kvx2800t::OutputState;
using kvx2800t::RangeType;
using kvx2800t::Session;

static_assert(std::is_nothrow_move_constructible_v<Session> && std::is_nothrow_move_assignable_v<Session>);
static_assert(!std::is_copy_constructible_v<Session> && !std::is_copy_assignable_v<Session>);

constexpr const char* kOutOfRange = "Attribute or function parameter value is invalid (out of range or not supported).";
constexpr const char* kNoInstrument =
    "I/O error.  Insufficient location information or resource not present in the system";

/// What the plain driver does; Options says what the profile changes.
Options plain()
{
    return {.profile = false};
}

class Wrapper : public DriverEndToEnd
{
protected:
    Session connect(const Options& options = plain()) const { return Session(instrument.resource(), options); }
};

TEST_F(Wrapper, OpensWithTheWishesOfItsOptions)
{
    const Session modest = connect();
    EXPECT_EQ(newLines(), Lines{"*IDN?"});
    const Session thorough = connect({.idQuery = true, .reset = true, .queryInstrumentStatus = true});
    EXPECT_EQ(newLines(), (Lines{"*IDN?", "*CLS", "*ESR?", "*RST"}));
}

TEST_F(Wrapper, ClosesItself)
{
    ViSession handle = VI_NULL;
    {
        const Session supply = connect();
        handle = supply.handle();
        EXPECT_EQ(KVX2800T_InvalidateAllAttributes(handle), VI_SUCCESS);
    }
    EXPECT_EQ(KVX2800T_InvalidateAllAttributes(handle), KVX2800T_ERROR_INVALID_SESSION_HANDLE);
}

TEST_F(Wrapper, MovesItsSession)
{
    Session first = connect();
    const ViSession handle = first.handle();
    Session second(std::move(first));
    EXPECT_EQ(second.handle(), handle);
    EXPECT_EQ(first.handle(), ViSession{VI_NULL}); // NOLINT(bugprone-use-after-move): that is the question

    Session third = connect();
    const ViSession replaced = third.handle();
    third = std::move(second);
    EXPECT_EQ(third.handle(), handle);
    EXPECT_EQ(KVX2800T_InvalidateAllAttributes(handle), VI_SUCCESS);
    EXPECT_EQ(KVX2800T_InvalidateAllAttributes(replaced), KVX2800T_ERROR_INVALID_SESSION_HANDLE);
}

TEST_F(Wrapper, ClosesOnce)
{
    Session supply = connect();
    supply.close();
    EXPECT_EQ(supply.handle(), ViSession{VI_NULL});
    const RecordedError invalid{KVX2800T_ERROR_INVALID_SESSION_HANDLE, "Invalid session handle."};
    EXPECT_EQ(thrown([&] { supply.close(); }), invalid);
    EXPECT_EQ(thrown([&] { supply.reset(); }), invalid);
}

TEST_F(Wrapper, ThrowsWhatWasRecordedAndReadsIt)
{
    Session supply = connect();
    EXPECT_EQ(thrown([&] { supply.configureVoltageLevel("OutputChannel3", 16.5); }),
              (RecordedError{KVX2800T_ERROR_VALUE_OUT_OF_RANGE, kOutOfRange}));
    EXPECT_EQ(recordedError(supply.handle()), (RecordedError{VI_SUCCESS, ""}));
    EXPECT_EQ(thrown([&] { supply.configureVoltageLevel("OutputChannel9", 1.0); }),
              (RecordedError{IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER,
                             "The identifier 'OutputChannel9' is not defined for repeated capability "
                             "'OutputChannel'."}));
}

TEST_F(Wrapper, SaysCodeAndText)
{
    Session supply = connect();
    try {
        supply.configureVoltageLevel("OutputChannel3", 16.5);
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "0xBFFA4217 " + std::string(kOutOfRange));
    }
}

TEST_F(Wrapper, ThrowsTheReasonOfAFailedOpen)
{
    EXPECT_EQ(thrown([] { const Session none("BANANA", plain()); }), (RecordedError{KVX2800T_ERROR_IO, kNoInstrument}));
}

TEST_F(Wrapper, ThrowsTheReasonOfAFailedOpenWhateverFailedBefore)
{
    Session supply = connect();
    EXPECT_EQ(thrown([&] { supply.configureVoltageLevel("OutputChannel3", 16.5); }).code,
              KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    const EnvironmentVariable missingStore("IVI_MASTER_STORE", "/no-such-folder/IviConfigurationStore.xml");
    EXPECT_EQ(thrown([] { const Session none("BenchSupply", plain()); }),
              (RecordedError{status(0xBFFA1206), "IviConfigServer.IviConfigStore.1: GetConfigStorePropertyViString: "
                                                 "the master configuration store is missing"}));
}

TEST_F(Wrapper, ReturnsASelfTestThatIsNotThereAsNothing)
{
    Session supply = connect();
    EXPECT_EQ(supply.selfTest(), std::nullopt);
}

TEST_F(Wrapper, ConfiguresOutputs)
{
    Session supply = connect();
    newLines();
    EXPECT_EQ(supply.configureVoltageLevel("OutputChannel3-4", 2.0), VI_SUCCESS);
    EXPECT_EQ(supply.configureCurrentLimit("OutputChannel3", CurrentLimitBehavior::trip, 1.5), VI_SUCCESS);
    EXPECT_EQ(supply.configureOvp(std::string("OutputChannel3"), true, 6.0), VI_SUCCESS);
    EXPECT_EQ(supply.configureOutputEnabled("OutputChannel3", true), VI_SUCCESS);
    EXPECT_EQ(supply.configureOutputRange("OutputChannel3", RangeType::voltage, 10.0), VI_SUCCESS);
    EXPECT_EQ(supply.resetOutputProtection("OutputChannel3"), VI_SUCCESS);
    EXPECT_EQ(supply.disable(), VI_SUCCESS);
    EXPECT_EQ(supply.reset(), VI_SUCCESS);
    EXPECT_EQ(supply.resetWithDefaults(), VI_SUCCESS);
    EXPECT_EQ(supply.invalidateAllAttributes(), VI_SUCCESS);
    EXPECT_EQ(newLines(),
              (Lines{":SOUR3:VOLT 2.000000", ":SOUR4:VOLT 2.000000", ":SOUR3:CURR 1.500000",
                     ":SOUR3:CURR:PROT 1.500000", ":SOUR3:CURR:PROT:STAT ON", ":SOUR3:VOLT:PROT 6.000000",
                     ":SOUR3:VOLT:PROT:STAT ON", ":OUTP:STAT CH3,ON", ":OUTPut:STATe ALL,OFF", "*RST", "*RST"}));
}

TEST_F(Wrapper, QueriesAndMeasures)
{
    Session supply = connect();
    supply.configureVoltageLevel("OutputChannel3", 7.25);
    supply.configureOutputEnabled("OutputChannel3", true);
    EXPECT_EQ(supply.queryMaxVoltageLevel("OutputChannel5", 0.0), 66.0);
    EXPECT_EQ(supply.queryMaxCurrentLimit("OutputChannel4", 0.0), 10.5);
    EXPECT_TRUE(supply.queryOutputState("OutputChannel3", OutputState::constantVoltage));
    EXPECT_FALSE(supply.queryOutputState("OutputChannel3", OutputState::constantCurrent));
    EXPECT_EQ(supply.measure("OutputChannel3", MeasurementType::voltage), 7.25);
    EXPECT_EQ(supply.measure("OutputChannel3", MeasurementType::current), 0.1);
    EXPECT_EQ(supply.revisions().driver, "1.0.0.0");
    EXPECT_EQ(supply.revisions().instrument, "V1.00");
    EXPECT_EQ(supply.channelNames(), (Lines{"OutputChannel1", "OutputChannel2", "OutputChannel3", "OutputChannel4",
                                            "OutputChannel5", "OutputChannel6"}));
}

TEST_F(Wrapper, TakesEntriesFromTheInstrumentsErrorQueue)
{
    Session supply = connect();
    instrument.control("inject -350 \"Queue overflow\"");
    const kvx2800t::InstrumentError first = supply.nextInstrumentError();
    EXPECT_EQ(first.code, -350);
    EXPECT_EQ(first.message, "\"Queue overflow\"");
    EXPECT_EQ(supply.nextInstrumentError().code, 0);
}

TEST_F(Wrapper, ReadsTheFactsOfDriverAndInstrument)
{
    const Session supply = connect();
    EXPECT_EQ(supply.get(attribute::specificDriverDescription), "IVI-C Driver for KVX2800T");
    EXPECT_EQ(supply.get(attribute::specificDriverPrefix), "KVX2800T");
    EXPECT_EQ(supply.get(attribute::specificDriverVendor), "Tessaro Instruments");
    EXPECT_EQ(supply.get(attribute::specificDriverRevision), "1.0.0.0");
    EXPECT_EQ(supply.get(attribute::classSpecMajorVersion), 3);
    EXPECT_EQ(supply.get(attribute::classSpecMinorVersion), 0);
    EXPECT_EQ(supply.get(attribute::groupCapabilities), "IviDCPwrBase,IviDCPwrMeasurement");
    EXPECT_EQ(supply.get(attribute::supportedInstrumentModels), "KVX2833T");
    EXPECT_EQ(supply.get(attribute::channelCount), 6);
    EXPECT_EQ(supply.get(attribute::logicalName), "");
    EXPECT_EQ(supply.get(attribute::ioResourceDescriptor), instrument.resource());
    EXPECT_EQ(supply.get(attribute::driverSetup), "");
    EXPECT_EQ(supply.get(attribute::instrumentManufacturer), "Tessaro Instruments");
    EXPECT_EQ(supply.get(attribute::instrumentModel), "KVX2833T");
    EXPECT_EQ(supply.get(attribute::instrumentFirmwareRevision), "V1.00");
}

TEST_F(Wrapper, SwitchesTheSession)
{
    Session supply = connect();
    EXPECT_EQ(supply.set(attribute::rangeCheck, false), VI_SUCCESS);
    EXPECT_TRUE(supply.get(attribute::rangeCheck));
    supply.set(attribute::queryInstrumentStatus, true);
    EXPECT_TRUE(supply.get(attribute::queryInstrumentStatus));
    supply.set(attribute::cache, true);
    EXPECT_FALSE(supply.get(attribute::cache));
    supply.set(attribute::recordCoercions, true);
    EXPECT_FALSE(supply.get(attribute::recordCoercions));
    supply.set(attribute::interchangeCheck, true);
    EXPECT_FALSE(supply.get(attribute::interchangeCheck));
    EXPECT_FALSE(supply.get(attribute::simulate));
    supply.set(attribute::simulate, true);
    EXPECT_TRUE(supply.get(attribute::simulate));
    EXPECT_EQ(thrown([&] { supply.set(attribute::simulate, false); }),
              (RecordedError{IVI_ERROR_CANNOT_CHANGE_SIMULATION_STATE, "The simulation state cannot be changed."}));
}

TEST_F(Wrapper, SetsAndReadsChannels)
{
    Session supply = connect();
    const std::string both = "OutputChannel3,OutputChannel4";
    const auto expectKept = [&](auto channelSetting, auto value) {
        EXPECT_EQ(supply.set(channelSetting, both, value), VI_SUCCESS);
        EXPECT_EQ(supply.get(channelSetting, "OutputChannel3"), value);
        EXPECT_EQ(supply.get(channelSetting, "OutputChannel4"), value);
    };
    expectKept(attribute::voltageLevel, 5.5);
    expectKept(attribute::ovpEnabled, true);
    expectKept(attribute::ovpLimit, 6.0);
    expectKept(attribute::currentLimitBehavior, CurrentLimitBehavior::trip);
    expectKept(attribute::currentLimit, 0.5);
    expectKept(attribute::outputEnabled, true);
}

TEST_F(Wrapper, LocksASessionForSeveralCalls)
{
    Session supply = connect();
    newLines();
    std::thread other;
    {
        const std::lock_guard<Session> alone(supply);
        other = std::thread([&] { supply.configureVoltageLevel("OutputChannel4", 1.0); });
        for (int round = 0; round < 20; ++round)
            supply.configureVoltageLevel("OutputChannel3", 2.0);
        EXPECT_EQ(newLines(), Lines(20, ":SOUR3:VOLT 2.000000"));
    }
    other.join();
    EXPECT_EQ(newLines(), Lines{":SOUR4:VOLT 1.000000"});
}

TEST(SimulatedWrapper, ReadsTextsUpToTheLargestWholeAndCutsLongerOnes)
{
    const std::string largest(4089, 'x');
    const Session whole("", {.simulate = true, .model = largest, .profile = false});
    EXPECT_EQ(whole.get(attribute::driverSetup), "Model:" + largest);
    const Session cut("", {.simulate = true, .model = largest + "y", .profile = false});
    EXPECT_EQ(cut.get(attribute::driverSetup), "Model:" + largest);
}

TEST(Sequence, PowersRailsUpChecksThemAndSwitchesThemOff)
{
    VirtualInstrumentProcess instrument;
    EXPECT_EQ(runProgram(KVX_SEQUENCE, {instrument.resource()}),
              (FinishedProgram{0,
                               "KVX2833T, firmware V1.00\n"
                               "OutputChannel3: 3.30 V, at most 0.50 A: good\n"
                               "OutputChannel4: 1.80 V, at most 2.00 A: good\n"
                               "OutputChannel3 takes up to 16.0 V\n"
                               "refused: " +
                                   std::string(kOutOfRange) + "  OutputChannel3 takes 0 V to 16 V, not 17 V.\n",
                               ""}));
    EXPECT_EQ(instrument.receivedLines().back(), ":OUTPut:STATe ALL,OFF");
}

TEST(Sequence, FailsForARailThatDoesNotHold)
{
    // A short circuit: the output holds its current, not its voltage.
    const VirtualInstrumentProcess instrument({"--load", "CH4=0"});
    const FinishedProgram program = runProgram(KVX_SEQUENCE, {instrument.resource()});
    EXPECT_EQ(program.exitCode, 1);
    EXPECT_NE(program.output.find("OutputChannel3: 3.30 V, at most 0.50 A: good\n"
                                  "OutputChannel4: 1.80 V, at most 2.00 A: bad\n"),
              std::string::npos)
        << program.output;
}

TEST(Sequence, SaysWhyItCouldNotOpen)
{
    EXPECT_EQ(
        runProgram(KVX_SEQUENCE, {"BANANA"}),
        (FinishedProgram{1, "",
                         "sequence: 0xBFFA4214 " + std::string(kNoInstrument) +
                             "  Resource 'BANANA': VI_ERROR_INV_RSRC_NAME, the resource name cannot be read.\n"}));
}

TEST(Sequence, WantsOneResource)
{
    EXPECT_EQ(runProgram(KVX_SEQUENCE, {}), (FinishedProgram{1, "", "usage: sequence RESOURCE\n"}));
}

} // namespace
} // namespace kvxtest
