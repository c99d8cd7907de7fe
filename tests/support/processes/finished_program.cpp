#include "tests/support/processes/finished_program.h"

#include "tests/support/environment.h"
#include "tests/support/processes/child_process.h"

#include <list>
#include <ostream>

namespace kvxtest
{

void PrintTo(const FinishedProgram& program, std::ostream* stream)
{
    *stream << "exit code " << program.exitCode << "\noutput:\n"
            << program.output << "error output:\n"
            << program.errorOutput;
}

FinishedProgram runProgram(const std::string& path, const std::vector<std::string>& arguments,
                           const std::vector<Variable>& environment)
{
    std::list<EnvironmentVariable> variables;
    variables.emplace_back("IVICONFIGSERVERDEFAULT", nullptr);
    variables.emplace_back("IVI_MASTER_STORE", nullptr);
    variables.emplace_back("XDG_CONFIG_HOME", "/no-such-folder");
    for (const Variable& variable : environment)
        variables.emplace_back(variable.name, variable.value.c_str());
    ChildProcess process(path, arguments);
    FinishedProgram program;
    while (const auto line = process.readLine())
        program.output += *line + "\n";
    program.exitCode = process.wait();
    program.errorOutput = process.errorOutput();
    return program;
}

} // namespace kvxtest
