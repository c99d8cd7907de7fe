#include "virtual_instrument/scpi/command_interpreter.h"

#include "virtual_instrument/scpi/command_table.h"
#include "virtual_instrument/scpi/header_pattern.h"

namespace kvxvirtual
{
namespace
{

struct Found
{
    ErrorCode error = ErrorCode::None;
    const Command* command = nullptr;
    int suffix = kDefaultSuffix;
};

ErrorCode convert(const MessageUnit& unit, const Command& command, Arguments& arguments)
{
    if (unit.parameters.size() > command.parameters.size())
        return ErrorCode::ParameterNotAllowed;
    if (unit.parameters.size() < command.parameters.size())
        return ErrorCode::MissingParameter;
    for (std::size_t i = 0; i < unit.parameters.size(); ++i) {
        const auto error = arguments.add(command.parameters[i], unit.parameters[i]);
        if (error != ErrorCode::None)
            return error;
    }
    return ErrorCode::None;
}

Found find(const MessageUnit& unit)
{
    Found found{ErrorCode::UndefinedHeader};
    for (const auto part : commandTable()) {
        for (const Command& command : part) {
            const auto match = HeaderPattern(command.pattern).match(unit);
            if (match.kind == HeaderMatch::Kind::Full)
                return {ErrorCode::None, &command, match.suffix};
            if (match.kind == HeaderMatch::Kind::BadSuffix)
                found.error = ErrorCode::HeaderSuffixOutOfRange;
        }
    }
    return found;
}

ErrorCode executeUnit(const MessageUnit& unit, InstrumentState& state, Reply& reply)
{
    if (unit.error != ErrorCode::None)
        return unit.error;
    const auto found = find(unit);
    if (found.error != ErrorCode::None)
        return found.error;
    Arguments arguments;
    arguments.channel = found.suffix;
    const auto error = convert(unit, *found.command, arguments);
    if (error != ErrorCode::None)
        return error;
    Call call{state, arguments, reply};
    return found.command->handler(call);
}

} // namespace

std::optional<std::string> execute(const std::vector<MessageUnit>& units, InstrumentState& state)
{
    std::optional<std::string> replies;
    for (const auto& unit : units) {
        Reply reply(state.wording);
        state.supply.update();
        const auto error = executeUnit(unit, state, reply);
        state.supply.update();
        if (error != ErrorCode::None)
            state.status.report(error);
        else if (unit.isQuery)
            replies = replies ? *replies + ';' + reply.text() : reply.text();
    }
    return replies;
}

} // namespace kvxvirtual
