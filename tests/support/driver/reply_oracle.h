#pragma once

#include "tests/support/driver/operation_table.h"

#include <iosfwd>
#include <string>

namespace kvxtest
{

/// What came of running an operation.
struct Outcome
{
    ViStatus status = VI_SUCCESS;
    /// The exception's class and text; empty without one, and the status is then what was returned.
    std::string thrown = {};
    Values outputs = {};
};

/// NaN equals NaN.
bool operator==(const Outcome& left, const Outcome& right);
void PrintTo(const Outcome& outcome, std::ostream* stream);

Outcome outcomeOf(const Operation& operation, TSRO::InstBase& instrument);

/// What is to come of a query that gets this reply, by the C library's conversions; for the "C" locale.
Outcome expectedOutcome(const Operation& query, const std::string& reply);

} // namespace kvxtest
