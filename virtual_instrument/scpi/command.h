#pragma once

#include "virtual_instrument/common/error_code.h"
#include "virtual_instrument/scpi/parameters.h"
#include "virtual_instrument/scpi/reply.h"
#include "virtual_instrument/scpi/status_model.h"
#include "virtual_instrument/supply/power_supply.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// Everything a command can look at and change.
struct InstrumentState
{
    PowerSupply supply;
    StatusModel status;
    std::string identity;
    Wording wording;

    unsigned int statusByte() const { return status.statusByte(supplySummaries()); }

    /// What the status byte sums up of the supply.
    unsigned int supplySummaries() const
    {
        return (supply.hasQuestionableEvent() ? status_byte::kQuestionableSummary : 0U) |
               (supply.programActive() ? status_byte::kOperationSummary : 0U);
    }
};

/// One execution of a command. A handler that returns an error has changed nothing, and its reply is dropped.
struct Call
{
    InstrumentState& state;
    const Arguments& arguments;
    Reply& reply;
};

using CommandHandler = ErrorCode (*)(Call& call);

/// What a command expects, in order.
class ParameterList
{
public:
    static constexpr std::size_t kMost = 4;

    constexpr ParameterList(std::initializer_list<Parameter> parameters) : size_(parameters.size())
    {
        std::copy(parameters.begin(), parameters.end(), parameters_.begin());
    }

    constexpr std::size_t size() const { return size_; }
    constexpr const Parameter& operator[](std::size_t n) const { return parameters_[n]; }
    constexpr const Parameter* begin() const { return parameters_.data(); }
    constexpr const Parameter* end() const { return begin() + size_; }

private:
    std::array<Parameter, kMost> parameters_{};
    std::size_t size_;
};

/// One row of the command vocabulary.
struct Command
{
    /// As HeaderPattern reads it.
    std::string_view pattern;
    ParameterList parameters;
    CommandHandler handler;
    /// For the command list.
    std::string_view purpose;
};

} // namespace kvxvirtual
