#include "tests/support/platform/session_service_fixture.h"

#include <cstdlib>

namespace
{

using kvxtest::Record;
using kvxtest::take;

/// Runs as the static clean-up of a driver, which is after the thread-local one of the main thread.
void useThreadErrorAtExit()
{
    const bool accepted = IviSession_SetError(VI_NULL, -4, "set too late to be kept") == IVI_SUCCESS;
    const bool isEmpty = take(VI_NULL) == Record{IVI_SUCCESS, ""};
    const bool cleared = IviSession_ClearError(VI_NULL) == IVI_SUCCESS;
    std::_Exit(accepted && isEmpty && cleared ? 0 : 1);
}

void exitWithAThreadError()
{
    IviSession_SetError(VI_NULL, -3, "long enough to be kept outside of the string object itself");
    if (std::atexit(useThreadErrorAtExit) == 0)
        std::exit(2); // NOLINT(concurrency-mt-unsafe): the process has this one thread
}

TEST(SessionServiceDeathTest, CleanUpAtExitFindsNoThreadErrorAndKeepsNone)
{
    EXPECT_EXIT(exitWithAThreadError(), testing::ExitedWithCode(0), "");
}

} // namespace
