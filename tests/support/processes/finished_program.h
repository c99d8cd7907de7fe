#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace kvxtest
{

/// How a program has ended: its exit code and what it has written to its two outputs.
struct FinishedProgram
{
    int exitCode;
    std::string output;
    std::string errorOutput;

    bool operator==(const FinishedProgram&) const = default;
};

/// For messages of failed assertions.
void PrintTo(const FinishedProgram& program, std::ostream* stream);

/// A variable of the environment.
struct Variable
{
    const char* name;
    std::string value;
};

/// Runs a program to its end, with no configuration store but the one that `environment` may name.
FinishedProgram runProgram(const std::string& path, const std::vector<std::string>& arguments,
                           const std::vector<Variable>& environment = {});

} // namespace kvxtest
