#include "tests/support/time_limit.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdio>

namespace
{

std::array<char, 512> runningCase;

void endInCase(int signal)
{
    std::fprintf(stderr, "ended in %s\n", runningCase.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// The handler takes the place of the default action only: a sanitizer's report names the case by itself.
void nameCaseOn(int signal)
{
    const auto previous = std::signal(signal, endInCase);
    if (previous != SIG_DFL)
        std::signal(signal, previous);
}

/// An exception leaves AddressSanitizer with the stack frames that it has passed, until one is thrown from further up.
/// Tests that throw by the thousand fill its room, and each call in every test after them searches all of it.
void freePassedFrames()
{
    try {
        throw 0;
    } catch (int) {
        return;
    }
}

/// Of a program that crashes or hangs, the quiet output has no word of the case in which it did.
class RunningCase : public testing::EmptyTestEventListener
{
    void OnTestProgramStart(const testing::UnitTest& /*program*/) override
    {
        nameCaseOn(SIGABRT);
        nameCaseOn(SIGSEGV);
    }

    void OnTestStart(const testing::TestInfo& test) override
    {
        std::snprintf(runningCase.data(), runningCase.size(), "%s.%s", test.test_suite_name(), test.name());
        kvxtest::restartTimeLimit(endInCase);
        freePassedFrames();
    }
};

[[maybe_unused]] const bool kListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new RunningCase);
    return true;
}();

} // namespace
