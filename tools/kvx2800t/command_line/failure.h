#pragma once

#include "tools/kvx2800t/command_line/exit_codes.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace command_line
{

/// What ends a command, with the code that the program ends with.
class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}

    /// One that has a status: of the driver, of VISA or of the configuration server.
    Failure(ExitCode code, ViStatus status, const std::string& text)
        : std::runtime_error(text), code_(code), status_(status)
    {
    }

    ExitCode code() const { return code_; }
    std::optional<ViStatus> status() const { return status_; }

private:
    ExitCode code_;
    std::optional<ViStatus> status_;
};

/// What is wrong with the command line, beyond what its parser sees.
class UsageError : public Failure
{
public:
    explicit UsageError(const std::string& text) : Failure(ExitCode::Usage, text) {}
};

} // namespace command_line
