#include "runtime/kvx2800t_driver_session.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/driver/api_fixture.h"

#include <new>

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

TEST_F(OutOfMemory, ForTheSessionIsRecordedForOneThatAsksForSafeErrors)
{
    EXPECT_EQ(initWithout(sizeof(KVX2800TDriverSession), "DriverSetup=SafeErrors:1"), kOutOfMemory);
    expectRecordedWithoutSession();
}

TEST_F(OutOfMemory, ForTheTextsIsRecordedForASessionThatAsksForSafeErrors)
{
    const std::string padding(kLongText, 'x');
    EXPECT_EQ(initWithout(kLongText, "DriverSetup=SafeErrors:1,Note:" + padding), kOutOfMemory);
    expectRecordedWithoutSession();
}

TEST_F(OutOfMemory, IsAnExceptionForEveryOtherSession)
{
    const std::string padding(kLongText, 'x');
    for (const char* const keys : {"Model:KVX2833T", "Profile:Bench,SafeErrors:0", "DetailedErrors:1"}) {
        EXPECT_THROW(initWithout(sizeof(KVX2800TDriverSession), std::string("DriverSetup=") + keys), std::bad_alloc);
        EXPECT_THROW(initWithout(kLongText, std::string("DriverSetup=") + keys + ",Note:" + padding), std::bad_alloc);
        EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
    }
    EXPECT_THROW(initWithout(kLongText, "SafeErrors=1," + padding), std::bad_alloc);
    EXPECT_EQ(timesRecorded(), 0U);
}

} // namespace
