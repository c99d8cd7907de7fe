#include "virtual_instrument/scpi/instrument_commands.h"

namespace kvxvirtual
{
namespace
{

using namespace parameters;

// Handlers of more than one command ----------------------------------------------------------------------------------

const ChannelSettings& settingsOf(const Call& call)
{
    return call.state.supply.settings(call.arguments.channel);
}

void addSetting(Reply& reply, double value)
{
    reply.addSetting(value);
}

void addSetting(Reply& reply, bool value)
{
    reply.addBoolean(value);
}

void setArgument(const Call& call, bool& value)
{
    value = call.arguments.boolean(0);
}

void setArgument(const Call& call, int& value)
{
    value = call.arguments.choice(0);
}

template <auto Field>
auto argumentFor(const Call& call)
{
    auto value = ChannelSettings().*Field;
    setArgument(call, value);
    return value;
}

template <auto Field, auto Limit>
ErrorCode setLevel(Call& call)
{
    return call.state.supply.setLevel(call.arguments.channel, Field, Limit, call.arguments.number(0));
}

template <auto Field>
ErrorCode setProtection(Call& call)
{
    return call.state.supply.setProtection(call.arguments.channel, Field, argumentFor<Field>(call));
}

template <auto Field>
ErrorCode setFreely(Call& call)
{
    call.state.supply.setFreely(call.arguments.channel, Field, argumentFor<Field>(call));
    return ErrorCode::None;
}

/// Answers a level or a switch.
template <auto Field>
ErrorCode answer(Call& call)
{
    addSetting(call.reply, settingsOf(call).*Field);
    return ErrorCode::None;
}

template <auto Field, auto& Table>
ErrorCode answerKeyword(Call& call)
{
    call.reply.addKeyword(Table, settingsOf(call).*Field);
    return ErrorCode::None;
}

// The settings that have a SOURce and an OUTPut spelling share their handlers.
constexpr CommandHandler kSetOverVoltageLevel =
    setLevel<&ChannelSettings::overVoltageLevel, &ChannelLimits::overVoltageLevel>;
constexpr CommandHandler kAnswerOverVoltageLevel = answer<&ChannelSettings::overVoltageLevel>;
constexpr CommandHandler kSetOverVoltageEnabled = setProtection<&ChannelSettings::overVoltageEnabled>;
constexpr CommandHandler kAnswerOverVoltageEnabled = answer<&ChannelSettings::overVoltageEnabled>;
constexpr CommandHandler kSetOverCurrentLevel =
    setLevel<&ChannelSettings::overCurrentLevel, &ChannelLimits::overCurrentLevel>;
constexpr CommandHandler kAnswerOverCurrentLevel = answer<&ChannelSettings::overCurrentLevel>;
constexpr CommandHandler kSetOverCurrentEnabled = setProtection<&ChannelSettings::overCurrentEnabled>;
constexpr CommandHandler kAnswerOverCurrentEnabled = answer<&ChannelSettings::overCurrentEnabled>;
constexpr CommandHandler kSetOverCurrentDelay =
    setLevel<&ChannelSettings::overCurrentDelay, &ChannelLimits::overCurrentDelay>;
constexpr CommandHandler kAnswerOverCurrentDelay = answer<&ChannelSettings::overCurrentDelay>;
constexpr CommandHandler kSetOverCurrentDelayMode = setProtection<&ChannelSettings::overCurrentDelayMode>;
constexpr CommandHandler kAnswerOverCurrentDelayMode =
    answerKeyword<&ChannelSettings::overCurrentDelayMode, keywords::kProtectionDelayMode>;
constexpr CommandHandler kSetRemoteSense = setFreely<&ChannelSettings::remoteSense>;
constexpr CommandHandler kAnswerRemoteSense = answer<&ChannelSettings::remoteSense>;

// Common commands and status -----------------------------------------------------------------------------------------

constexpr int kLargestRegister = 255;

template <auto Setter>
ErrorCode setEnable(Call& call)
{
    const auto mask = call.arguments.integer(0);
    if (mask < 0 || mask > kLargestRegister)
        return ErrorCode::DataOutOfRange;
    (call.state.status.*Setter)(static_cast<unsigned int>(mask));
    return ErrorCode::None;
}

template <auto Getter>
ErrorCode answerRegister(Call& call)
{
    call.reply.addInteger(static_cast<int>((call.state.status.*Getter)()));
    return ErrorCode::None;
}

ErrorCode answerStatusByte(Call& call)
{
    call.reply.addInteger(static_cast<int>(call.state.statusByte()));
    return ErrorCode::None;
}

ErrorCode answerIdentity(Call& call)
{
    call.reply.addText(call.state.identity);
    return ErrorCode::None;
}

ErrorCode resetInstrument(Call& call)
{
    call.state.supply.reset();
    return ErrorCode::None;
}

ErrorCode clearStatus(Call& call)
{
    call.state.status.clear();
    call.state.supply.clearQuestionableEvents();
    return ErrorCode::None;
}

ErrorCode completeOperation(Call& call)
{
    call.state.status.setEventStatusBits(event_status::kOperationComplete);
    return ErrorCode::None;
}

/// Nothing here outlasts its command, programs aside, which run beside the commands: there is nothing to wait for.
ErrorCode doNothing(Call&)
{
    return ErrorCode::None;
}

ErrorCode trigger(Call& call)
{
    call.state.supply.trigger();
    return ErrorCode::None;
}

ErrorCode answerOne(Call& call)
{
    call.reply.addInteger(1);
    return ErrorCode::None;
}

ErrorCode answerZero(Call& call)
{
    call.reply.addInteger(0);
    return ErrorCode::None;
}

ErrorCode answerNextError(Call& call)
{
    const auto entry = call.state.status.nextError();
    call.reply.addInteger(entry.code);
    call.reply.addText('"' + entry.text + '"');
    return ErrorCode::None;
}

ErrorCode answerScpiVersion(Call& call)
{
    call.reply.addText("1999.0");
    return ErrorCode::None;
}

ErrorCode answerQuestionableCondition(Call& call)
{
    call.reply.addInteger(static_cast<int>(call.state.supply.questionableCondition(call.arguments.channel)));
    return ErrorCode::None;
}

ErrorCode answerQuestionableEvent(Call& call)
{
    call.reply.addInteger(static_cast<int>(call.state.supply.takeQuestionableEvent(call.arguments.channel)));
    return ErrorCode::None;
}

// The whole instrument -----------------------------------------------------------------------------------------------

ErrorCode selectChannel(Call& call)
{
    call.state.supply.selectChannel(call.arguments.channel);
    return ErrorCode::None;
}

ErrorCode answerSelectedChannel(Call& call)
{
    call.reply.addKeyword(keywords::kChannels, call.state.supply.selectedChannel() - 1);
    return ErrorCode::None;
}

ErrorCode setSourceMode(Call& call)
{
    call.state.supply.setSourceMode(static_cast<SourceMode>(call.arguments.choice(0)));
    return ErrorCode::None;
}

ErrorCode answerSourceMode(Call& call)
{
    call.reply.addKeyword(keywords::kSourceMode, static_cast<int>(call.state.supply.sourceMode()));
    return ErrorCode::None;
}

ErrorCode setBle(Call& call)
{
    call.state.supply.setBleEnabled(call.arguments.boolean(0));
    return ErrorCode::None;
}

ErrorCode answerBle(Call& call)
{
    call.reply.addBoolean(call.state.supply.bleEnabled());
    return ErrorCode::None;
}

// Outputs and measurements -------------------------------------------------------------------------------------------

ErrorCode switchOutput(Call& call)
{
    const bool on = call.arguments.boolean(0);
    if (call.arguments.channel == kAllChannels)
        return call.state.supply.switchAllOutputs(on);
    return call.state.supply.switchOutput(call.arguments.channel, on);
}

Measurement measure(const Call& call)
{
    return call.state.supply.measure(call.arguments.channel);
}

ErrorCode answerRegulation(Call& call)
{
    call.reply.addKeyword(keywords::kRegulation, measure(call).constantCurrent ? 1 : 0);
    return ErrorCode::None;
}

ErrorCode answerMeasuredVoltage(Call& call)
{
    call.reply.addMeasurement(measure(call).volts);
    return ErrorCode::None;
}

ErrorCode answerMeasuredCurrent(Call& call)
{
    call.reply.addMeasurement(measure(call).amperes);
    return ErrorCode::None;
}

ErrorCode answerMeasuredPower(Call& call)
{
    call.reply.addMeasurement(measure(call).watts());
    return ErrorCode::None;
}

ErrorCode answerAllMeasurements(Call& call)
{
    answerMeasuredVoltage(call);
    answerMeasuredCurrent(call);
    return answerMeasuredPower(call);
}

} // namespace

// Besides the spellings of SCPI the table accepts those that drivers of this family send: SELE, POWE.
std::span<const Command> instrumentCommands()
{
    constexpr auto sourceMode = keywordOf(keywords::kSourceMode, "source mode");
    constexpr auto delayMode = keywordOf(keywords::kProtectionDelayMode, "delay mode");
    constexpr auto powerOnState = keywordOf(keywords::kPowerOnState, "power-on state");
    constexpr auto pairing = keywordOf(keywords::kPairing, "pairing");
    constexpr auto offMode = keywordOf(keywords::kOutputOffMode, "output-off mode");
    constexpr auto range = keywordOf(keywords::kCurrentRange, "range");
    constexpr auto rate = keywordOf(keywords::kCurrentRate, "rate");
    using Settings = ChannelSettings;

    static constexpr Command kCommands[] = {
        {"*IDN?", {}, answerIdentity, "maker, model, serial number, firmware"},
        {"*RST", {}, resetInstrument, "default settings, all outputs off"},
        {"*CLS", {}, clearStatus, "empties the error queue and the event registers"},
        {"*ESR?", {}, answerRegister<&StatusModel::takeEventStatus>, "standard event status; clears it"},
        {"*ESE", {kRegister}, setEnable<&StatusModel::setEventEnable>, "standard event enable"},
        {"*ESE?", {}, answerRegister<&StatusModel::eventEnable>, "standard event enable"},
        {"*SRE", {kRegister}, setEnable<&StatusModel::setServiceEnable>, "service request enable"},
        {"*SRE?", {}, answerRegister<&StatusModel::serviceEnable>, "service request enable"},
        {"*STB?", {}, answerStatusByte, "status byte"},
        {"*OPC", {}, completeOperation, "sets the operation-complete bit"},
        {"*OPC?", {}, answerOne, "1 when everything before is done"},
        {"*WAI", {}, doNothing, "waits until everything before is done"},
        {"*TST?", {}, answerZero, "self-test: 0, passed"},
        {"*TRG", {}, trigger, "starts the lists that await a trigger"},
        {"SYSTem:ERRor?", {}, answerNextError, "takes the oldest error off the queue"},
        {"SYSTem:ERRor:NEXT?", {}, answerNextError, "takes the oldest error off the queue"},
        {"SYSTem:VERSion?", {}, answerScpiVersion, "SCPI version"},
        {"STATus:QUEStionable:INSTrument:ISUMmary<n>:CONDition?",
         {},
         answerQuestionableCondition,
         "questionable condition of channel n"},
        {"STATus:QUEStionable:INSTrument:ISUMmary<n>:EVENt?",
         {},
         answerQuestionableEvent,
         "questionable events of channel n; clears them"},

        {"INSTrument:SELect|SELE", {kChannel}, selectChannel, "selects the channel of the list and delay programs"},
        {"INSTrument:SELect|SELE?", {}, answerSelectedChannel, "selected channel"},
        {"SOURce:MODE", {sourceMode}, setSourceMode, "independent outputs, or 1 and 2 combined"},
        {"SOURce:MODE?", {}, answerSourceMode, "source mode"},
        {"SOURce:BLE", {kOnOff}, setBle, "bleeder"},
        {"SOURce:BLE?", {}, answerBle, "bleeder"},

        {"SOURce<n>:VOLTage", {kVolts}, setLevel<&Settings::volts, &ChannelLimits::volts>, "voltage level"},
        {"SOURce<n>:VOLTage?", {}, answer<&Settings::volts>, "voltage level"},
        {"SOURce<n>:VOLTage:PROTection", {kVolts}, kSetOverVoltageLevel, "over-voltage level"},
        {"SOURce<n>:VOLTage:PROTection?", {}, kAnswerOverVoltageLevel, "over-voltage level"},
        {"SOURce<n>:VOLTage:PROTection:STATe", {kOnOff}, kSetOverVoltageEnabled, "over-voltage protection"},
        {"SOURce<n>:VOLTage:PROTection:STATe?", {}, kAnswerOverVoltageEnabled, "over-voltage protection"},
        {"SOURce<n>:VOLTage:SENSe", {kOnOff}, kSetRemoteSense, "remote sense"},
        {"SOURce<n>:VOLTage:SENSe?", {}, kAnswerRemoteSense, "remote sense"},
        {"SOURce<n>:CURRent", {kAmperes}, setLevel<&Settings::amperes, &ChannelLimits::amperes>, "current level"},
        {"SOURce<n>:CURRent?", {}, answer<&Settings::amperes>, "current level"},
        {"SOURce<n>:CURRent:PROTection", {kAmperes}, kSetOverCurrentLevel, "over-current level"},
        {"SOURce<n>:CURRent:PROTection?", {}, kAnswerOverCurrentLevel, "over-current level"},
        {"SOURce<n>:CURRent:PROTection:STATe", {kOnOff}, kSetOverCurrentEnabled, "over-current protection"},
        {"SOURce<n>:CURRent:PROTection:STATe?", {}, kAnswerOverCurrentEnabled, "over-current protection"},
        {"SOURce<n>:CURRent:PROTection:DELay", {kSeconds}, kSetOverCurrentDelay, "over-current delay"},
        {"SOURce<n>:CURRent:PROTection:DELay?", {}, kAnswerOverCurrentDelay, "over-current delay"},
        {"SOURce<n>:CURRent:PROTection:DELay:MODE", {delayMode}, kSetOverCurrentDelayMode, "over-current delay mode"},
        {"SOURce<n>:CURRent:PROTection:DELay:MODE?", {}, kAnswerOverCurrentDelayMode, "over-current delay mode"},

        {"OUTPut:STATe", {kChannelOrAll, kOnOff}, switchOutput, "switches an output"},
        {"OUTPut:STATe?", {kChannel}, answer<&Settings::outputOn>, "whether an output is on"},
        {"OUTPut:CVCC?", {kChannel}, answerRegulation, "constant voltage or constant current"},
        {"OUTPut:OVP:VALue", {kChannel, kVolts}, kSetOverVoltageLevel, "over-voltage level"},
        {"OUTPut:OVP:VALue?", {kChannel}, kAnswerOverVoltageLevel, "over-voltage level"},
        {"OUTPut:OVP:STATe", {kChannel, kOnOff}, kSetOverVoltageEnabled, "over-voltage protection"},
        {"OUTPut:OVP:STATe?", {kChannel}, kAnswerOverVoltageEnabled, "over-voltage protection"},
        {"OUTPut:OCP:VALue", {kChannel, kAmperes}, kSetOverCurrentLevel, "over-current level"},
        {"OUTPut:OCP:VALue?", {kChannel}, kAnswerOverCurrentLevel, "over-current level"},
        {"OUTPut:OCP:STATe", {kChannel, kOnOff}, kSetOverCurrentEnabled, "over-current protection"},
        {"OUTPut:OCP:STATe?", {kChannel}, kAnswerOverCurrentEnabled, "over-current protection"},
        {"OUTPut:OCP:DELay", {kChannel, kSeconds}, kSetOverCurrentDelay, "over-current delay"},
        {"OUTPut:OCP:DELay?", {kChannel}, kAnswerOverCurrentDelay, "over-current delay"},
        {"OUTPut:OCP:DELay:MODE", {kChannel, delayMode}, kSetOverCurrentDelayMode, "over-current delay mode"},
        {"OUTPut:OCP:DELay:MODE?", {kChannel}, kAnswerOverCurrentDelayMode, "over-current delay mode"},
        {"OUTPut:PONState:STATe", {kChannel, powerOnState}, setFreely<&Settings::powerOnState>, "state at power-on"},
        {"OUTPut:PONState:STATe?",
         {kChannel},
         answerKeyword<&Settings::powerOnState, keywords::kPowerOnState>,
         "state at power-on"},
        {"OUTPut:PAIR", {kChannel, pairing}, setFreely<&Settings::pairing>, "pairing"},
        {"OUTPut:PAIR?", {kChannel}, answerKeyword<&Settings::pairing, keywords::kPairing>, "pairing"},
        {"OUTPut:SENSe:STATe", {kChannel, kOnOff}, kSetRemoteSense, "remote sense"},
        {"OUTPut:SENSe:STATe?", {kChannel}, kAnswerRemoteSense, "remote sense"},
        {"OUTPut:TRACk:STATe", {kChannel, kOnOff}, setFreely<&Settings::tracking>, "tracking"},
        {"OUTPut:TRACk:STATe?", {kChannel}, answer<&Settings::tracking>, "tracking"},
        {"OUTPut:OFFMode", {kChannel, offMode}, setFreely<&Settings::outputOffMode>, "bleeder when off"},
        {"OUTPut:OFFMode?",
         {kChannel},
         answerKeyword<&Settings::outputOffMode, keywords::kOutputOffMode>,
         "bleeder when off"},
        {"TRIGger:IN:ENABle", {kChannel, kOnOff}, setFreely<&Settings::triggerInput>, "trigger input"},
        {"TRIGger:IN:ENABle?", {kChannel}, answer<&Settings::triggerInput>, "trigger input"},

        {"MEASure:ALL?", {kChannel}, answerAllMeasurements, "volts, amperes, watts"},
        {"MEASure:VOLTage?", {kChannel}, answerMeasuredVoltage, "volts"},
        {"MEASure:CURRent?", {kChannel}, answerMeasuredCurrent, "amperes"},
        {"MEASure:POWer|POWE?", {kChannel}, answerMeasuredPower, "watts"},
        {"MEASure:CURRent:RANGe", {kChannel, range}, setFreely<&Settings::currentRange>, "current range"},
        {"MEASure:CURRent:RANGe?",
         {kChannel},
         answerKeyword<&Settings::currentRange, keywords::kCurrentRange>,
         "current range"},
        {"MEASure:CURRent:RATE", {kChannel, rate}, setFreely<&Settings::currentRate>, "current sampling rate"},
        {"MEASure:CURRent:RATE?",
         {kChannel},
         answerKeyword<&Settings::currentRate, keywords::kCurrentRate>,
         "current sampling rate"},
    };
    return kCommands;
}

} // namespace kvxvirtual
