#pragma once

#include <optional>
#include <string>

namespace kvxtest
{

/// Sets an environment variable of this process, which programs that it starts inherit, or removes it, and puts it back
/// at the end. The value is in UTF-8 where the host's is a text. For tests with one thread.
class EnvironmentVariable
{
public:
    /// Null removes it.
    EnvironmentVariable(const char* name, const char* value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    std::string name_;
    std::optional<std::string> before_;
};

} // namespace kvxtest
