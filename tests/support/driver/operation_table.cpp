#include "tests/support/driver/operation_table.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <tuple>
#include <type_traits>

namespace kvxtest
{
namespace
{

using namespace TSRO;

// ---- What the arguments of a row are

/// A channel that a command or a reply spells by its name.
struct Named
{
    ViInt32 channel;
};

/// A number that is read as a long.
struct Long
{
    ViInt32 value;
};

template <class Enumeration>
const Keywords kKeywords;

template <>
const Keywords kKeywords<SourceMode> = {{"NORMAL", 0}, {"SER", 1}, {"PARA", 2}};
template <>
const Keywords kKeywords<Named> = {{"CH1", 1}, {"CH2", 2}, {"CH3", 3}, {"CH4", 4},
                                   {"SER", 5}, {"CH5", 5}, {"PAR", 6}, {"CH6", 6}};
template <>
const Keywords kKeywords<RegulationState> = {{"CV", 0}, {"CC", 1}};
template <>
const Keywords kKeywords<CurrentRange> = {{"AUTO", 0}, {"LOW", 1}, {"HIGH", 2}};
template <>
const Keywords kKeywords<CurrentRate> = {{"62", 0}, {"4000", 1}, {"4K", 1}, {"8000", 2}, {"8K", 2}};
template <>
const Keywords kKeywords<ProtectionDelayMode> = {{"ANY", 0}, {"SCH", 1}};
template <>
const Keywords kKeywords<PowerOnState> = {{"RST", 0}, {"LAST", 1}, {"LOFF", 2}};
template <>
const Keywords kKeywords<Pairing> = {{"OFF", 0}, {"SER", 1}, {"PAR", 2}};
template <>
const Keywords kKeywords<OutputOffMode> = {{"BLEON", 0}, {"BLEOFF", 1}};
template <>
const Keywords kKeywords<ListRunState> = {{"STOPPED", 0}, {"READY", 1}, {"RUNNING", 2}, {"PAUSED", 3}};
template <>
const Keywords kKeywords<ListEndState> = {{"OFF", 0}, {"LAST", 1}};
template <>
const Keywords kKeywords<ListWaveform> = {{"SINE", 0}, {"PULSE", 1}, {"RAMP", 2}, {"UP", 3},
                                          {"DN", 4},   {"UPDN", 5},  {"RISE", 6}, {"FALL", 7}};
template <>
const Keywords kKeywords<ListTemplateObject> = {{"V", 0}, {"C", 1}};
template <>
const Keywords kKeywords<DelayRunState> = {{"STOPPED", 0}, {"RUNNING", 1}};
template <>
const Keywords kKeywords<DelayEndState> = {{"OFF", 0}, {"ON", 1}, {"LAST", 2}};
template <>
const Keywords kKeywords<DelayGenerateMode> = {{"FIX", 0}, {"INC", 1}, {"DEC", 2}};
template <>
const Keywords kKeywords<DelayPattern> = {{"01P", 0}, {"10P", 1}};

template <class Argument>
constexpr bool kHasKeywords = std::is_enum_v<Argument> || std::is_same_v<Argument, Named>;

/// An argument as the operation takes it.
template <class Argument>
Argument parameter(const Argument& argument)
{
    return argument;
}

ViInt32 parameter(Named named)
{
    return named.channel;
}

ViInt32 parameter(Long number)
{
    return number.value;
}

template <class Argument>
Field fieldOf(const Argument& /*argument*/)
{
    if constexpr (kHasKeywords<Argument>)
        return {FieldKind::Keyword, kKeywords<Argument>};
    else if constexpr (std::is_same_v<Argument, bool>)
        return {FieldKind::Boolean};
    else if constexpr (std::is_same_v<Argument, double>)
        return {FieldKind::Number};
    else if constexpr (std::is_same_v<Argument, Long>)
        return {FieldKind::Long};
    else if constexpr (std::is_integral_v<Argument>)
        return {FieldKind::Integer};
    else
        return {FieldKind::Text};
}

/// Something that the operation does not answer with.
template <class Output>
Output otherThan(const Output& result)
{
    if constexpr (std::is_same_v<Output, bool>)
        return !result;
    else if constexpr (std::is_same_v<Output, double>)
        return -123456.75;
    else if constexpr (std::is_same_v<Output, std::string>)
        return "before";
    else
        return static_cast<Output>(-123456);
}

template <class Output>
Value valueOf(const Output& output)
{
    if constexpr (std::is_enum_v<Output>)
        return static_cast<ViInt32>(output);
    else
        return output;
}

// ---- Calls

template <class... Parameters>
using Method = ViStatus (InstBase::*)(Parameters...);

/// One call of an operation; the arguments, outputs included, are in it.
template <class... Parameters>
class Call
{
public:
    using Arguments = std::tuple<std::decay_t<Parameters>...>;

    Call(Method<Parameters...> method, Arguments arguments) : method_(method), arguments_(std::move(arguments)) {}

    ViStatus operator()(InstBase& instrument)
    {
        return std::apply([&](auto&... each) { return (instrument.*method_)(each...); }, arguments_);
    }

    Values outputs() const { return outputs(std::index_sequence_for<Parameters...>()); }

    void hideResults() { hideResults(std::index_sequence_for<Parameters...>()); }

    template <std::size_t kIndex>
    Call with(const std::tuple_element_t<kIndex, Arguments>& value) const
    {
        Call other = *this;
        std::get<kIndex>(other.arguments_) = value;
        return other;
    }

private:
    template <std::size_t kIndex>
    static constexpr bool kIsOutput = std::is_reference_v<std::tuple_element_t<kIndex, std::tuple<Parameters...>>>;

    template <std::size_t... kIndices>
    Values outputs(std::index_sequence<kIndices...>) const
    {
        Values values;
        ((kIsOutput<kIndices> ? values.push_back(valueOf(std::get<kIndices>(arguments_))) : void()), ...);
        return values;
    }

    template <std::size_t... kIndices>
    void hideResults(std::index_sequence<kIndices...>)
    {
        ((kIsOutput<kIndices> ? void(std::get<kIndices>(arguments_) = otherThan(std::get<kIndices>(arguments_)))
                              : void()),
         ...);
    }

    Method<Parameters...> method_;
    Arguments arguments_;
};

template <class... Parameters>
Run runOf(const Call<Parameters...>& call)
{
    return [call](InstBase& instrument, Values& outputs) {
        Call<Parameters...> once = call;
        try {
            const ViStatus status = once(instrument);
            outputs = once.outputs();
            return status;
        } catch (...) {
            outputs = once.outputs();
            throw;
        }
    };
}

/// Empty when the first parameter is no channel or group.
template <class First, class... Rest>
decltype(Operation::runFor) runForOf(const Call<First, Rest...>& call)
{
    if constexpr (std::is_integral_v<First> && !std::is_same_v<First, bool>)
        return [call](InstBase& instrument, ViInt32 number, Values& outputs) {
            return runOf(call.template with<0>(number))(instrument, outputs);
        };
    else
        return {};
}

/// Values of an argument that are in no table.
template <class Argument>
auto invalidValues(const Argument& argument)
{
    std::vector<decltype(parameter(argument))> values;
    if constexpr (kHasKeywords<Argument>) {
        const Keywords& keywords = kKeywords<Argument>;
        for (const ViInt32 value : {keywords.front().second - 1, keywords.back().second + 1,
                                    std::numeric_limits<ViInt32>::min(), std::numeric_limits<ViInt32>::max()})
            values.push_back(static_cast<decltype(parameter(argument))>(value));
    }
    return values;
}

template <std::size_t kIndex, class Argument, class... Parameters>
void addInvalidCalls(Operation& operation, const Call<Parameters...>& call, const Argument& argument)
{
    using Parameter = std::tuple_element_t<kIndex, std::tuple<Parameters...>>;
    if constexpr (!std::is_reference_v<Parameter>)
        for (const auto value : invalidValues(argument))
            operation.invalidCalls.emplace_back([other = call.template with<kIndex>(value)](
                                                    InstBase& instrument) mutable { return other(instrument); });
}

template <std::size_t kIndex, class Argument, class... Parameters>
void addField(Operation& operation, const Call<Parameters...>& /*call*/, const Argument& argument)
{
    using Parameter = std::tuple_element_t<kIndex, std::tuple<Parameters...>>;
    if constexpr (std::is_reference_v<Parameter>)
        operation.fields.push_back(fieldOf(argument));
}

// ---- Other values of an argument

/// What an argument can be, and how commands spell it.
template <class Argument>
using Spellings = std::vector<std::pair<decltype(parameter(std::declval<const Argument&>())), std::string>>;

/// Whether the instrument refuses numbers: a level that the channel does not have.
bool hasLimits(const Operation& operation)
{
    return operation.name == "setVoltageLevel" || operation.name == "setCurrentLevel";
}

template <class Argument>
Spellings<Argument> spellings(const Operation& operation, bool isChannelNumber)
{
    if constexpr (kHasKeywords<Argument>) {
        Spellings<Argument> all;
        for (const auto& [keyword, number] : kKeywords<Argument>) {
            const auto value = static_cast<decltype(parameter(std::declval<const Argument&>()))>(number);
            if (all.empty() || all.back().first != value)
                all.emplace_back(value, keyword);
        }
        return all;
    } else if constexpr (std::is_same_v<Argument, bool>)
        return {{true, "ON"}, {false, "OFF"}};
    else if constexpr (std::is_same_v<Argument, double>) {
        Spellings<Argument> all = {{0.0, "0.000000"}, {-0.0, "-0.000000"}, {1.25, "1.250000"}, {3.2, "3.200000"}};
        if (!hasLimits(operation))
            all.insert(all.end(), {{-1.0, "-1.000000"}, {1000.0, "1000.000000"}});
        return all;
    } else if (isChannelNumber)
        return {{1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"}, {6, "6"}};
    else
        return {{0, "0"}, {1, "1"}, {512, "512"}, {-1, "-1"}, {2147483647, "2147483647"}};
}

/// `line` with another text in the place of one of its arguments, counted from 0.
std::string withArgument(std::string line, std::size_t index, const std::string& text)
{
    std::size_t begin = line.find(' ') + 1;
    for (; index > 0; --index)
        begin = line.find(',', begin) + 1;
    return line.replace(begin, std::min(line.find(',', begin), line.size()) - begin, text);
}

/// `line` with another channel in its header, where the channel is the only digit.
std::string withChannel(std::string line, const std::string& text)
{
    return line.replace(line.find_first_of("0123456789"), 1, text);
}

template <std::size_t kIndex, class Argument, class... Parameters>
void addVariations(Operation& operation, const Call<Parameters...>& call, const Argument& /*argument*/)
{
    using Parameter = std::tuple_element_t<kIndex, std::tuple<Parameters...>>;
    if constexpr (!std::is_reference_v<Parameter>) {
        constexpr std::size_t kInputs = (std::size_t{!std::is_reference_v<Parameters>} + ...);
        const std::string& line = operation.line;
        const bool hasArguments = line.find(' ') != std::string::npos;
        const auto behindHeader =
            hasArguments ? static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')) + 1 : std::size_t{0};
        const std::size_t inHeader = kInputs - behindHeader;
        for (const auto& [value, text] : spellings<Argument>(operation, kIndex < inHeader))
            operation.variations.push_back(
                {runOf(call.template with<kIndex>(value)),
                 kIndex < inHeader ? withChannel(line, text) : withArgument(line, kIndex - inHeader, text)});
    }
}

template <class... Parameters, class... Arguments, std::size_t... kIndices>
void describeArguments(Operation& operation, const Call<Parameters...>& call, std::index_sequence<kIndices...>,
                       const Arguments&... arguments)
{
    (addInvalidCalls<kIndices>(operation, call, arguments), ...);
    (addVariations<kIndices>(operation, call, arguments), ...);
    (addField<kIndices>(operation, call, arguments), ...);
}

// ---- Rows

/// `arguments` in the order of the parameters, the outputs as the reply makes them.
template <class... Parameters, class... Arguments>
Operation query(int number, std::string name, Method<Parameters...> method, std::string line, std::string reply,
                const Arguments&... arguments)
{
    Call<Parameters...> call(method, {parameter(arguments)...});
    Operation operation{number, std::move(name), {}, std::move(line)};
    operation.reply = std::move(reply);
    operation.results = call.outputs();
    call.hideResults();
    operation.before = call.outputs();
    operation.run = runOf(call);
    operation.runFor = runForOf(call);
    describeArguments(operation, call, std::index_sequence_for<Parameters...>(), arguments...);
    return operation;
}

template <class... Parameters, class... Arguments>
Operation action(int number, std::string name, Method<Parameters...> method, std::string line,
                 const Arguments&... arguments)
{
    const Call<Parameters...> call(method, {parameter(arguments)...});
    Operation operation{number, std::move(name), runOf(call), std::move(line)};
    describeArguments(operation, call, std::index_sequence_for<Parameters...>(), arguments...);
    return operation;
}

/// A setting that `get`, sending `readBackLine`, gives back: the parameters of both have the same types in the same
/// order.
template <class... Parameters, class... GetParameters, class... Arguments>
Operation setting(int number, std::string name, Method<Parameters...> method, std::string line,
                  Method<GetParameters...> get, std::string readBackLine, const Arguments&... arguments)
{
    Operation operation = action(number, std::move(name), method, std::move(line), arguments...);
    Call<GetParameters...> readBack(get, {parameter(arguments)...});
    operation.results = readBack.outputs();
    readBack.hideResults();
    operation.readBack = Operation::ReadBack{runOf(readBack), std::move(readBackLine)};
    return operation;
}

using I = InstBase;

std::vector<Operation> statusOperations()
{
    return {
        action(9, "clearStatus", &I::clearStatus, "*CLS"),
        action(10, "reset", &I::reset, "*RST"),
        query(11, "eventStatus", &I::eventStatus, "*ESR?", "32", Long{32}),
        query(13, "questionableCondition", &I::questionableCondition,
              ":STATus:QUEStionable:INSTrument:ISUMmary2:CONDition?", "2", 2, 2),
        query(13, "questionableConditionOfTheSeries", &I::questionableCondition,
              ":STATus:QUEStionable:INSTrument:ISUMmary5:CONDition?", "-5", 5, -5),
        query(14, "questionableEvent", &I::questionableEvent, ":STATus:QUEStionable:INSTrument:ISUMmary2:EVENt?", "1",
              2, 1),
        query(15, "nextError", &I::nextError, ":SYSTem:ERRor?", "-113,\"Undefined header\"", -113,
              std::string("\"Undefined header\"")),
    };
}

std::vector<Operation> sourceOperations()
{
    return {
        setting(16, "selectChannel", &I::selectChannel, ":INST:SELE CH2", &I::selectedChannel, ":INST:SELE?", Named{2}),
        setting(16, "selectChannelSeries", &I::selectChannel, ":INST:SELE SER", &I::selectedChannel, ":INST:SELE?",
                Named{5}),
        setting(16, "selectChannelParallel", &I::selectChannel, ":INST:SELE PAR", &I::selectedChannel, ":INST:SELE?",
                Named{6}),
        query(17, "selectedChannel", &I::selectedChannel, ":INST:SELE?", "SER", Named{5}),
        query(17, "selectedChannelByItsOtherName", &I::selectedChannel, ":INST:SELE?", "CH6", Named{6}),
        setting(18, "setSourceModeNormal", &I::setSourceMode, ":SOUR:Mode NORMAL", &I::sourceMode, ":SOUR:Mode?",
                SourceMode::Normal),
        setting(18, "setSourceModeSeries", &I::setSourceMode, ":SOUR:Mode SER", &I::sourceMode, ":SOUR:Mode?",
                SourceMode::Series),
        setting(18, "setSourceModeParallel", &I::setSourceMode, ":SOUR:Mode PARA", &I::sourceMode, ":SOUR:Mode?",
                SourceMode::Parallel),
        query(19, "sourceMode", &I::sourceMode, ":SOUR:Mode?", "NORMAL", SourceMode::Normal),
        setting(20, "setBleEnabled", &I::setBleEnabled, ":SOUR:BLE ON", &I::bleEnabled, ":SOUR:BLE?", true),
        query(21, "bleEnabled", &I::bleEnabled, ":SOUR:BLE?", "1", true),
        setting(22, "setVoltageLevel", &I::setVoltageLevel, ":SOUR3:VOLT 5.000000", &I::voltageLevel, ":SOUR3:VOLT?", 3,
                5.0),
        setting(22, "setVoltageLevelOfTheSeries", &I::setVoltageLevel, ":SOUR5:VOLT 12.000000", &I::voltageLevel,
                ":SOUR5:VOLT?", 5, 12.0),
        query(23, "voltageLevel", &I::voltageLevel, ":SOUR3:VOLT?", "5.000000", 3, 5.0),
        setting(24, "setVoltageProtectionLevel", &I::setVoltageProtectionLevel, ":SOUR1:VOLT:PROT 12.500000",
                &I::voltageProtectionLevel, ":SOUR1:VOLT:PROT?", 1, 12.5),
        query(25, "voltageProtectionLevel", &I::voltageProtectionLevel, ":SOUR1:VOLT:PROT?", "12.5", 1, 12.5),
        setting(26, "setVoltageProtectionEnabled", &I::setVoltageProtectionEnabled, ":SOUR1:VOLT:PROT:STAT ON",
                &I::voltageProtectionEnabled, ":SOUR1:VOLT:PROT:STAT?", 1, true),
        query(27, "voltageProtectionEnabled", &I::voltageProtectionEnabled, ":SOUR1:VOLT:PROT:STAT?", "ON", 1, true),
        setting(28, "setRemoteSenseEnabled", &I::setRemoteSenseEnabled, ":SOUR1:VOLT:SENS OFF", &I::remoteSenseEnabled,
                ":SOUR1:VOLT:SENS?", 1, false),
        setting(28, "setRemoteSenseEnabledOn", &I::setRemoteSenseEnabled, ":SOUR1:VOLT:SENS ON", &I::remoteSenseEnabled,
                ":SOUR1:VOLT:SENS?", 1, true),
        query(29, "remoteSenseEnabled", &I::remoteSenseEnabled, ":SOUR1:VOLT:SENS?", "0", 1, false),
        setting(30, "setCurrentLevel", &I::setCurrentLevel, ":SOUR4:CURR 2.500000", &I::currentLevel, ":SOUR4:CURR?", 4,
                2.5),
        query(31, "currentLevel", &I::currentLevel, ":SOUR4:CURR?", "2.5", 4, 2.5),
        setting(32, "setCurrentProtectionLevel", &I::setCurrentProtectionLevel, ":SOUR1:CURR:PROT 2.500000",
                &I::currentProtectionLevel, ":SOUR1:CURR:PROT?", 1, 2.5),
        query(33, "currentProtectionLevel", &I::currentProtectionLevel, ":SOUR1:CURR:PROT?", "2.5", 1, 2.5),
        setting(34, "setCurrentProtectionEnabled", &I::setCurrentProtectionEnabled, ":SOUR1:CURR:PROT:STAT ON",
                &I::currentProtectionEnabled, ":SOUR1:CURR:PROT:STAT?", 1, true),
        setting(34, "setCurrentProtectionEnabledOff", &I::setCurrentProtectionEnabled, ":SOUR6:CURR:PROT:STAT OFF",
                &I::currentProtectionEnabled, ":SOUR6:CURR:PROT:STAT?", 6, false),
        query(35, "currentProtectionEnabled", &I::currentProtectionEnabled, ":SOUR1:CURR:PROT:STAT?", "1", 1, true),
        setting(36, "setCurrentProtectionDelay", &I::setCurrentProtectionDelay, ":SOUR1:CURR:PROT:DEL 0.100000",
                &I::currentProtectionDelay, ":SOUR1:CURR:PROT:DEL?", 1, 0.1),
        query(37, "currentProtectionDelay", &I::currentProtectionDelay, ":SOUR1:CURR:PROT:DEL?", "0.1", 1, 0.1),
        setting(38, "setCurrentProtectionDelayMode", &I::setCurrentProtectionDelayMode, ":SOUR2:CURR:PROT:DEL:MODE SCH",
                &I::currentProtectionDelayMode, ":SOUR2:CURR:PROT:DEL:MODE?", 2, ProtectionDelayMode::Scheduled),
        setting(38, "setCurrentProtectionDelayModeAny", &I::setCurrentProtectionDelayMode,
                ":SOUR1:CURR:PROT:DEL:MODE ANY", &I::currentProtectionDelayMode, ":SOUR1:CURR:PROT:DEL:MODE?", 1,
                ProtectionDelayMode::Any),
        query(39, "currentProtectionDelayMode", &I::currentProtectionDelayMode, ":SOUR2:CURR:PROT:DEL:MODE?", "ANY", 2,
              ProtectionDelayMode::Any),
    };
}

std::vector<Operation> outputOperations()
{
    return {
        setting(40, "setOutputEnabled", &I::setOutputEnabled, ":OUTP:STAT CH1,ON", &I::outputEnabled, ":OUTP:STAT? CH1",
                Named{1}, true),
        setting(40, "setOutputEnabledOfTheSeries", &I::setOutputEnabled, ":OUTP:STAT SER,OFF", &I::outputEnabled,
                ":OUTP:STAT? SER", Named{5}, false),
        query(41, "outputEnabled", &I::outputEnabled, ":OUTP:STAT? SER", "OFF", Named{5}, false),
        query(41, "outputEnabledOn", &I::outputEnabled, ":OUTP:STAT? CH1", "ON", Named{1}, true),
        query(42, "regulationState", &I::regulationState, ":OUTP:CVCC? CH1", "CC", Named{1},
              RegulationState::ConstantCurrent),
        setting(43, "setOvpValue", &I::setOvpValue, ":OUTP:OVP:VAL PAR,12.500000", &I::ovpValue, ":OUTP:OVP:VAL? PAR",
                Named{6}, 12.5),
        query(44, "ovpValue", &I::ovpValue, ":OUTP:OVP:VAL? PAR", "12.5", Named{6}, 12.5),
        setting(45, "setOvpEnabled", &I::setOvpEnabled, ":OUTP:OVP:STAT CH1,ON", &I::ovpEnabled, ":OUTP:OVP:STAT? CH1",
                Named{1}, true),
        query(46, "ovpEnabled", &I::ovpEnabled, ":OUTP:OVP:STAT? CH1", "1", Named{1}, true),
        setting(47, "setOcpValue", &I::setOcpValue, ":OUTP:OCP:VAL CH1,1.500000", &I::ocpValue, ":OUTP:OCP:VAL? CH1",
                Named{1}, 1.5),
        query(48, "ocpValue", &I::ocpValue, ":OUTP:OCP:VAL? CH1", "1.5", Named{1}, 1.5),
        setting(49, "setOcpEnabled", &I::setOcpEnabled, ":OUTP:OCP:STAT CH1,OFF", &I::ocpEnabled, ":OUTP:OCP:STAT? CH1",
                Named{1}, false),
        setting(49, "setOcpEnabledOn", &I::setOcpEnabled, ":OUTP:OCP:STAT CH1,ON", &I::ocpEnabled,
                ":OUTP:OCP:STAT? CH1", Named{1}, true),
        query(50, "ocpEnabled", &I::ocpEnabled, ":OUTP:OCP:STAT? CH1", "0", Named{1}, false),
        setting(51, "setOcpDelay", &I::setOcpDelay, ":OUTP:OCP:DEL CH1,0.050000", &I::ocpDelay, ":OUTP:OCP:DEL? CH1",
                Named{1}, 0.05),
        query(52, "ocpDelay", &I::ocpDelay, ":OUTP:OCP:DEL? CH1", "0.05", Named{1}, 0.05),
        setting(53, "setOcpDelayMode", &I::setOcpDelayMode, ":OUTP:OCP:DEL:MODE CH1,ANY", &I::ocpDelayMode,
                ":OUTP:OCP:DEL:MODE? CH1", Named{1}, ProtectionDelayMode::Any),
        setting(53, "setOcpDelayModeScheduled", &I::setOcpDelayMode, ":OUTP:OCP:DEL:MODE CH1,SCH", &I::ocpDelayMode,
                ":OUTP:OCP:DEL:MODE? CH1", Named{1}, ProtectionDelayMode::Scheduled),
        query(54, "ocpDelayMode", &I::ocpDelayMode, ":OUTP:OCP:DEL:MODE? CH1", "SCH", Named{1},
              ProtectionDelayMode::Scheduled),
        setting(55, "setPowerOnState", &I::setPowerOnState, ":OUTP:PONS:STAT CH1,LOFF", &I::powerOnState,
                ":OUTP:PONS:STAT? CH1", Named{1}, PowerOnState::LastOff),
        query(56, "powerOnState", &I::powerOnState, ":OUTP:PONS:STAT? CH1", "RST", Named{1}, PowerOnState::Reset),
        setting(57, "setPairing", &I::setPairing, ":OUTP:PAIR CH1,SER", &I::pairing, ":OUTP:PAIR? CH1", Named{1},
                Pairing::Series),
        query(58, "pairing", &I::pairing, ":OUTP:PAIR? CH1", "OFF", Named{1}, Pairing::Off),
        setting(59, "setOutputSenseEnabled", &I::setOutputSenseEnabled, ":OUTP:SENS:STAT CH1,ON",
                &I::outputSenseEnabled, ":OUTP:SENS:STAT? CH1", Named{1}, true),
        query(60, "outputSenseEnabled", &I::outputSenseEnabled, ":OUTP:SENS:STAT? CH1", "1", Named{1}, true),
        setting(61, "setTrackingEnabled", &I::setTrackingEnabled, ":OUTP:TRAC:STAT CH1,ON", &I::trackingEnabled,
                ":OUTP:TRAC:STAT? CH1", Named{1}, true),
        query(62, "trackingEnabled", &I::trackingEnabled, ":OUTP:TRAC:STAT? CH1", "1", Named{1}, true),
        setting(63, "setOutputOffMode", &I::setOutputOffMode, ":OUTP:OFFM CH1,BLEON", &I::outputOffMode,
                ":OUTP:OFFM? CH1", Named{1}, OutputOffMode::BleOn),
        setting(63, "setOutputOffModeBleOff", &I::setOutputOffMode, ":OUTP:OFFM CH1,BLEOFF", &I::outputOffMode,
                ":OUTP:OFFM? CH1", Named{1}, OutputOffMode::BleOff),
        query(64, "outputOffMode", &I::outputOffMode, ":OUTP:OFFM? CH1", "BLEOFF", Named{1}, OutputOffMode::BleOff),
        setting(144, "setTriggerInputEnabled", &I::setTriggerInputEnabled, ":TRIG:IN:ENAB CH1,ON",
                &I::triggerInputEnabled, ":TRIG:IN:ENAB? CH1", Named{1}, true),
        query(145, "triggerInputEnabled", &I::triggerInputEnabled, ":TRIG:IN:ENAB? CH1", "1", Named{1}, true),
    };
}

std::vector<Operation> measurementOperations()
{
    return {
        query(65, "measureAll", &I::measureAll, ":MEAS:ALL? CH4", "5.000,1.200,6.000", Named{4}, 5.0, 1.2, 6.0),
        query(66, "measureVoltage", &I::measureVoltage, ":MEAS:VOLT? CH1", "5.000", Named{1}, 5.0),
        query(67, "measureCurrent", &I::measureCurrent, ":MEAS:CURR? SER", "1.200", Named{5}, 1.2),
        query(68, "measurePower", &I::measurePower, ":MEAS:POWE? PAR", "6.000", Named{6}, 6.0),
        setting(69, "setCurrentRange", &I::setCurrentRange, ":MEAS:CURR:RANG CH1,LOW", &I::currentRange,
                ":MEAS:CURR:RANG? CH1", Named{1}, CurrentRange::Low),
        query(70, "currentRange", &I::currentRange, ":MEAS:CURR:RANG? CH1", "AUTO", Named{1}, CurrentRange::Auto),
        setting(71, "setCurrentRate", &I::setCurrentRate, ":MEAS:CURR:RATE CH2,8000", &I::currentRate,
                ":MEAS:CURR:RATE? CH2", Named{2}, CurrentRate::Rate8000),
        query(72, "currentRate", &I::currentRate, ":MEAS:CURR:RATE? CH2", "8K", Named{2}, CurrentRate::Rate8000),
    };
}

std::vector<Operation> listOperations()
{
    return {
        setting(73, "setListEnabled", &I::setListEnabled, ":LIST:STAT ON", &I::listEnabled, ":LIST:STAT?", true),
        setting(73, "setListEnabledOff", &I::setListEnabled, ":LIST:STAT OFF", &I::listEnabled, ":LIST:STAT?", false),
        query(74, "listEnabled", &I::listEnabled, ":LIST:STAT?", "1", true),
        query(75, "listStatus", &I::listStatus, ":LIST:STATUS?", "RUNNING,1.5,2,7", ListRunState::Running, 1.5, 2, 7),
        setting(76, "setListCycles", &I::setListCycles, ":LIST:CYCLE 10", &I::listCycles, ":LIST:CYCLE?", 10),
        query(77, "listCycles", &I::listCycles, ":LIST:CYCLE?", "10", 10),
        setting(78, "setListEndState", &I::setListEndState, ":LIST:ENDS LAST", &I::listEndState, ":LIST:ENDS?",
                ListEndState::Last),
        query(79, "listEndState", &I::listEndState, ":LIST:ENDS?", "OFF", ListEndState::Off),
        query(80, "listGroupCount", &I::listGroupCount, ":LIST:GROUP:NUM?", "3", 3),
        action(81, "insertListGroup", &I::insertListGroup, ":LIST:GROUP:INS 2", 2),
        action(82, "deleteListGroup", &I::deleteListGroup, ":LIST:GROUP:DEL 2", 2),
        action(83, "clearListGroups", &I::clearListGroups, ":LIST:GROUP:CLE"),
        setting(84, "setListGroup", &I::setListGroup, ":LIST:GROUP:PARA 3,5.000000,1.000000,0.100000", &I::listGroup,
                ":LIST:GROUP:PARA? 3", 3, 5.0, 1.0, 0.1),
        query(85, "listGroup", &I::listGroup, ":LIST:GROUP:PARA? 3", "5,1,0.1", 3, 5.0, 1.0, 0.1),
        setting(86, "setListTemplateWaveform", &I::setListTemplateWaveform, ":LIST:TEMP:SEL DN",
                &I::listTemplateWaveform, ":LIST:TEMP:SEL?", ListWaveform::Down),
        query(87, "listTemplateWaveform", &I::listTemplateWaveform, ":LIST:TEMP:SEL?", "sine", ListWaveform::Sine),
        setting(88, "setListTemplateObject", &I::setListTemplateObject, ":LIST:TEMP:OBJ V,5.000000",
                &I::listTemplateObject, ":LIST:TEMP:OBJ?", ListTemplateObject::Voltage, 5.0),
        setting(88, "setListTemplateObjectCurrent", &I::setListTemplateObject, ":LIST:TEMP:OBJ C,1.500000",
                &I::listTemplateObject, ":LIST:TEMP:OBJ?", ListTemplateObject::Current, 1.5),
        query(89, "listTemplateObject", &I::listTemplateObject, ":LIST:TEMP:OBJ?", "C,1.5", ListTemplateObject::Current,
              1.5),
        setting(90, "setListTemplateMaximum", &I::setListTemplateMaximum, ":LIST:TEMP:MAXV 10.000000",
                &I::listTemplateMaximum, ":LIST:TEMP:MAXV?", 10.0),
        query(91, "listTemplateMaximum", &I::listTemplateMaximum, ":LIST:TEMP:MAXV?", "10", 10.0),
        setting(92, "setListTemplateMinimum", &I::setListTemplateMinimum, ":LIST:TEMP:MINV 1.000000",
                &I::listTemplateMinimum, ":LIST:TEMP:MINV?", 1.0),
        query(93, "listTemplateMinimum", &I::listTemplateMinimum, ":LIST:TEMP:MINV?", "1", 1.0),
        setting(94, "setListTemplatePeriod", &I::setListTemplatePeriod, ":LIST:TEMP:PERI 2.000000",
                &I::listTemplatePeriod, ":LIST:TEMP:PERI?", 2.0),
        query(95, "listTemplatePeriod", &I::listTemplatePeriod, ":LIST:TEMP:PERI?", "2", 2.0),
        setting(96, "setListTemplateInterval", &I::setListTemplateInterval, ":LIST:TEMP:INTE 0.100000",
                &I::listTemplateInterval, ":LIST:TEMP:INTE?", 0.1),
        query(97, "listTemplateInterval", &I::listTemplateInterval, ":LIST:TEMP:INTE?", "0.1", 0.1),
        setting(98, "setListTemplateCycles", &I::setListTemplateCycles, ":LIST:TEMP:CYCLE 4", &I::listTemplateCycles,
                ":LIST:TEMP:CYCLE?", 4),
        query(99, "listTemplateCycles", &I::listTemplateCycles, ":LIST:TEMP:CYCLE?", "4", 4),
        setting(100, "setListTemplateInverted", &I::setListTemplateInverted, ":LIST:TEMP:INVE ON",
                &I::listTemplateInverted, ":LIST:TEMP:INVE?", true),
        query(101, "listTemplateInverted", &I::listTemplateInverted, ":LIST:TEMP:INVE?", "1", true),
        setting(102, "setListTemplatePulseWidth", &I::setListTemplatePulseWidth, ":LIST:TEMP:WIDT 0.500000",
                &I::listTemplatePulseWidth, ":LIST:TEMP:WIDT?", 0.5),
        query(103, "listTemplatePulseWidth", &I::listTemplatePulseWidth, ":LIST:TEMP:WIDT?", "0.5", 0.5),
        setting(104, "setListTemplatePulseCount", &I::setListTemplatePulseCount, ":LIST:TEMP:PULSECount 8",
                &I::listTemplatePulseCount, ":LIST:TEMP:PULSECount?", 8),
        query(105, "listTemplatePulseCount", &I::listTemplatePulseCount, ":LIST:TEMP:PULSECount?", "8", 8),
        setting(106, "setListTemplateSymmetry", &I::setListTemplateSymmetry, ":LIST:TEMP:SYMM 50",
                &I::listTemplateSymmetry, ":LIST:TEMP:SYMM?", 50),
        query(107, "listTemplateSymmetry", &I::listTemplateSymmetry, ":LIST:TEMP:SYMM?", "50", 50),
        setting(108, "setListTemplateStart", &I::setListTemplateStart, ":LIST:TEMP:STAI 10", &I::listTemplateStart,
                ":LIST:TEMP:STAI?", 10),
        query(109, "listTemplateStart", &I::listTemplateStart, ":LIST:TEMP:STAI?", "10", 10),
        setting(110, "setListTemplateExpp", &I::setListTemplateExpp, ":LIST:TEMP:EXPP 20", &I::listTemplateExpp,
                ":LIST:TEMP:EXPP?", 20),
        query(111, "listTemplateExpp", &I::listTemplateExpp, ":LIST:TEMP:EXPP?", "20", 20),
        setting(112, "setListTemplateExpr", &I::setListTemplateExpr, ":LIST:TEMP:EXPR 3", &I::listTemplateExpr,
                ":LIST:TEMP:EXPR?", 3),
        query(113, "listTemplateExpr", &I::listTemplateExpr, ":LIST:TEMP:EXPR?", "3", 3),
        query(114, "listTemplatePoints", &I::listTemplatePoints, ":LIST:TEMP:POINTs?", "20", 20),
        action(115, "constructList", &I::constructList, ":LIST:TEMP:CONSTruct 1", 1),
    };
}

std::vector<Operation> delayOperations()
{
    return {
        setting(116, "setDelayEnabled", &I::setDelayEnabled, ":DELAY:STATe ON", &I::delayEnabled, ":DELAY:STATe?",
                true),
        setting(116, "setDelayEnabledOff", &I::setDelayEnabled, ":DELAY:STATe OFF", &I::delayEnabled, ":DELAY:STATe?",
                false),
        query(117, "delayEnabled", &I::delayEnabled, ":DELAY:STATe?", "0", false),
        query(118, "delayStatus", &I::delayStatus, ":DELAY:STATUS?", "RUNNING,0.5,1,3", DelayRunState::Running, 0.5, 1,
              3),
        setting(119, "setDelayCycles", &I::setDelayCycles, ":DELAY:CYCLEs 3", &I::delayCycles, ":DELAY:CYCLEs?", 3),
        query(120, "delayCycles", &I::delayCycles, ":DELAY:CYCLEs?", "3", 3),
        setting(121, "setDelayEndState", &I::setDelayEndState, ":DELAY:ENDState LAST", &I::delayEndState,
                ":DELAY:ENDState?", DelayEndState::Last),
        query(122, "delayEndState", &I::delayEndState, ":DELAY:ENDState?", "ON", DelayEndState::On),
        query(123, "delayGroupCount", &I::delayGroupCount, ":DELAY:GROUP:NUM?", "2", 2),
        action(124, "insertDelayGroup", &I::insertDelayGroup, ":DELAY:GROUP:INSert 1", 1),
        action(125, "deleteDelayGroup", &I::deleteDelayGroup, ":DELAY:GROUP:DELete 1", 1),
        action(126, "clearDelayGroups", &I::clearDelayGroups, ":DELAY:GROUP:CLEar"),
        setting(127, "setDelayGroup", &I::setDelayGroup, ":DELAY:GROUP:PARAmeter 2,ON,0.500000", &I::delayGroup,
                ":DELAY:GROUP:PARAmeter? 2", 2, true, 0.5),
        query(128, "delayGroup", &I::delayGroup, ":DELAY:GROUP:PARAmeter? 2", "1,0.5", 2, true, 0.5),
        query(128, "delayGroupOff", &I::delayGroup, ":DELAY:GROUP:PARAmeter? 1", "OFF,2", 1, false, 2.0),
        setting(129, "setDelayGenerateMode", &I::setDelayGenerateMode, ":DELAY:GENerate:SELect INC",
                &I::delayGenerateMode, ":DELAY:GENerate:SELect?", DelayGenerateMode::Increasing),
        query(130, "delayGenerateMode", &I::delayGenerateMode, ":DELAY:GENerate:SELect?", "FIX",
              DelayGenerateMode::Fixed),
        setting(131, "setDelayGeneratePattern", &I::setDelayGeneratePattern, ":DELAY:GENerate:PATT 10P",
                &I::delayGeneratePattern, ":DELAY:GENerate:PATT?", DelayPattern::OnOff),
        query(132, "delayGeneratePattern", &I::delayGeneratePattern, ":DELAY:GENerate:PATT?", "01P",
              DelayPattern::OffOn),
        setting(133, "setDelayGeneratePoints", &I::setDelayGeneratePoints, ":DELAY:GENerate:POINTs 8",
                &I::delayGeneratePoints, ":DELAY:GENerate:POINTs?", 8),
        query(134, "delayGeneratePoints", &I::delayGeneratePoints, ":DELAY:GENerate:POINTs?", "8", 8),
        setting(135, "setDelayOnTime", &I::setDelayOnTime, ":DELAY:GENerate:TIMe:ON 0.200000", &I::delayOnTime,
                ":DELAY:GENerate:TIMe:ON?", 0.2),
        query(136, "delayOnTime", &I::delayOnTime, ":DELAY:GENerate:TIMe:ON?", "0.2", 0.2),
        setting(137, "setDelayOffTime", &I::setDelayOffTime, ":DELAY:GENerate:TIMe:OFF 0.300000", &I::delayOffTime,
                ":DELAY:GENerate:TIMe:OFF?", 0.3),
        query(138, "delayOffTime", &I::delayOffTime, ":DELAY:GENerate:TIMe:OFF?", "0.3", 0.3),
        setting(139, "setDelayBaseTime", &I::setDelayBaseTime, ":DELAY:GENerate:TIMe:BASE 1.000000", &I::delayBaseTime,
                ":DELAY:GENerate:TIMe:BASE?", 1.0),
        query(140, "delayBaseTime", &I::delayBaseTime, ":DELAY:GENerate:TIMe:BASE?", "1", 1.0),
        setting(141, "setDelayTimeStep", &I::setDelayTimeStep, ":DELAY:GENerate:TIMe:STEP 0.100000", &I::delayTimeStep,
                ":DELAY:GENerate:TIMe:STEP?", 0.1),
        query(142, "delayTimeStep", &I::delayTimeStep, ":DELAY:GENerate:TIMe:STEP?", "0.1", 0.1),
        action(143, "constructDelay", &I::constructDelay, ":DELAY:GENerate:CONSTruct 1", 1),
    };
}

std::vector<Operation> allOperations()
{
    std::vector<Operation> all;
    for (auto part : {&statusOperations, &sourceOperations, &outputOperations, &measurementOperations, &listOperations,
                      &delayOperations})
    {
        std::vector<Operation> rows = part();
        std::move(rows.begin(), rows.end(), std::back_inserter(all));
    }
    for (std::size_t i = 1; i < all.size(); ++i)
        if (all[i].number == all[i - 1].number)
            all[i].variations.clear();
    return all;
}

std::vector<Operation> operationsThatAsk(bool ask)
{
    std::vector<Operation> chosen;
    std::copy_if(operations().begin(), operations().end(), std::back_inserter(chosen),
                 [ask](const Operation& operation) { return operation.isQuery() == ask; });
    return chosen;
}

} // namespace

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> all = allOperations();
    return all;
}

const std::vector<Operation>& settings()
{
    static const std::vector<Operation> all = operationsThatAsk(false);
    return all;
}

const std::vector<Operation>& queries()
{
    static const std::vector<Operation> all = operationsThatAsk(true);
    return all;
}

} // namespace kvxtest
