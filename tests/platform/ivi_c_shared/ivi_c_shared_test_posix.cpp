#include "tests/support/allocation_failure.h"
#include "tests/support/platform/session_service_fixture.h"

#include <cstdlib>
#include <thread>

namespace
{

using kvxtest::Record;
using kvxtest::SessionService;
using kvxtest::take;

TEST_F(SessionService, WithoutMemoryForTheTextTheCodeIsKept)
{
    const std::string longText(1000, 'x');
    // A thread of its own, whose record has no room left over from an earlier text.
    std::thread other([&] {
        {
            const kvxtest::AllocationFailure failing(500);
            EXPECT_EQ(IviSession_SetError(session_, -3, longText.c_str()), IVI_ERROR_OUT_OF_MEMORY);
        }
        EXPECT_EQ(take(session_), (Record{-3, ""}));
        EXPECT_EQ(take(VI_NULL), (Record{-3, ""}));
    });
    other.join();
    EXPECT_EQ(static_cast<ViUInt32>(IVI_ERROR_OUT_OF_MEMORY), 0xBFFA0056U);
}

TEST_F(SessionService, WithoutMemoryThereIsNoNewSession)
{
    ViSession session = 17;
    {
        const kvxtest::AllocationFailure failing(1);
        EXPECT_EQ(IviSession_New(&session), IVI_ERROR_OUT_OF_MEMORY);
    }
    EXPECT_EQ(session, 17U);
    ASSERT_EQ(IviSession_New(&session), IVI_SUCCESS);
    EXPECT_EQ(IviSession_Dispose(session), IVI_SUCCESS);
}

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
