#pragma once

#include "api/KVX2800T.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

/// The life of a session, from init to a second close, as programs lead it: every exported function in between.
namespace kvxtest
{

/// How a life begins, and what becomes of it on the way.
struct Scenario
{
    const char* name;
    const char* resource;
    const char* options;
    ViBoolean reset = VI_FALSE;
    /// Whether the instrument is replaced by a simulated one half-way.
    bool isReplaced = false;
    /// Whether replies come from what is prepared, so that what comes back can be told from what should not.
    bool isAnswered = true;

    /// Whether the session records exceptions and keeps replies to their queries.
    bool forgives() const { return std::string(options).find("Profile:Bench") != std::string::npos; }
};

/// Each kind of session, as it is and with Profile:Bench.
const std::vector<Scenario>& scenarios();

/// A call in the middle of a life.
struct Step
{
    std::string name;
    /// Calls it; false when it says that it has succeeded with an answer that is none to its question.
    std::function<bool(ViSession vi, ViStatus& status)> call;
    /// Whether it is a function of the instrument class, which lets exceptions out.
    bool mayThrow = false;
    /// Whether it reads or clears the session's error.
    bool takesError = false;
    /// Whether a status of its own has no record behind it.
    bool recordsNothing = false;
};

/// The functions of the instrument class, in the order in which they are called. They take no memory of their own.
std::vector<Step> classSteps();

/// Those of the instrument.
/// @param whole  all of them; otherwise some
std::vector<Step> instrumentSteps(bool whole);

/// Queries of levels that only the instrument knows.
std::vector<Step> levelSteps();

/// The replies to the queries among them that only an instrument knows.
const std::map<std::string, std::string>& preparedReplies();

} // namespace kvxtest
