#include "virtual_instrument/scpi/program_commands.h"

#include "virtual_instrument/common/value_range.h"

namespace kvxvirtual
{
namespace
{

using namespace parameters;

constexpr Parameter kGroup{Parameter::Kind::Integer, "group"};
constexpr Parameter kCycles{Parameter::Kind::Integer, "cycles"};
constexpr Parameter kCount{Parameter::Kind::Integer, "count"};
constexpr Parameter kPoint{Parameter::Kind::Integer, "point"};
constexpr Parameter kPercent{Parameter::Kind::Integer, "percent"};
constexpr Parameter kLevel{Parameter::Kind::Number, "volts or amperes"};

// Both programs ------------------------------------------------------------------------------------------------------

template <class Kind>
Kind& program(const Call& call);

template <>
ListProgram& program<ListProgram>(const Call& call)
{
    return call.state.supply.list();
}

template <>
DelayProgram& program<DelayProgram>(const Call& call)
{
    return call.state.supply.delay();
}

template <auto Switch>
ErrorCode switchProgram(Call& call)
{
    return (call.state.supply.*Switch)(call.arguments.boolean(0));
}

template <class Kind>
ErrorCode answerActive(Call& call)
{
    call.reply.addBoolean(program<Kind>(call).run().active());
    return ErrorCode::None;
}

/// The keyword of a run's state. A delay program has but two of them.
void addState(Reply& reply, const ListProgram& list)
{
    reply.addKeyword(keywords::kListRunState, static_cast<int>(list.run().state()));
}

void addState(Reply& reply, const DelayProgram& delay)
{
    reply.addKeyword(keywords::kDelayRunState, delay.run().active() ? 1 : 0);
}

template <class Kind>
ErrorCode answerStatus(Call& call)
{
    const auto& asked = program<Kind>(call);
    const auto& run = asked.run();
    addState(call.reply, asked);
    call.reply.addSetting(call.state.supply.remainingSeconds(run));
    call.reply.addInteger(run.active() ? static_cast<int>(run.group()) + 1 : 0);
    call.reply.addInteger(run.active() ? run.remainingCycles() : 0);
    return ErrorCode::None;
}

template <class Kind>
ErrorCode setCycles(Call& call)
{
    return program<Kind>(call).setCycles(call.arguments.integer(0));
}

template <class Kind>
ErrorCode answerCycles(Call& call)
{
    call.reply.addInteger(program<Kind>(call).cycles());
    return ErrorCode::None;
}

template <class Kind>
ErrorCode setEndState(Call& call)
{
    return program<Kind>(call).setEndState(call.arguments.choice(0));
}

template <class Kind, auto& Table>
ErrorCode answerEndState(Call& call)
{
    call.reply.addKeyword(Table, program<Kind>(call).endState());
    return ErrorCode::None;
}

template <class Kind>
ErrorCode answerGroupCount(Call& call)
{
    call.reply.addInteger(static_cast<int>(program<Kind>(call).groups().size()));
    return ErrorCode::None;
}

template <class Kind>
ErrorCode insertGroup(Call& call)
{
    return program<Kind>(call).insertGroup(call.arguments.integer(0));
}

template <class Kind>
ErrorCode deleteGroup(Call& call)
{
    return program<Kind>(call).deleteGroup(call.arguments.integer(0));
}

template <class Kind>
ErrorCode clearGroups(Call& call)
{
    return program<Kind>(call).clearGroups();
}

template <class Kind>
ErrorCode construct(Call& call)
{
    return program<Kind>(call).construct(call.arguments.integer(0));
}

// Groups -------------------------------------------------------------------------------------------------------------

ErrorCode setListGroup(Call& call)
{
    const auto& sent = call.arguments;
    return call.state.supply.list().setGroup(sent.integer(0), {sent.number(1), sent.number(2), sent.number(3)});
}

ErrorCode setDelayGroup(Call& call)
{
    const auto& sent = call.arguments;
    return call.state.supply.delay().setGroup(sent.integer(0), {sent.boolean(1), sent.number(2)});
}

void addGroup(Reply& reply, const ListGroup& group)
{
    reply.addSetting(group.volts);
    reply.addSetting(group.amperes);
    reply.addSetting(group.seconds);
}

void addGroup(Reply& reply, const DelayGroup& group)
{
    reply.addBoolean(group.on);
    reply.addSetting(group.seconds);
}

template <class Kind>
ErrorCode answerGroup(Call& call)
{
    const auto& asked = program<Kind>(call);
    const int number = call.arguments.integer(0);
    if (!asked.hasGroup(number))
        return ErrorCode::DataOutOfRange;
    addGroup(call.reply, asked.groups()[static_cast<std::size_t>(number - 1)]);
    return ErrorCode::None;
}

// Template and generator ---------------------------------------------------------------------------------------------

ListTemplate& sourceOf(const Call& call, const ListTemplate*)
{
    return call.state.supply.list().shape;
}

DelayGenerator& sourceOf(const Call& call, const DelayGenerator*)
{
    return call.state.supply.delay().generator;
}

template <auto Field>
struct FieldOf;

template <class Source, class Value, Value Source::*Field>
struct FieldOf<Field>
{
    static Value& in(const Call& call) { return sourceOf(call, static_cast<const Source*>(nullptr)).*Field; }
};

int numberIn(const Call& call, const ValueRange<int>&)
{
    return call.arguments.integer(0);
}

double numberIn(const Call& call, const ValueRange<double>&)
{
    return call.arguments.number(0);
}

template <auto Field, auto& Range>
ErrorCode setNumber(Call& call)
{
    const auto sent = numberIn(call, Range);
    if (!Range.holds(sent))
        return ErrorCode::DataOutOfRange;
    FieldOf<Field>::in(call) = sent;
    return ErrorCode::None;
}

void addNumber(Reply& reply, int value)
{
    reply.addInteger(value);
}

void addNumber(Reply& reply, double value)
{
    reply.addSetting(value);
}

template <auto Field>
ErrorCode answerNumber(Call& call)
{
    addNumber(call.reply, FieldOf<Field>::in(call));
    return ErrorCode::None;
}

template <auto Field>
ErrorCode setChoice(Call& call)
{
    FieldOf<Field>::in(call) = call.arguments.choice(0);
    return ErrorCode::None;
}

template <auto Field, auto& Table>
ErrorCode answerChoice(Call& call)
{
    call.reply.addKeyword(Table, FieldOf<Field>::in(call));
    return ErrorCode::None;
}

/// A level of the template in the n-th place.
template <auto Field>
ErrorCode setLevel(Call& call, std::size_t n)
{
    const double level = call.arguments.number(n);
    if (!ValueRange<double>{0.0, call.state.supply.list().highestTemplateLevel()}.holds(level))
        return ErrorCode::DataOutOfRange;
    FieldOf<Field>::in(call) = level;
    return ErrorCode::None;
}

template <auto Field>
ErrorCode setOnlyLevel(Call& call)
{
    return setLevel<Field>(call, 0);
}

ErrorCode setObject(Call& call)
{
    const auto error = setLevel<&ListTemplate::fixedLevel>(call, 1);
    return error == ErrorCode::None ? setChoice<&ListTemplate::object>(call) : error;
}

ErrorCode answerObject(Call& call)
{
    answerChoice<&ListTemplate::object, keywords::kListObject>(call);
    return answerNumber<&ListTemplate::fixedLevel>(call);
}

ErrorCode setInverted(Call& call)
{
    call.state.supply.list().shape.inverted = call.arguments.boolean(0);
    return ErrorCode::None;
}

ErrorCode answerInverted(Call& call)
{
    call.reply.addBoolean(call.state.supply.list().shape.inverted);
    return ErrorCode::None;
}

ErrorCode answerPoints(Call& call)
{
    call.reply.addInteger(call.state.supply.list().shape.points());
    return ErrorCode::None;
}

} // namespace

// The rows -----------------------------------------------------------------------------------------------------------

// Besides the spellings of SCPI the table accepts those that drivers of this family send: PARA, PERI, INTE, CYCLEs.
// STATUS has no short form, that is the switch.

std::span<const Command> listProgramCommands()
{
    constexpr auto endState = keywordOf(keywords::kListEndState, "end state");
    using List = ListProgram;

    static constexpr Command kCommands[] = {
        {"LIST:STATe", {kOnOff}, switchProgram<&PowerSupply::switchList>, "starts or stops the list"},
        {"LIST:STATe?", {}, answerActive<List>, "whether the list is active"},
        {"LIST:STATUS?", {}, answerStatus<List>, "state, seconds left of the group, group, cycles left"},
        {"LIST:CYCLe|CYCLEs", {kCycles}, setCycles<List>, "cycles of the list; 0: no end"},
        {"LIST:CYCLe|CYCLEs?", {}, answerCycles<List>, "cycles of the list"},
        {"LIST:ENDState", {endState}, setEndState<List>, "the output when the list stops"},
        {"LIST:ENDState?", {}, answerEndState<List, keywords::kListEndState>, "the output when the list stops"},
        {"LIST:GROup:NUMber?", {}, answerGroupCount<List>, "number of groups"},
        {"LIST:GROup:INSert", {kGroup}, insertGroup<List>, "inserts a group before this one"},
        {"LIST:GROup:DELete", {kGroup}, deleteGroup<List>, "deletes a group"},
        {"LIST:GROup:CLEar", {}, clearGroups<List>, "deletes all groups"},
        {"LIST:GROup:PARameter|PARA", {kGroup, kVolts, kAmperes, kSeconds}, setListGroup, "sets or appends a group"},
        {"LIST:GROup:PARameter|PARA?", {kGroup}, answerGroup<List>, "volts, amperes, seconds of a group"},
    };
    return kCommands;
}

std::span<const Command> listTemplateCommands()
{
    constexpr auto waveform = keywordOf(keywords::kListWaveform, "waveform");
    constexpr auto object = keywordOf(keywords::kListObject, "object");
    using Shape = ListTemplate;

    static constexpr Command kCommands[] = {
        {"LIST:TEMPlate:SELect|SELE", {waveform}, setChoice<&Shape::waveform>, "waveform"},
        {"LIST:TEMPlate:SELect|SELE?", {}, answerChoice<&Shape::waveform, keywords::kListWaveform>, "waveform"},
        {"LIST:TEMPlate:OBJect", {object, kLevel}, setObject, "what follows the waveform, level of the other"},
        {"LIST:TEMPlate:OBJect?", {}, answerObject, "what follows the waveform, level of the other"},
        {"LIST:TEMPlate:MAXValue", {kLevel}, setOnlyLevel<&Shape::maximum>, "highest level"},
        {"LIST:TEMPlate:MAXValue?", {}, answerNumber<&Shape::maximum>, "highest level"},
        {"LIST:TEMPlate:MINValue", {kLevel}, setOnlyLevel<&Shape::minimum>, "lowest level"},
        {"LIST:TEMPlate:MINValue?", {}, answerNumber<&Shape::minimum>, "lowest level"},
        {"LIST:TEMPlate:PERiod|PERI", {kSeconds}, setNumber<&Shape::periodSeconds, ranges::kSeconds>, "period"},
        {"LIST:TEMPlate:PERiod|PERI?", {}, answerNumber<&Shape::periodSeconds>, "period"},
        {"LIST:TEMPlate:INTerval|INTE",
         {kSeconds},
         setNumber<&Shape::intervalSeconds, ranges::kSeconds>,
         "time of one group"},
        {"LIST:TEMPlate:INTerval|INTE?", {}, answerNumber<&Shape::intervalSeconds>, "time of one group"},
        {"LIST:TEMPlate:CYCLe|CYCLEs",
         {kCycles},
         setNumber<&Shape::cycles, ranges::kCycles>,
         "cycles that the list gets; 0: no end"},
        {"LIST:TEMPlate:CYCLe|CYCLEs?", {}, answerNumber<&Shape::cycles>, "cycles that the list gets"},
        {"LIST:TEMPlate:INVert|INVE", {kOnOff}, setInverted, "waveform upside down"},
        {"LIST:TEMPlate:INVert|INVE?", {}, answerInverted, "waveform upside down"},
        {"LIST:TEMPlate:WIDTh", {kSeconds}, setNumber<&Shape::pulseSeconds, ranges::kSeconds>, "width of a pulse"},
        {"LIST:TEMPlate:WIDTh?", {}, answerNumber<&Shape::pulseSeconds>, "width of a pulse"},
        {"LIST:TEMPlate:PULSECount", {kCount}, setNumber<&Shape::pulseCount, ranges::kPulses>, "number of pulses"},
        {"LIST:TEMPlate:PULSECount?", {}, answerNumber<&Shape::pulseCount>, "number of pulses"},
        {"LIST:TEMPlate:SYMMetry",
         {kPercent},
         setNumber<&Shape::symmetryPercent, ranges::kPercent>,
         "rising part of a ramp"},
        {"LIST:TEMPlate:SYMMetry?", {}, answerNumber<&Shape::symmetryPercent>, "rising part of a ramp"},
        {"LIST:TEMPlate:STAI",
         {kPoint},
         setNumber<&Shape::start, ranges::kPoints>,
         "point that becomes the first group"},
        {"LIST:TEMPlate:STAI?", {}, answerNumber<&Shape::start>, "point that becomes the first group"},
        {"LIST:TEMPlate:EXPP", {kCount}, setNumber<&Shape::curvePoints, ranges::kPoints>, "points of a rise or fall"},
        {"LIST:TEMPlate:EXPP?", {}, answerNumber<&Shape::curvePoints>, "points of a rise or fall"},
        {"LIST:TEMPlate:EXPR",
         {kCount},
         setNumber<&Shape::curveRate, ranges::kCurveRate>,
         "time constants of a rise or fall"},
        {"LIST:TEMPlate:EXPR?", {}, answerNumber<&Shape::curveRate>, "time constants of a rise or fall"},
        {"LIST:TEMPlate:POINts|POINTs?", {}, answerPoints, "groups that the template gives"},
        {"LIST:TEMPlate:CONStruct|CONSTruct",
         {kGroup},
         construct<ListProgram>,
         "makes the template the list from this group on"},
    };
    return kCommands;
}

std::span<const Command> delayProgramCommands()
{
    constexpr auto endState = keywordOf(keywords::kDelayEndState, "end state");
    using Delay = DelayProgram;

    static constexpr Command kCommands[] = {
        {"DELay:STATe", {kOnOff}, switchProgram<&PowerSupply::switchDelay>, "starts or stops the delay program"},
        {"DELay:STATe?", {}, answerActive<Delay>, "whether the delay program is active"},
        {"DELay:STATUS?", {}, answerStatus<Delay>, "state, seconds left of the group, group, cycles left"},
        {"DELay:CYCLe|CYCLEs", {kCycles}, setCycles<Delay>, "cycles of the delay program; 0: no end"},
        {"DELay:CYCLe|CYCLEs?", {}, answerCycles<Delay>, "cycles of the delay program"},
        {"DELay:ENDState", {endState}, setEndState<Delay>, "the output when the delay program stops"},
        {"DELay:ENDState?",
         {},
         answerEndState<Delay, keywords::kDelayEndState>,
         "the output when the delay program stops"},
        {"DELay:GROup:NUMber?", {}, answerGroupCount<Delay>, "number of groups"},
        {"DELay:GROup:INSert", {kGroup}, insertGroup<Delay>, "inserts a group before this one"},
        {"DELay:GROup:DELete", {kGroup}, deleteGroup<Delay>, "deletes a group"},
        {"DELay:GROup:CLEar", {}, clearGroups<Delay>, "deletes all groups"},
        {"DELay:GROup:PARameter|PARA", {kGroup, kOnOff, kSeconds}, setDelayGroup, "sets or appends a group"},
        {"DELay:GROup:PARameter|PARA?", {kGroup}, answerGroup<Delay>, "ON or OFF, seconds of a group"},
    };
    return kCommands;
}

std::span<const Command> delayGeneratorCommands()
{
    constexpr auto mode = keywordOf(keywords::kDelayMode, "mode");
    constexpr auto pattern = keywordOf(keywords::kDelayPattern, "pattern");
    using Generator = DelayGenerator;

    static constexpr Command kCommands[] = {
        {"DELay:GENerate:SELect|SELE", {mode}, setChoice<&Generator::mode>, "times fixed, increasing, decreasing"},
        {"DELay:GENerate:SELect|SELE?",
         {},
         answerChoice<&Generator::mode, keywords::kDelayMode>,
         "times fixed, increasing, decreasing"},
        {"DELay:GENerate:PATTern", {pattern}, setChoice<&Generator::pattern>, "off first or on first"},
        {"DELay:GENerate:PATTern?",
         {},
         answerChoice<&Generator::pattern, keywords::kDelayPattern>,
         "off first or on first"},
        {"DELay:GENerate:POINts|POINTs",
         {kCount},
         setNumber<&Generator::pointCount, ranges::kPoints>,
         "groups that the generator gives"},
        {"DELay:GENerate:POINts|POINTs?", {}, answerNumber<&Generator::pointCount>, "groups that the generator gives"},
        {"DELay:GENerate:TIMe:ON", {kSeconds}, setNumber<&Generator::onSeconds, ranges::kSeconds>, "fixed time on"},
        {"DELay:GENerate:TIMe:ON?", {}, answerNumber<&Generator::onSeconds>, "fixed time on"},
        {"DELay:GENerate:TIMe:OFF", {kSeconds}, setNumber<&Generator::offSeconds, ranges::kSeconds>, "fixed time off"},
        {"DELay:GENerate:TIMe:OFF?", {}, answerNumber<&Generator::offSeconds>, "fixed time off"},
        {"DELay:GENerate:TIMe:BASE",
         {kSeconds},
         setNumber<&Generator::baseSeconds, ranges::kSeconds>,
         "changing time: the first"},
        {"DELay:GENerate:TIMe:BASE?", {}, answerNumber<&Generator::baseSeconds>, "changing time: the first"},
        {"DELay:GENerate:TIMe:STEP",
         {kSeconds},
         setNumber<&Generator::stepSeconds, ranges::kSeconds>,
         "changing time: the change from group to group"},
        {"DELay:GENerate:TIMe:STEP?",
         {},
         answerNumber<&Generator::stepSeconds>,
         "changing time: the change from group to group"},
        {"DELay:GENerate:CONStruct|CONSTruct",
         {kGroup},
         construct<DelayProgram>,
         "makes the pattern the program from this group on"},
    };
    return kCommands;
}

} // namespace kvxvirtual
