#include "tests/end_to_end/examples/wrapper_error.h"
#include "tests/support/driver/driver_end_to_end.h"

#include <kvx2800t.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kvxtest
{
namespace
{

using kvx2800t::Channel;
using kvx2800t::Session;
using kvx2800t::Value;

/// A session with the profile on, and channel 3 of it, whose outputs 10 ohms load.
class WrapperChannel : public DriverEndToEnd
{
protected:
    WrapperChannel() : DriverEndToEnd({"--load", "CH3=10"}) { newLines(); }

    /// The value is sent by one line, asked for by another, and comes back.
    template <class Type>
    void expectKept(const Value<Type>& value, Type setting, const std::string& sent, const std::string& asked)
    {
        EXPECT_EQ(value.set(setting), VI_SUCCESS) << sent;
        EXPECT_EQ(value.get(), setting) << sent;
        EXPECT_EQ(newLines(), (Lines{sent, asked}));
    }

    /// The same of a program, whose channel is selected first.
    template <class Type>
    void expectKeptOfProgram(const Value<Type>& value, Type setting, const std::string& sent, const std::string& asked)
    {
        EXPECT_EQ(value.set(setting), VI_SUCCESS) << sent;
        EXPECT_EQ(value.get(), setting) << sent;
        EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", sent, ":INST:SELE CH3", asked}));
    }

    Session supply{instrument.resource()};
    Channel channel = supply.channel(3);
};

TEST_F(WrapperChannel, HasAName)
{
    EXPECT_EQ(channel.name(), "OutputChannel3");
    EXPECT_EQ(supply.channel("CH3").name(), "CH3");
}

TEST_F(WrapperChannel, KeepsItsSettings)
{
    newLines();
    expectKept(channel.voltageLevel(), 5.0, ":SOUR3:VOLT 5.000000", ":SOUR3:VOLT?");
    expectKept(channel.currentLimitBehavior(), kvx2800t::CurrentLimitBehavior::trip, ":SOUR3:CURR:PROT:STAT ON",
               ":SOUR3:CURR:PROT:STAT?");
    expectKept(channel.outputEnabled(), true, ":OUTP:STAT CH3,ON", ":OUTP:STAT? CH3");
    expectKept(channel.remoteSense(), true, ":SOUR3:VOLT:SENS ON", ":SOUR3:VOLT:SENS?");
    expectKept(channel.outputSense(), false, ":OUTP:SENS:STAT CH3,OFF", ":OUTP:SENS:STAT? CH3");
    expectKept(channel.powerOnState(), kvx2800t::PowerOnState::lastOff, ":OUTP:PONS:STAT CH3,LOFF",
               ":OUTP:PONS:STAT? CH3");
    expectKept(channel.pairing(), kvx2800t::Pairing::parallel, ":OUTP:PAIR CH3,PAR", ":OUTP:PAIR? CH3");
    expectKept(channel.tracking(), true, ":OUTP:TRAC:STAT CH3,ON", ":OUTP:TRAC:STAT? CH3");
    expectKept(channel.outputOffMode(), kvx2800t::OutputOffMode::bleederOff, ":OUTP:OFFM CH3,BLEOFF",
               ":OUTP:OFFM? CH3");
    expectKept(channel.triggerInput(), true, ":TRIG:IN:ENAB CH3,ON", ":TRIG:IN:ENAB? CH3");
    expectKept(channel.currentRange(), kvx2800t::CurrentRange::high, ":MEAS:CURR:RANG CH3,HIGH",
               ":MEAS:CURR:RANG? CH3");
    expectKept(channel.currentRate(), kvx2800t::CurrentRate::rate8000, ":MEAS:CURR:RATE CH3,8000",
               ":MEAS:CURR:RATE? CH3");
}

TEST_F(WrapperChannel, LimitsItsCurrent)
{
    newLines();
    EXPECT_EQ(channel.currentLimit().set(0.5), VI_SUCCESS);
    EXPECT_EQ(channel.currentLimit().get(), 0.5);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:CURR 0.500000", ":SOUR3:CURR:PROT 0.500000", ":SOUR3:CURR?"}));
    EXPECT_EQ(channel.configureCurrentLimit(kvx2800t::CurrentLimitBehavior::regulate, 1.5), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:CURR 1.500000", ":SOUR3:CURR:PROT 1.500000", ":SOUR3:CURR:PROT:STAT OFF"}));
    EXPECT_EQ(channel.maxVoltageLevel(), 16.0);
    EXPECT_EQ(channel.maxCurrentLimit(), 3.2);
    EXPECT_EQ(channel.configureOutputRange(kvx2800t::RangeType::voltage, 5.0), VI_SUCCESS);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(WrapperChannel, KeepsItsProtection)
{
    const kvx2800t::Protection protection = channel.protection();
    newLines();
    EXPECT_EQ(protection.configureOvp(true, 6.0), VI_SUCCESS);
    EXPECT_EQ(newLines(), (Lines{":SOUR3:VOLT:PROT 6.000000", ":SOUR3:VOLT:PROT:STAT ON"}));
    expectKept(protection.ovpLimit(), 6.5, ":SOUR3:VOLT:PROT 6.500000", ":SOUR3:VOLT:PROT?");
    expectKept(protection.ovpEnabled(), false, ":SOUR3:VOLT:PROT:STAT OFF", ":SOUR3:VOLT:PROT:STAT?");
    expectKept(protection.currentLevel(), 1.25, ":SOUR3:CURR:PROT 1.250000", ":SOUR3:CURR:PROT?");
    expectKept(protection.currentDelay(), 0.25, ":SOUR3:CURR:PROT:DEL 0.250000", ":SOUR3:CURR:PROT:DEL?");
    expectKept(protection.currentDelayMode(), kvx2800t::ProtectionDelay::scheduled, ":SOUR3:CURR:PROT:DEL:MODE SCH",
               ":SOUR3:CURR:PROT:DEL:MODE?");
    expectKept(protection.outputOvpValue(), 7.0, ":OUTP:OVP:VAL CH3,7.000000", ":OUTP:OVP:VAL? CH3");
    expectKept(protection.outputOvpEnabled(), true, ":OUTP:OVP:STAT CH3,ON", ":OUTP:OVP:STAT? CH3");
    expectKept(protection.outputOcpValue(), 1.5, ":OUTP:OCP:VAL CH3,1.500000", ":OUTP:OCP:VAL? CH3");
    expectKept(protection.outputOcpEnabled(), true, ":OUTP:OCP:STAT CH3,ON", ":OUTP:OCP:STAT? CH3");
    expectKept(protection.outputOcpDelay(), 0.5, ":OUTP:OCP:DEL CH3,0.500000", ":OUTP:OCP:DEL? CH3");
    expectKept(protection.outputOcpDelayMode(), kvx2800t::ProtectionDelay::any, ":OUTP:OCP:DEL:MODE CH3,ANY",
               ":OUTP:OCP:DEL:MODE? CH3");
}

TEST_F(WrapperChannel, TellsWhatHasTripped)
{
    channel.voltageLevel().set(5.0);
    channel.currentLimit().set(1.0);
    channel.protection().configureOvp(true, 4.0);
    channel.outputEnabled().set(true);
    newLines();
    const kvx2800t::ProtectionState state = channel.protection().state();
    EXPECT_TRUE(state.overVoltage);
    EXPECT_FALSE(state.overCurrent);
    EXPECT_TRUE(state.tripped());
    const kvx2800t::QuestionableStatus condition = channel.state().condition();
    EXPECT_EQ(condition.bits, 4);
    EXPECT_TRUE(condition.overVoltage());
    EXPECT_FALSE(condition.overCurrent());
    EXPECT_EQ(newLines(), Lines(2, ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?"));
}

TEST_F(WrapperChannel, ResetsNoProtectionWithoutAWord)
{
    const Session plain(instrument.resource(), {.profile = false});
    newLines();
    EXPECT_EQ(plain.channel(3).protection().reset(), VI_SUCCESS);
    EXPECT_EQ(newLines(), Lines{});
}

TEST_F(WrapperChannel, TellsWhatItDoes)
{
    channel.voltageLevel().set(5.0);
    channel.currentLimit().set(1.0);
    channel.outputEnabled().set(true);
    newLines();
    const kvx2800t::ChannelState state = channel.state();
    EXPECT_EQ(state.regulation(), kvx2800t::Regulation::constantVoltage);
    EXPECT_TRUE(state.condition().constantVoltage());
    EXPECT_FALSE(state.condition().constantCurrent());
    EXPECT_EQ(state.event().bits, 2);
    EXPECT_EQ(newLines(), (Lines{":OUTP:CVCC? CH3", ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?",
                                 ":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?",
                                 ":STATus:QUEStionable:INSTrument:ISUMmary3:EVENt?"}));
    EXPECT_TRUE(state.is(kvx2800t::OutputState::constantVoltage));
    EXPECT_FALSE(state.is(kvx2800t::OutputState::constantCurrent));
}

TEST_F(WrapperChannel, Measures)
{
    channel.voltageLevel().set(5.0);
    channel.currentLimit().set(1.0);
    channel.outputEnabled().set(true);
    newLines();
    const auto [volts, amperes, watts] = channel.measure();
    EXPECT_EQ(volts, 5.0);
    EXPECT_EQ(amperes, 0.5);
    EXPECT_EQ(watts, 2.5);
    EXPECT_EQ(channel.measure(kvx2800t::MeasurementType::voltage), 5.0);
    EXPECT_EQ(channel.measure(kvx2800t::MeasurementType::current), 0.5);
    EXPECT_EQ(channel.measure(kvx2800t::MeasurementType::power), 2.5);
    EXPECT_EQ(newLines(), (Lines{":MEAS:ALL? CH3", ":MEAS:VOLT? CH3", ":MEAS:CURR? CH3", ":MEAS:POWE? CH3"}));
}

TEST_F(WrapperChannel, MeasuresSeveralAtOnce)
{
    channel.voltageLevel().set(5.0);
    channel.currentLimit().set(1.0);
    channel.outputEnabled().set(true);
    newLines();
    const std::vector<kvx2800t::Reading> readings = supply.measureAll("CH4,CH3");
    ASSERT_EQ(readings.size(), 2U);
    EXPECT_EQ(readings[0].volts, 0.0);
    EXPECT_EQ(readings[1].volts, 5.0);
    EXPECT_EQ(readings[1].amperes, 0.5);
    EXPECT_EQ(readings[1].watts, 2.5);
    EXPECT_EQ(newLines(), (Lines{":MEAS:ALL? CH4", ":MEAS:ALL? CH3"}));
}

TEST_F(WrapperChannel, LoadsAndRunsAList)
{
    const kvx2800t::ListProgram list = channel.list();
    newLines();
    list.load({{5.0, 1.0, 0.5}, {4.0, 1.0, 3600.0}});
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":LIST:GROUP:CLE", ":LIST:GROUP:PARA 1,5.000000,1.000000,0.500000",
                                 ":LIST:GROUP:PARA 2,4.000000,1.000000,3600.000000"}));
    expectKeptOfProgram(list.cycles(), ViInt32{3}, ":LIST:CYCLE 3", ":LIST:CYCLE?");
    expectKeptOfProgram(list.endState(), kvx2800t::ListEnd::last, ":LIST:ENDS LAST", ":LIST:ENDS?");
    EXPECT_EQ(list.status().state, kvx2800t::ListState::stopped);
    newLines();
    list.run();
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":LIST:STAT ON", ":OUTP:STAT CH3,ON"}));
    instrument.control("advance 500");
    const kvx2800t::ProgramStatus<kvx2800t::ListState> status = list.status();
    EXPECT_EQ(status.state, kvx2800t::ListState::running);
    EXPECT_EQ(status.group, 2);
    EXPECT_EQ(status.remainingCycles, 3);
    EXPECT_GT(status.remainingSeconds, 0.0);
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":LIST:STATUS?"}));
    list.pause();
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":OUTP:STAT CH3,OFF"}));
    EXPECT_EQ(list.status().state, kvx2800t::ListState::paused);
    newLines();
    list.stop();
    EXPECT_FALSE(list.enabled().get());
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":LIST:STAT OFF", ":INST:SELE CH3", ":LIST:STAT?"}));
}

TEST_F(WrapperChannel, EditsItsList)
{
    const kvx2800t::ListProgram list = channel.list();
    list.setGroup(1, {5.0, 1.0, 0.5});
    list.insertGroup(1);
    EXPECT_EQ(list.groupCount(), 2);
    const kvx2800t::ListGroup second = list.group(2);
    EXPECT_EQ(second.volts, 5.0);
    EXPECT_EQ(second.amperes, 1.0);
    EXPECT_EQ(second.seconds, 0.5);
    list.deleteGroup(1);
    EXPECT_EQ(list.groupCount(), 1);
    list.clear();
    EXPECT_EQ(list.groupCount(), 0);
    list.load({});
    EXPECT_EQ(list.groupCount(), 0);
}

TEST_F(WrapperChannel, MakesListsOfATemplate)
{
    const kvx2800t::ListTemplate shape = channel.listTemplate();
    newLines();
    expectKeptOfProgram(shape.waveform(), kvx2800t::Waveform::upDown, ":LIST:TEMP:SEL UPDN", ":LIST:TEMP:SEL?");
    expectKeptOfProgram(shape.maximum(), 5.0, ":LIST:TEMP:MAXV 5.000000", ":LIST:TEMP:MAXV?");
    expectKeptOfProgram(shape.minimum(), 1.0, ":LIST:TEMP:MINV 1.000000", ":LIST:TEMP:MINV?");
    expectKeptOfProgram(shape.period(), 2.0, ":LIST:TEMP:PERI 2.000000", ":LIST:TEMP:PERI?");
    expectKeptOfProgram(shape.interval(), 0.5, ":LIST:TEMP:INTE 0.500000", ":LIST:TEMP:INTE?");
    expectKeptOfProgram(shape.cycles(), ViInt32{4}, ":LIST:TEMP:CYCLE 4", ":LIST:TEMP:CYCLE?");
    expectKeptOfProgram(shape.inverted(), true, ":LIST:TEMP:INVE ON", ":LIST:TEMP:INVE?");
    expectKeptOfProgram(shape.pulseWidth(), 0.25, ":LIST:TEMP:WIDT 0.250000", ":LIST:TEMP:WIDT?");
    expectKeptOfProgram(shape.pulseCount(), ViInt32{8}, ":LIST:TEMP:PULSECount 8", ":LIST:TEMP:PULSECount?");
    expectKeptOfProgram(shape.symmetry(), ViInt32{40}, ":LIST:TEMP:SYMM 40", ":LIST:TEMP:SYMM?");
    expectKeptOfProgram(shape.start(), ViInt32{2}, ":LIST:TEMP:STAI 2", ":LIST:TEMP:STAI?");
    expectKeptOfProgram(shape.expp(), ViInt32{20}, ":LIST:TEMP:EXPP 20", ":LIST:TEMP:EXPP?");
    expectKeptOfProgram(shape.expr(), ViInt32{5}, ":LIST:TEMP:EXPR 5", ":LIST:TEMP:EXPR?");
    shape.setObject({kvx2800t::ListObject::voltage, 0.75});
    EXPECT_EQ(shape.object().object, kvx2800t::ListObject::voltage);
    EXPECT_EQ(shape.object().level, 0.75);
    EXPECT_EQ(shape.points(), 4);
    newLines();
    shape.construct();
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":LIST:TEMP:CONSTruct 1"}));
    EXPECT_EQ(channel.list().groupCount(), 4);
}

TEST_F(WrapperChannel, LoadsAndRunsADelayProgram)
{
    const kvx2800t::DelayProgram delay = channel.delay();
    newLines();
    delay.load({{false, 0.5}, {true, 3600.0}});
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":DELAY:GROUP:CLEar", ":DELAY:GROUP:PARAmeter 1,OFF,0.500000",
                                 ":DELAY:GROUP:PARAmeter 2,ON,3600.000000"}));
    expectKeptOfProgram(delay.cycles(), ViInt32{2}, ":DELAY:CYCLEs 2", ":DELAY:CYCLEs?");
    expectKeptOfProgram(delay.endState(), kvx2800t::DelayEnd::on, ":DELAY:ENDState ON", ":DELAY:ENDState?");
    delay.start();
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":DELAY:STATe ON"}));
    instrument.control("advance 500");
    const kvx2800t::ProgramStatus<kvx2800t::DelayState> status = delay.status();
    EXPECT_EQ(status.state, kvx2800t::DelayState::running);
    EXPECT_EQ(status.group, 2);
    EXPECT_EQ(status.remainingCycles, 2);
    EXPECT_GT(status.remainingSeconds, 0.0);
    EXPECT_TRUE(delay.enabled().get());
    newLines();
    delay.stop();
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":DELAY:STATe OFF"}));
    EXPECT_EQ(delay.status().state, kvx2800t::DelayState::stopped);
}

TEST_F(WrapperChannel, EditsItsDelayProgram)
{
    const kvx2800t::DelayProgram delay = channel.delay();
    delay.setGroup(1, {true, 0.5});
    delay.insertGroup(1);
    EXPECT_EQ(delay.groupCount(), 2);
    EXPECT_FALSE(delay.group(1).on);
    EXPECT_TRUE(delay.group(2).on);
    EXPECT_EQ(delay.group(2).seconds, 0.5);
    delay.deleteGroup(1);
    EXPECT_EQ(delay.groupCount(), 1);
    delay.clear();
    EXPECT_EQ(delay.groupCount(), 0);
}

TEST_F(WrapperChannel, GeneratesDelayPrograms)
{
    const kvx2800t::DelayGenerator generator = channel.delayGenerator();
    newLines();
    expectKeptOfProgram(generator.times(), kvx2800t::DelayTimes::increasing, ":DELAY:GENerate:SELect INC",
                        ":DELAY:GENerate:SELect?");
    expectKeptOfProgram(generator.pattern(), kvx2800t::DelayPattern::onOff, ":DELAY:GENerate:PATT 10P",
                        ":DELAY:GENerate:PATT?");
    expectKeptOfProgram(generator.points(), ViInt32{8}, ":DELAY:GENerate:POINTs 8", ":DELAY:GENerate:POINTs?");
    expectKeptOfProgram(generator.onTime(), 0.5, ":DELAY:GENerate:TIMe:ON 0.500000", ":DELAY:GENerate:TIMe:ON?");
    expectKeptOfProgram(generator.offTime(), 0.25, ":DELAY:GENerate:TIMe:OFF 0.250000", ":DELAY:GENerate:TIMe:OFF?");
    expectKeptOfProgram(generator.baseTime(), 1.5, ":DELAY:GENerate:TIMe:BASE 1.500000", ":DELAY:GENerate:TIMe:BASE?");
    expectKeptOfProgram(generator.timeStep(), 0.125, ":DELAY:GENerate:TIMe:STEP 0.125000",
                        ":DELAY:GENerate:TIMe:STEP?");
    generator.construct();
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH3", ":DELAY:GENerate:CONSTruct 1"}));
    EXPECT_EQ(channel.delay().groupCount(), 8);
}

TEST_F(WrapperChannel, SetsSeveralChannelsAndReadsOne)
{
    newLines();
    const Channel both = supply.channel("OutputChannel3-4");
    both.tracking().set(true);
    EXPECT_EQ(newLines(), (Lines{":OUTP:TRAC:STAT CH3,ON", ":OUTP:TRAC:STAT CH4,ON"}));
    EXPECT_EQ(thrown([&] { static_cast<void>(both.tracking().get()); }).code, IVI_ERROR_BADLY_FORMED_SELECTOR);
}

TEST_F(WrapperChannel, ThrowsWhatWasRecorded)
{
    const RecordedError error = thrown([&] { channel.list().setGroup(1, {99.0, 1.0, 1.0}); });
    EXPECT_EQ(error.code, KVX2800T_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(error.text, "Attribute or function parameter value is invalid (out of range or not supported).  "
                          "OutputChannel3 takes 0 V to 16 V, not 99 V.");
    EXPECT_EQ(recordedError(supply.handle()), (RecordedError{VI_SUCCESS, ""}));
    EXPECT_EQ(thrown([&] { supply.channel(9).remoteSense().set(true); }).code, IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER);
    EXPECT_THROW(supply.channel(std::string("CH3\0CH4", 7)).remoteSense().set(true), std::invalid_argument);
}

TEST_F(WrapperChannel, OutlivesAMoveOfItsSessionButNotItsEnd)
{
    Session moved = std::move(supply);
    EXPECT_EQ(channel.tracking().set(true), VI_SUCCESS);
    moved.close();
    EXPECT_EQ(thrown([&] { channel.tracking().set(true); }).code, KVX2800T_ERROR_INVALID_SESSION_HANDLE);
}

using WrapperInstrument = WrapperChannel;

TEST_F(WrapperInstrument, HasStatusRegisters)
{
    supply.clearStatus();
    instrument.control("inject -222 \"Data out of range\"");
    newLines();
    const kvx2800t::EventStatus status = supply.eventStatus();
    EXPECT_EQ(status.bits, 16);
    EXPECT_TRUE(status.executionError());
    EXPECT_FALSE(status.queryError() || status.deviceError() || status.commandError());
    supply.clearStatus();
    EXPECT_EQ(newLines(), (Lines{"*ESR?", "*CLS"}));
    EXPECT_EQ(supply.nextInstrumentError().code, 0);
}

TEST_F(WrapperInstrument, HasASourceModeABleederAndASelectedChannel)
{
    newLines();
    supply.sourceMode().set(kvx2800t::SourceMode::normal);
    EXPECT_EQ(supply.sourceMode().get(), kvx2800t::SourceMode::normal);
    EXPECT_EQ(newLines(), Lines(2, ":SOUR:Mode?"));
    expectKept(supply.bleeder(), true, ":SOUR:BLE ON", ":SOUR:BLE?");
    supply.selectChannel("OutputChannel4");
    EXPECT_EQ(supply.selectedChannel(), 4);
    EXPECT_EQ(newLines(), (Lines{":INST:SELE CH4", ":INST:SELE?"}));
}

TEST_F(WrapperInstrument, TakesMessagesOfTheProgramsOwn)
{
    newLines();
    EXPECT_EQ(supply.query("*OPC?"), "1");
    supply.write("*OPC?");
    EXPECT_EQ(supply.readResponse(), "1\n");
    supply.write("*IDN?");
    EXPECT_EQ(thrown([&] { static_cast<void>(supply.readResponse(4)); }).code, KVX2800T_WARN_ARRAY_TRUNCATED);
    EXPECT_EQ(supply.query("*OPC?"), "1");
    EXPECT_EQ(newLines(), (Lines{"*OPC?", "*OPC?", "*IDN?", "*OPC?"}));
}

TEST_F(WrapperInstrument, HasATimeOut)
{
    supply.ioTimeout().set(1234);
    EXPECT_EQ(supply.ioTimeout().get(), 1234);
}

TEST_F(WrapperInstrument, RemembersMessagesThatItIsAskedToRemember)
{
    Session logged(instrument.resource(), {.messageLog = 10});
    while (!logged.nextMessageRecord().empty())
        continue;
    EXPECT_EQ(logged.query("*OPC?"), "1");
    logged.write(std::string(2000, ' ') + "*CLS");
    EXPECT_EQ(logged.nextMessageRecord(), "> *OPC?");
    EXPECT_EQ(logged.nextMessageRecord(), "< 1");
    EXPECT_EQ(logged.nextMessageRecord(), "> " + std::string(1018, ' ') + "...");
    EXPECT_EQ(logged.nextMessageRecord(), "");
}

TEST_F(WrapperInstrument, HasNoRecords)
{
    EXPECT_EQ(supply.nextMessageRecord(), "");
    EXPECT_EQ(supply.nextCoercionRecord(), "");
    EXPECT_EQ(supply.nextInterchangeWarning(), "");
    EXPECT_EQ(supply.resetInterchangeCheck(), VI_SUCCESS);
    EXPECT_EQ(supply.clearInterchangeWarnings(), VI_SUCCESS);
}

std::string contentsOf(const char* path)
{
    std::ostringstream contents;
    contents << std::ifstream(path).rdbuf();
    return contents.str();
}

TEST(WrapperHeader, CallsEveryExportedFunction)
{
    const std::string header = contentsOf(KVX_WRAPPER_HEADER);
    std::istringstream exports(contentsOf(KVX_EXPORTS));
    std::string missing;
    for (std::string name; exports >> name;)
        if (header.find(name + "(") == std::string::npos && header.find(name + ",") == std::string::npos &&
            header.find(name + ")") == std::string::npos)
            missing += name + " ";
    // One that the options do not need, and attributes of types that none has or takes.
    EXPECT_EQ(missing, "KVX2800T_init KVX2800T_GetAttributeViSession KVX2800T_SetAttributeViSession "
                       "KVX2800T_SetAttributeViString ");
}

} // namespace
} // namespace kvxtest
