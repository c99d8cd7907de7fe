#pragma once

#include "tests/support/processes/finished_program.h"

#include <string>
#include <vector>

namespace kvxtest
{

/// Runs a program of examples/ that is in Python, with the driver of this build.
inline FinishedProgram runPython(const std::string& program, std::vector<std::string> arguments,
                                 std::vector<Variable> environment = {})
{
    // -B: nothing is written beside the example.
    arguments.insert(arguments.begin(), {"-B", program});
    environment.push_back({"KVX2800T_LIBRARY", KVX_DRIVER_FILE});
    return runProgram(KVX_PYTHON, arguments, environment);
}

} // namespace kvxtest
