#pragma once

#include "tests/support/processes/child_process.h"

#include <string>
#include <utility>
#include <vector>

namespace kvxtest
{

/// What a program has printed, and how it ended.
struct Outcome
{
    std::vector<std::string> lines;
    int exitCode = 0;
    std::string errorOutput;
};

inline Outcome run(const std::string& path, const std::vector<std::string>& arguments)
{
    ChildProcess program(path, arguments);
    Outcome outcome;
    while (auto line = program.readLine())
        outcome.lines.push_back(std::move(*line));
    outcome.exitCode = program.wait();
    outcome.errorOutput = program.errorOutput();
    return outcome;
}

/// @param library the VISA library; none is PyVISA-py, which is one of its own

} // namespace kvxtest
