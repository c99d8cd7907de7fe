#include "tests/support/driver/instrument_calls.h"

#include <array>
#include <tuple>
#include <type_traits>
#include <utility>

namespace kvxtest
{
namespace
{

std::vector<std::string> namesIn(const std::string& list)
{
    std::vector<std::string> names;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t end = std::min(list.find(", ", begin), list.size());
        names.push_back(list.substr(begin, end - begin));
        begin = end + 2;
    }
    return names;
}

template <class... Parameters>
using Function = ViStatus(_VI_FUNC*)(ViSession vi, Parameters... parameters);

/// A function that sets channels.
template <class... Parameters>
InstrumentCall configures(const char* name, Function<ViConstString, Parameters...> function, int operation,
                          std::vector<std::string> lines, std::type_identity_t<Parameters>... arguments)
{
    return {name,
            {operation},
            [=](ViSession vi, ViConstString channel, std::vector<double>& /*outputs*/, std::size_t /*nullAt*/) {
                return function(vi, channel, arguments...);
            },
            std::move(lines)};
}

/// As configures(), with more than one operation.
InstrumentCall configuresInSteps(const char* name, Function<ViConstString> function, std::vector<int> operations,
                                 std::vector<std::string> lines)
{
    InstrumentCall call = configures(name, function, 0, std::move(lines));
    call.operations = std::move(operations);
    return call;
}

/// A function that sets something of the whole instrument.
template <class... Parameters>
InstrumentCall configuresOfInstrument(const char* name, Function<Parameters...> function, int operation,
                                      std::vector<std::string> lines, std::type_identity_t<Parameters>... arguments)
{
    return {name,
            {operation},
            [=](ViSession vi, ViConstString /*channel*/, std::vector<double>& /*outputs*/, std::size_t /*nullAt*/) {
                return function(vi, arguments...);
            },
            std::move(lines),
            {},
            {},
            {},
            false};
}

/// Calls `function(pointers...)` and tells what the outputs hold then.
template <class... Values, class Call>
ViStatus withOutputs(Call function, std::vector<double>& outputs, std::size_t nullAt)
{
    std::tuple<Values...> values{static_cast<Values>(kUntouched)...};
    const auto call = [&]<std::size_t... index>(std::index_sequence<index...>)
    {
        return function((index == nullAt ? nullptr : &std::get<index>(values))...);
    };
    const ViStatus status = call(std::index_sequence_for<Values...>());
    outputs = std::apply([](auto... value) { return std::vector<double>{static_cast<double>(value)...}; }, values);
    return status;
}

/// A function that reads from a channel.
template <class... Values>
InstrumentCall queries(const char* name, Function<ViConstString, Values*...> function, int operation,
                       std::vector<std::string> lines, const char* outputs, const char* reply,
                       std::type_identity_t<Values>... results)
{
    return {name,
            {operation},
            [=](ViSession vi, ViConstString channel, std::vector<double>& held, std::size_t nullAt) {
                return withOutputs<Values...>([&](Values*... pointers) { return function(vi, channel, pointers...); },
                                              held, nullAt);
            },
            std::move(lines),
            namesIn(outputs),
            reply,
            {static_cast<double>(results)...}};
}

/// As queries(), for the whole instrument.
template <class... Values>
InstrumentCall queriesOfInstrument(const char* name, Function<Values*...> function, int operation,
                                   std::vector<std::string> lines, const char* outputs, const char* reply,
                                   std::type_identity_t<Values>... results)
{
    return {name,
            {operation},
            [=](ViSession vi, ViConstString /*channel*/, std::vector<double>& held, std::size_t nullAt) {
                return withOutputs<Values...>([&](Values*... pointers) { return function(vi, pointers...); }, held,
                                              nullAt);
            },
            std::move(lines),
            namesIn(outputs),
            reply,
            {static_cast<double>(results)...},
            false};
}

// Functions with inputs and outputs, with a sample input.

ViStatus _VI_FUNC measureCurrent(ViSession vi, ViConstString channel, ViReal64* amperes)
{
    return KVX2800T_MeasureOutput(vi, channel, KVX2800T_VAL_MEASURE_CURRENT, amperes);
}

ViStatus _VI_FUNC measureVoltage(ViSession vi, ViConstString channel, ViReal64* volts)
{
    return KVX2800T_MeasureOutput(vi, channel, KVX2800T_VAL_MEASURE_VOLTAGE, volts);
}

ViStatus _VI_FUNC measurePower(ViSession vi, ViConstString channel, ViReal64* watts)
{
    return KVX2800T_MeasureOutput(vi, channel, KVX2800T_VAL_MEASURE_POWER, watts);
}

ViStatus _VI_FUNC queryListGroup(ViSession vi, ViConstString channel, ViReal64* volts, ViReal64* amperes,
                                 ViReal64* seconds)
{
    return KVX2800T_QueryListGroup(vi, channel, 3, volts, amperes, seconds);
}

ViStatus _VI_FUNC queryDelayGroup(ViSession vi, ViConstString channel, ViBoolean* on, ViReal64* seconds)
{
    return KVX2800T_QueryDelayGroup(vi, channel, 2, on, seconds);
}

ViStatus _VI_FUNC measureAll(ViSession vi, ViConstString channel, ViReal64* volts, ViReal64* amperes, ViReal64* watts)
{
    ViInt32 count = 0;
    return KVX2800T_MeasureAll(vi, channel, 1, volts, amperes, watts, &count);
}

ViStatus _VI_FUNC loadList(ViSession vi, ViConstString channel)
{
    constexpr std::array<ViReal64, 2> kLevels = {1.0, 2.0};
    return KVX2800T_LoadList(vi, channel, 2, kLevels.data(), kLevels.data(), kLevels.data());
}

ViStatus _VI_FUNC loadDelay(ViSession vi, ViConstString channel)
{
    constexpr std::array<ViBoolean, 2> kStates = {VI_TRUE, VI_FALSE};
    constexpr std::array<ViReal64, 2> kSeconds = {1.0, 2.0};
    return KVX2800T_LoadDelay(vi, channel, 2, kStates.data(), kSeconds.data());
}

} // namespace

#define CALL(name) "KVX2800T_" #name, KVX2800T_##name

const std::vector<InstrumentCall>& instrumentCalls()
{
    static const std::vector<InstrumentCall> calls = {
        configuresOfInstrument(CALL(ClearStatus), 9, {"*CLS"}),
        queriesOfInstrument(CALL(QueryEventStatus), 11, {"*ESR?"}, "EventStatus", "36", 36),
        queries(CALL(QueryQuestionableCondition), 13, {":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?"},
                "Condition", "9", 9),
        queries(CALL(QueryQuestionableEvent), 14, {":STATus:QUEStionable:INSTrument:ISUMmary3:EVENt?"}, "Event", "2",
                2),
        queries(CALL(QueryRegulationState), 42, {":OUTP:CVCC? CH3"}, "State", "CC",
                KVX2800T_VAL_REGULATION_CONSTANT_CURRENT),
        queriesOfInstrument(CALL(QuerySourceMode), 19, {":SOUR:Mode?"}, "Mode", "SER", KVX2800T_VAL_SOURCE_MODE_SERIES),
        configuresOfInstrument(CALL(ConfigureBleeder), 20, {":SOUR:BLE ON"}, VI_TRUE),
        queriesOfInstrument(CALL(QueryBleeder), 21, {":SOUR:BLE?"}, "Enabled", "1", VI_TRUE),
        queriesOfInstrument(CALL(QuerySelectedChannel), 17, {":INST:SELE?"}, "Channel", "PAR", 6),
        configures(CALL(ConfigureCurrentProtectionLevel), 32, {":SOUR3:CURR:PROT 1.000000"}, 1.0),
        queries(CALL(QueryCurrentProtectionLevel), 33, {":SOUR3:CURR:PROT?"}, "Level", "1", 1.0),
        configures(CALL(ConfigureCurrentProtectionDelay), 36, {":SOUR3:CURR:PROT:DEL 0.100000"}, 0.1),
        queries(CALL(QueryCurrentProtectionDelay), 37, {":SOUR3:CURR:PROT:DEL?"}, "Delay", "0.1", 0.1),
        configures(CALL(ConfigureCurrentProtectionDelayMode), 38, {":SOUR3:CURR:PROT:DEL:MODE SCH"},
                   KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED),
        queries(CALL(QueryCurrentProtectionDelayMode), 39, {":SOUR3:CURR:PROT:DEL:MODE?"}, "Mode", "SCH",
                KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED),
        configures(CALL(ConfigureOVPValue), 43, {":OUTP:OVP:VAL CH3,6.000000"}, 6.0),
        queries(CALL(QueryOVPValue), 44, {":OUTP:OVP:VAL? CH3"}, "Level", "6", 6.0),
        configures(CALL(ConfigureOVPEnabled), 45, {":OUTP:OVP:STAT CH3,ON"}, VI_TRUE),
        queries(CALL(QueryOVPEnabled), 46, {":OUTP:OVP:STAT? CH3"}, "Enabled", "1", VI_TRUE),
        configures(CALL(ConfigureOCPValue), 47, {":OUTP:OCP:VAL CH3,1.000000"}, 1.0),
        queries(CALL(QueryOCPValue), 48, {":OUTP:OCP:VAL? CH3"}, "Level", "1", 1.0),
        configures(CALL(ConfigureOCPEnabled), 49, {":OUTP:OCP:STAT CH3,ON"}, VI_TRUE),
        queries(CALL(QueryOCPEnabled), 50, {":OUTP:OCP:STAT? CH3"}, "Enabled", "1", VI_TRUE),
        configures(CALL(ConfigureOCPDelay), 51, {":OUTP:OCP:DEL CH3,0.100000"}, 0.1),
        queries(CALL(QueryOCPDelay), 52, {":OUTP:OCP:DEL? CH3"}, "Delay", "0.1", 0.1),
        configures(CALL(ConfigureOCPDelayMode), 53, {":OUTP:OCP:DEL:MODE CH3,SCH"},
                   KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED),
        queries(CALL(QueryOCPDelayMode), 54, {":OUTP:OCP:DEL:MODE? CH3"}, "Mode", "SCH",
                KVX2800T_VAL_PROTECTION_DELAY_SCHEDULED),
        configures(CALL(ConfigureRemoteSense), 28, {":SOUR3:VOLT:SENS ON"}, VI_TRUE),
        queries(CALL(QueryRemoteSense), 29, {":SOUR3:VOLT:SENS?"}, "Enabled", "1", VI_TRUE),
        configures(CALL(ConfigureOutputSense), 59, {":OUTP:SENS:STAT CH3,ON"}, VI_TRUE),
        queries(CALL(QueryOutputSense), 60, {":OUTP:SENS:STAT? CH3"}, "Enabled", "1", VI_TRUE),
        configures(CALL(ConfigurePowerOnState), 55, {":OUTP:PONS:STAT CH3,LAST"}, KVX2800T_VAL_POWER_ON_LAST),
        queries(CALL(QueryPowerOnState), 56, {":OUTP:PONS:STAT? CH3"}, "State", "LAST", KVX2800T_VAL_POWER_ON_LAST),
        configures(CALL(ConfigurePairing), 57, {":OUTP:PAIR CH3,SER"}, KVX2800T_VAL_PAIRING_SERIES),
        queries(CALL(QueryPairing), 58, {":OUTP:PAIR? CH3"}, "Pairing", "SER", KVX2800T_VAL_PAIRING_SERIES),
        configures(CALL(ConfigureTracking), 61, {":OUTP:TRAC:STAT CH3,ON"}, VI_TRUE),
        queries(CALL(QueryTracking), 62, {":OUTP:TRAC:STAT? CH3"}, "Enabled", "1", VI_TRUE),
        configures(CALL(ConfigureOutputOffMode), 63, {":OUTP:OFFM CH3,BLEOFF"}, KVX2800T_VAL_OUTPUT_OFF_BLEEDER_OFF),
        queries(CALL(QueryOutputOffMode), 64, {":OUTP:OFFM? CH3"}, "Mode", "BLEOFF",
                KVX2800T_VAL_OUTPUT_OFF_BLEEDER_OFF),
        configures(CALL(ConfigureTriggerInput), 144, {":TRIG:IN:ENAB CH3,ON"}, VI_TRUE),
        queries(CALL(QueryTriggerInput), 145, {":TRIG:IN:ENAB? CH3"}, "Enabled", "1", VI_TRUE),
        configures(CALL(ConfigureCurrentRange), 69, {":MEAS:CURR:RANG CH3,LOW"}, KVX2800T_VAL_CURRENT_RANGE_LOW),
        queries(CALL(QueryCurrentRange), 70, {":MEAS:CURR:RANG? CH3"}, "Range", "LOW", KVX2800T_VAL_CURRENT_RANGE_LOW),
        configures(CALL(ConfigureCurrentRate), 71, {":MEAS:CURR:RATE CH3,4000"}, KVX2800T_VAL_CURRENT_RATE_4000),
        queries(CALL(QueryCurrentRate), 72, {":MEAS:CURR:RATE? CH3"}, "Rate", "4K", KVX2800T_VAL_CURRENT_RATE_4000),
        configures(CALL(ConfigureListEnabled), 73, {":INST:SELE CH3", ":LIST:STAT ON"}, VI_TRUE),
        queries(CALL(QueryListEnabled), 74, {":INST:SELE CH3", ":LIST:STAT?"}, "Enabled", "1", VI_TRUE),
        queries(CALL(QueryListStatus), 75, {":INST:SELE CH3", ":LIST:STATUS?"},
                "State, RemainingSeconds, Group, RemainingCycles", "PAUSED,1.5,2,7", KVX2800T_VAL_LIST_PAUSED, 1.5, 2,
                7),
        configures(CALL(ConfigureListCycles), 76, {":INST:SELE CH3", ":LIST:CYCLE 3"}, 3),
        queries(CALL(QueryListCycles), 77, {":INST:SELE CH3", ":LIST:CYCLE?"}, "Cycles", "3", 3),
        configures(CALL(ConfigureListEndState), 78, {":INST:SELE CH3", ":LIST:ENDS LAST"}, KVX2800T_VAL_LIST_END_LAST),
        queries(CALL(QueryListEndState), 79, {":INST:SELE CH3", ":LIST:ENDS?"}, "State", "LAST",
                KVX2800T_VAL_LIST_END_LAST),
        queries(CALL(QueryListGroupCount), 80, {":INST:SELE CH3", ":LIST:GROUP:NUM?"}, "Count", "3", 3),
        configures(CALL(InsertListGroup), 81, {":INST:SELE CH3", ":LIST:GROUP:INS 2"}, 2),
        configures(CALL(DeleteListGroup), 82, {":INST:SELE CH3", ":LIST:GROUP:DEL 2"}, 2),
        configures(CALL(ClearListGroups), 83, {":INST:SELE CH3", ":LIST:GROUP:CLE"}),
        configures(CALL(ConfigureListTemplateWaveform), 86, {":INST:SELE CH3", ":LIST:TEMP:SEL SINE"},
                   KVX2800T_VAL_LIST_WAVEFORM_SINE),
        queries(CALL(QueryListTemplateWaveform), 87, {":INST:SELE CH3", ":LIST:TEMP:SEL?"}, "Waveform", "SINE",
                KVX2800T_VAL_LIST_WAVEFORM_SINE),
        queries(CALL(QueryListTemplateObject), 89, {":INST:SELE CH3", ":LIST:TEMP:OBJ?"}, "Object, Level", "C,1.5",
                KVX2800T_VAL_LIST_OBJECT_CURRENT, 1.5),
        configures(CALL(ConfigureListTemplateMaximum), 90, {":INST:SELE CH3", ":LIST:TEMP:MAXV 5.000000"}, 5.0),
        queries(CALL(QueryListTemplateMaximum), 91, {":INST:SELE CH3", ":LIST:TEMP:MAXV?"}, "Level", "5", 5.0),
        configures(CALL(ConfigureListTemplateMinimum), 92, {":INST:SELE CH3", ":LIST:TEMP:MINV 1.000000"}, 1.0),
        queries(CALL(QueryListTemplateMinimum), 93, {":INST:SELE CH3", ":LIST:TEMP:MINV?"}, "Level", "1", 1.0),
        configures(CALL(ConfigureListTemplatePeriod), 94, {":INST:SELE CH3", ":LIST:TEMP:PERI 2.000000"}, 2.0),
        queries(CALL(QueryListTemplatePeriod), 95, {":INST:SELE CH3", ":LIST:TEMP:PERI?"}, "Seconds", "2", 2.0),
        configures(CALL(ConfigureListTemplateInterval), 96, {":INST:SELE CH3", ":LIST:TEMP:INTE 0.100000"}, 0.1),
        queries(CALL(QueryListTemplateInterval), 97, {":INST:SELE CH3", ":LIST:TEMP:INTE?"}, "Seconds", "0.1", 0.1),
        configures(CALL(ConfigureListTemplateCycles), 98, {":INST:SELE CH3", ":LIST:TEMP:CYCLE 4"}, 4),
        queries(CALL(QueryListTemplateCycles), 99, {":INST:SELE CH3", ":LIST:TEMP:CYCLE?"}, "Cycles", "4", 4),
        configures(CALL(ConfigureListTemplateInverted), 100, {":INST:SELE CH3", ":LIST:TEMP:INVE ON"}, VI_TRUE),
        queries(CALL(QueryListTemplateInverted), 101, {":INST:SELE CH3", ":LIST:TEMP:INVE?"}, "Inverted", "1", VI_TRUE),
        configures(CALL(ConfigureListTemplatePulseWidth), 102, {":INST:SELE CH3", ":LIST:TEMP:WIDT 0.500000"}, 0.5),
        queries(CALL(QueryListTemplatePulseWidth), 103, {":INST:SELE CH3", ":LIST:TEMP:WIDT?"}, "Seconds", "0.5", 0.5),
        configures(CALL(ConfigureListTemplatePulseCount), 104, {":INST:SELE CH3", ":LIST:TEMP:PULSECount 8"}, 8),
        queries(CALL(QueryListTemplatePulseCount), 105, {":INST:SELE CH3", ":LIST:TEMP:PULSECount?"}, "Count", "8", 8),
        configures(CALL(ConfigureListTemplateSymmetry), 106, {":INST:SELE CH3", ":LIST:TEMP:SYMM 50"}, 50),
        queries(CALL(QueryListTemplateSymmetry), 107, {":INST:SELE CH3", ":LIST:TEMP:SYMM?"}, "Percent", "50", 50),
        configures(CALL(ConfigureListTemplateStart), 108, {":INST:SELE CH3", ":LIST:TEMP:STAI 10"}, 10),
        queries(CALL(QueryListTemplateStart), 109, {":INST:SELE CH3", ":LIST:TEMP:STAI?"}, "Start", "10", 10),
        configures(CALL(ConfigureListTemplateExpp), 110, {":INST:SELE CH3", ":LIST:TEMP:EXPP 20"}, 20),
        queries(CALL(QueryListTemplateExpp), 111, {":INST:SELE CH3", ":LIST:TEMP:EXPP?"}, "Exponent", "20", 20),
        configures(CALL(ConfigureListTemplateExpr), 112, {":INST:SELE CH3", ":LIST:TEMP:EXPR 3"}, 3),
        queries(CALL(QueryListTemplateExpr), 113, {":INST:SELE CH3", ":LIST:TEMP:EXPR?"}, "Exponent", "3", 3),
        queries(CALL(QueryListTemplatePoints), 114, {":INST:SELE CH3", ":LIST:TEMP:POINTs?"}, "Points", "20", 20),
        configures(CALL(ConstructList), 115, {":INST:SELE CH3", ":LIST:TEMP:CONSTruct 1"}, 1),
        configures(CALL(ConfigureDelayEnabled), 116, {":INST:SELE CH3", ":DELAY:STATe ON"}, VI_TRUE),
        queries(CALL(QueryDelayEnabled), 117, {":INST:SELE CH3", ":DELAY:STATe?"}, "Enabled", "1", VI_TRUE),
        queries(CALL(QueryDelayStatus), 118, {":INST:SELE CH3", ":DELAY:STATUS?"},
                "State, RemainingSeconds, Group, RemainingCycles", "RUNNING,0.5,1,3", KVX2800T_VAL_DELAY_RUNNING, 0.5,
                1, 3),
        configures(CALL(ConfigureDelayCycles), 119, {":INST:SELE CH3", ":DELAY:CYCLEs 3"}, 3),
        queries(CALL(QueryDelayCycles), 120, {":INST:SELE CH3", ":DELAY:CYCLEs?"}, "Cycles", "3", 3),
        configures(CALL(ConfigureDelayEndState), 121, {":INST:SELE CH3", ":DELAY:ENDState LAST"},
                   KVX2800T_VAL_DELAY_END_LAST),
        queries(CALL(QueryDelayEndState), 122, {":INST:SELE CH3", ":DELAY:ENDState?"}, "State", "LAST",
                KVX2800T_VAL_DELAY_END_LAST),
        queries(CALL(QueryDelayGroupCount), 123, {":INST:SELE CH3", ":DELAY:GROUP:NUM?"}, "Count", "4", 4),
        configures(CALL(InsertDelayGroup), 124, {":INST:SELE CH3", ":DELAY:GROUP:INSert 2"}, 2),
        configures(CALL(DeleteDelayGroup), 125, {":INST:SELE CH3", ":DELAY:GROUP:DELete 2"}, 2),
        configures(CALL(ClearDelayGroups), 126, {":INST:SELE CH3", ":DELAY:GROUP:CLEar"}),
        configures(CALL(ConfigureDelayGroup), 127, {":INST:SELE CH3", ":DELAY:GROUP:PARAmeter 1,ON,0.500000"}, 1,
                   VI_TRUE, 0.5),
        configures(CALL(ConfigureDelayGenerateMode), 129, {":INST:SELE CH3", ":DELAY:GENerate:SELect INC"},
                   KVX2800T_VAL_DELAY_GENERATE_INCREASING),
        queries(CALL(QueryDelayGenerateMode), 130, {":INST:SELE CH3", ":DELAY:GENerate:SELect?"}, "Mode", "INC",
                KVX2800T_VAL_DELAY_GENERATE_INCREASING),
        configures(CALL(ConfigureDelayGeneratePattern), 131, {":INST:SELE CH3", ":DELAY:GENerate:PATT 10P"},
                   KVX2800T_VAL_DELAY_PATTERN_ON_OFF),
        queries(CALL(QueryDelayGeneratePattern), 132, {":INST:SELE CH3", ":DELAY:GENerate:PATT?"}, "Pattern", "10P",
                KVX2800T_VAL_DELAY_PATTERN_ON_OFF),
        configures(CALL(ConfigureDelayGeneratePoints), 133, {":INST:SELE CH3", ":DELAY:GENerate:POINTs 8"}, 8),
        queries(CALL(QueryDelayGeneratePoints), 134, {":INST:SELE CH3", ":DELAY:GENerate:POINTs?"}, "Points", "8", 8),
        configures(CALL(ConfigureDelayOnTime), 135, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:ON 0.500000"}, 0.5),
        queries(CALL(QueryDelayOnTime), 136, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:ON?"}, "Seconds", "0.5", 0.5),
        configures(CALL(ConfigureDelayOffTime), 137, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:OFF 0.500000"}, 0.5),
        queries(CALL(QueryDelayOffTime), 138, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:OFF?"}, "Seconds", "0.5", 0.5),
        configures(CALL(ConfigureDelayBaseTime), 139, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:BASE 0.500000"}, 0.5),
        queries(CALL(QueryDelayBaseTime), 140, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:BASE?"}, "Seconds", "0.5", 0.5),
        configures(CALL(ConfigureDelayTimeStep), 141, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:STEP 0.500000"}, 0.5),
        queries(CALL(QueryDelayTimeStep), 142, {":INST:SELE CH3", ":DELAY:GENerate:TIMe:STEP?"}, "Seconds", "0.5", 0.5),
        configures(CALL(ConstructDelay), 143, {":INST:SELE CH3", ":DELAY:GENerate:CONSTruct 1"}, 1),
        configuresOfInstrument(CALL(ConfigureSourceMode), 18, {":SOUR:Mode?", ":SOUR:Mode SER"},
                               KVX2800T_VAL_SOURCE_MODE_SERIES),
        configuresInSteps(CALL(SelectChannel), {16}, {":INST:SELE CH3"}),
        queries(CALL(QueryProtectionState), 13, {":STATus:QUEStionable:INSTrument:ISUMmary3:CONDition?"},
                "OverVoltage, OverCurrent", "8", VI_FALSE, VI_TRUE),
        queries("KVX2800T_MeasureOutput", measureCurrent, 67, {":MEAS:CURR? CH3"}, "Measurement", "1.200", 1.2),
        queries("KVX2800T_MeasureOutput", measureVoltage, 66, {":MEAS:VOLT? CH3"}, "Measurement", "5.000", 5.0),
        queries("KVX2800T_MeasureOutput", measurePower, 68, {":MEAS:POWE? CH3"}, "Measurement", "6.000", 6.0),
        configuresInSteps(CALL(RunList), {73, 40}, {":INST:SELE CH3", ":LIST:STAT ON", ":OUTP:STAT CH3,ON"}),
        configuresInSteps(CALL(PauseList), {40}, {":INST:SELE CH3", ":OUTP:STAT CH3,OFF"}),
        queries("KVX2800T_MeasureAll", measureAll, 65, {":MEAS:ALL? CH3"}, "Volts, Amperes, Watts", "5,1.2,6", 5.0, 1.2,
                6.0),
        configuresInSteps("KVX2800T_LoadList", loadList, {83, 84},
                          {":INST:SELE CH3", ":LIST:GROUP:CLE", ":LIST:GROUP:PARA 1,1.000000,1.000000,1.000000",
                           ":LIST:GROUP:PARA 2,2.000000,2.000000,2.000000"}),
        configuresInSteps("KVX2800T_LoadDelay", loadDelay, {126, 127},
                          {":INST:SELE CH3", ":DELAY:GROUP:CLEar", ":DELAY:GROUP:PARAmeter 1,ON,1.000000",
                           ":DELAY:GROUP:PARAmeter 2,OFF,2.000000"}),
        configures(CALL(ConfigureListGroup), 84, {":INST:SELE CH3", ":LIST:GROUP:PARA 3,5.000000,1.000000,0.100000"}, 3,
                   5.0, 1.0, 0.1),
        queries("KVX2800T_QueryListGroup", queryListGroup, 85, {":INST:SELE CH3", ":LIST:GROUP:PARA? 3"},
                "Volts, Amperes, Seconds", "5,1,0.1", 5.0, 1.0, 0.1),
        configures(CALL(ConfigureListTemplateObject), 88, {":INST:SELE CH3", ":LIST:TEMP:OBJ V,1.000000"},
                   KVX2800T_VAL_LIST_OBJECT_VOLTAGE, 1.0),
        queries("KVX2800T_QueryDelayGroup", queryDelayGroup, 128, {":INST:SELE CH3", ":DELAY:GROUP:PARAmeter? 2"},
                "On, Seconds", "1,0.5", VI_TRUE, 0.5),
    };
    return calls;
}

#undef CALL

} // namespace kvxtest
