#include "runtime/kvx2800t_driver_session.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/driver/api_fixture.h"

#include <array>
#include <string>

// What becomes of an init for which there is not enough memory.

namespace
{

using namespace kvxtest;
using testing::IsEmpty;

constexpr ViStatus kOutOfMemory = code(0xBFFA0056);
constexpr const char* kOutOfMemoryText = "Could not allocate necessary memory.";
constexpr std::size_t kLongText = std::size_t{1} << 20U;

class OutOfMemory : public ApiTest
{
public:
    /// Init where every allocation of so many bytes fails.
    ViStatus initWithout(std::size_t bytes, const std::string& options)
    {
        const AllocationFailure failure(bytes);
        return init(options, &vi);
    }

    void expectRecordedWithoutSession() const
    {
        EXPECT_EQ(vi, ViSession{VI_NULL});
        EXPECT_EQ(errorOf(kFirstSession), (ErrorEntry{kOutOfMemory, kOutOfMemoryText}));
        EXPECT_EQ(timesRecorded(), 1U);
        EXPECT_EQ(lockDepth(kFirstSession), 0U);
        EXPECT_THAT(calls("vi"), IsEmpty());
    }
};

/// Every kind of session: lack of memory is nothing that one must ask to have recorded.
constexpr std::array kSetups = {"Model:KVX2833T", "SafeErrors:1", "Profile:Bench,SafeErrors:0", "DetailedErrors:1"};

TEST_F(OutOfMemory, ForTheSessionIsRecorded)
{
    for (const char* const setup : kSetups) {
        startOver();
        EXPECT_EQ(initWithout(sizeof(KVX2800TDriverSession), std::string("DriverSetup=") + setup), kOutOfMemory);
        expectRecordedWithoutSession();
    }
}

TEST_F(OutOfMemory, ForTheTextsIsRecorded)
{
    const std::string padding(kLongText, 'x');
    for (const char* const setup : kSetups) {
        startOver();
        EXPECT_EQ(initWithout(kLongText, std::string("DriverSetup=") + setup + ",Note:" + padding), kOutOfMemory);
        expectRecordedWithoutSession();
    }
    startOver();
    EXPECT_EQ(initWithout(kLongText, "SafeErrors=1," + padding), kOutOfMemory);
    expectRecordedWithoutSession();
}

TEST_F(OutOfMemory, LeavesAHandleThatLeadsToNoSession)
{
    EXPECT_EQ(initWithout(kLongText, "DriverSetup=" + std::string(kLongText, 'x')), kOutOfMemory);
    EXPECT_EQ(KVX2800T_reset(kFirstSession), kInvalidSession);
    EXPECT_EQ(KVX2800T_close(kFirstSession), VI_SUCCESS);
    EXPECT_EQ(openIviSessions(), 1U);
}

TEST_F(OutOfMemory, InACallIsRecordedAndGivesTheLockBack)
{
    open("Simulate=0");
    std::string selector(kLongText, ' ');
    selector += "OutputChannel1, CH2";
    clearLog();
    ViStatus status = VI_SUCCESS;
    {
        const AllocationFailure failure(kLongText);
        status = KVX2800T_ConfigureOutputEnabled(vi, selector.c_str(), VI_TRUE);
    }
    EXPECT_EQ(status, kOutOfMemory);
    expectRecordedOnce(kOutOfMemory, kOutOfMemoryText);
}

} // namespace
