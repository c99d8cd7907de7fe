#include "tests/support/environment.h"

#include <cstdlib>

namespace kvxtest
{

EnvironmentVariable::EnvironmentVariable(const char* name, const char* value) : name_(name)
{
    const char* const before = std::getenv(name); // NOLINT(concurrency-mt-unsafe): tests with one thread
    if (before != nullptr)
        before_ = before;
    if (value == nullptr)
        ::unsetenv(name); // NOLINT(concurrency-mt-unsafe): tests with one thread
    else
        ::setenv(name, value, 1); // NOLINT(concurrency-mt-unsafe): tests with one thread
}

EnvironmentVariable::~EnvironmentVariable()
{
    if (before_)
        ::setenv(name_.c_str(), before_->c_str(), 1); // NOLINT(concurrency-mt-unsafe): tests with one thread
    else
        ::unsetenv(name_.c_str()); // NOLINT(concurrency-mt-unsafe): tests with one thread
}

} // namespace kvxtest
