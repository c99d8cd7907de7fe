#include "finished_program.h"

#include "support/child_process.h"

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
                           const std::vector<std::string>& environment)
{
    std::vector<std::string> words{"-u", "IVICONFIGSERVERDEFAULT", "-u", "IVI_MASTER_STORE",
                                   "XDG_CONFIG_HOME=/no-such-folder"};
    words.insert(words.end(), environment.begin(), environment.end());
    words.push_back(path);
    words.insert(words.end(), arguments.begin(), arguments.end());
    ChildProcess process("/usr/bin/env", words);
    FinishedProgram program;
    while (const auto line = process.readLine())
        program.output += *line + "\n";
    program.exitCode = process.wait();
    program.errorOutput = process.errorOutput();
    return program;
}

} // namespace kvxtest
