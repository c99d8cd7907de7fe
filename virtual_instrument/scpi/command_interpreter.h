#pragma once

#include "virtual_instrument/scpi/command_table.h"
#include "virtual_instrument/scpi/header_pattern.h"

#include <optional>
#include <string>

namespace kvxvirtual
{

/// Executes message units by the command table.
class CommandInterpreter
{
public:
    CommandInterpreter();

    /// Executes every unit in turn; one that fails is reported in the error queue and does not keep the others from
    /// being executed. Returns the replies of the queries that succeeded, joined by ";" (IEEE 488.2), without a line
    /// end, or nothing when there is none.
    std::optional<std::string> execute(const std::vector<MessageUnit>& units, InstrumentState& state) const;

private:
    struct Row
    {
        HeaderPattern pattern;
        const Command* command;
    };
    struct Found
    {
        ErrorCode error = ErrorCode::None;
        const Command* command = nullptr;
        int suffix = kDefaultSuffix;
    };

    Found find(const MessageUnit& unit) const;
    ErrorCode execute(const MessageUnit& unit, InstrumentState& state, Reply& reply) const;

    std::vector<Row> rows_;
};

} // namespace kvxvirtual
