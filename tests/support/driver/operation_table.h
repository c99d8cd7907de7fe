#pragma once

#include "instrument/inst_base.h"

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kvxtest
{

/// How a field of a reply is read.
enum class FieldKind
{
    Boolean,
    Number,
    Integer,
    /// An integer whose failures speak of a long.
    Long,
    Keyword,
    Text,
};

/// The keywords of a reply and what they mean, in the order in which they are tried.
using Keywords = std::vector<std::pair<std::string, ViInt32>>;

struct Field
{
    FieldKind kind;
    Keywords keywords = {};
};

/// An output of an operation; enumerations as their number.
using Value = std::variant<bool, ViInt32, double, std::string>;
using Values = std::vector<Value>;

/// Runs an operation with a row's arguments. `outputs` tells afterwards what the outputs hold, also when the operation
/// throws.
using Run = std::function<ViStatus(TSRO::InstBase&, Values& outputs)>;

/// One operation of the instrument with sample arguments, and what it does on the wire. A query has a reply.
struct Operation
{
    /// The query that answers with what a setting has set.
    struct ReadBack
    {
        Run run;
        std::string line;
    };

    /// The operation with another value in the place of one argument, and the line that it sends then.
    struct Variation
    {
        Run run;
        std::string line;
    };

    /// Its place among the virtual operations of InstBase.
    int number = 0;
    /// The method's; with an addition where an operation has several rows.
    std::string name;
    Run run;
    std::string line;
    std::string reply = {};
    std::vector<Field> fields = {};
    /// The outputs as `run` hands them in, and as the reply makes them. Of a setting: what reads back.
    Values before = {};
    Values results = {};
    std::optional<ReadBack> readBack = {};
    /// A query's `run` with another channel or group; empty when it has neither.
    std::function<ViStatus(TSRO::InstBase&, ViInt32 number, Values& outputs)> runFor = {};
    /// The same operation with a channel that has no name, or a setting outside its keyword table.
    std::vector<std::function<ViStatus(TSRO::InstBase&)>> invalidCalls = {};
    /// Every channel, every member of an enumeration, on and off, and a few of the numbers in the place of each
    /// argument; in the first row of an operation alone.
    std::vector<Variation> variations = {};

    bool isQuery() const { return !reply.empty(); }
};

/// For messages of tests.
inline void PrintTo(const Operation& operation, std::ostream* stream)
{
    *stream << operation.name;
}

/// All operations that exchange messages, but for the raw ones: 9 to 145 without 12.
const std::vector<Operation>& operations();

/// Those that send only, and those that ask.
const std::vector<Operation>& settings();
const std::vector<Operation>& queries();

} // namespace kvxtest
