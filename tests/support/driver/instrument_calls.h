#pragma once

#include "api/KVX2800T.h"

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace kvxtest
{

/// No output is null.
inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

/// What the outputs of a call hold before it.
inline constexpr double kUntouched = 77.0;

/// An instrument-specific function with sample arguments, and what it does on the wire for OutputChannel3, which needs
/// no source mode.
struct InstrumentCall
{
    std::string name;
    /// The places of its operations among those of the instrument, as operation_table.h counts them.
    std::vector<int> operations;
    /// Calls it. `outputs` tells afterwards what they hold; the one at `nullAt` is passed as null.
    std::function<ViStatus(ViSession vi, ViConstString channel, std::vector<double>& outputs, std::size_t nullAt)> run;
    /// What it sends; the last line is the one that is answered.
    std::vector<std::string> lines;
    /// Of a query: the names of its outputs, the reply, and what the reply makes of the outputs.
    std::vector<std::string> outputs = {};
    std::string reply = {};
    std::vector<double> results = {};
    bool takesChannel = true;

    bool isQuery() const { return !outputs.empty(); }

    ViStatus operator()(ViSession vi, ViConstString channel = "OutputChannel3") const
    {
        std::vector<double> ignored;
        return run(vi, channel, ignored, kNone);
    }
};

inline void PrintTo(const InstrumentCall& call, std::ostream* stream)
{
    *stream << call.name;
}

/// The instrument-specific functions that are an operation of the instrument, or few of them.
const std::vector<InstrumentCall>& instrumentCalls();

} // namespace kvxtest
