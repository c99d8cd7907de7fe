#pragma once

#include "virtual_instrument/common/error_code.h"
#include "virtual_instrument/scpi/parameters.h"
#include "virtual_instrument/scpi/reply.h"
#include "virtual_instrument/scpi/status_model.h"
#include "virtual_instrument/supply/power_supply.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvxvirtual
{

/// Everything a command can look at and change.
struct InstrumentState
{
    PowerSupply supply;
    StatusModel status;
    std::string identity;
    Wording wording;
};

/// One execution of a command. A handler that returns an error has changed nothing, and its reply is dropped.
struct Call
{
    InstrumentState& state;
    const Arguments& arguments;
    Reply& reply;
};

using CommandHandler = ErrorCode (*)(Call& call);

/// One row of the command vocabulary.
struct Command
{
    /// As HeaderPattern reads it.
    std::string_view pattern;
    std::vector<Parameter> parameters;
    CommandHandler handler;
    /// For the command list.
    std::string_view purpose;
};

} // namespace kvxvirtual
