#pragma once

#include "tests/support/processes/finished_program.h"

#include <string>
#include <vector>

namespace kvxtest
{

/// Runs Python with the package and the driver of this build: a program, or a module behind "-m".
inline FinishedProgram runPython(std::vector<std::string> arguments, std::vector<Variable> environment = {})
{
    // Nothing is written beside the program.
    arguments.insert(arguments.begin(), "-B");
    environment.push_back({"PYTHONPATH", KVX_PYTHON_PACKAGE});
    return runProgram(KVX_PYTHON, arguments, environment);
}

} // namespace kvxtest
