#include "tests/support/driver/driver_end_to_end.h"
#include "tests/support/held_allocations.h"
#include "tests/support/open_descriptors.h"

#include <string>

namespace kvxtest
{
namespace
{

/// What a process holds.
struct Holdings
{
    std::size_t allocations = heldAllocations();
    std::size_t descriptors = openDescriptors();

    bool operator==(const Holdings&) const = default;
};

void PrintTo(const Holdings& holdings, std::ostream* stream)
{
    *stream << holdings.allocations << " allocations, " << holdings.descriptors << " descriptors";
}

/// Sessions until what is made on first use is there, the session service's 64 tables included.
constexpr int kFirstSessions = 100;

void openAndClose(std::string resource, const char* options)
{
    ViSession vi = VI_NULL;
    ASSERT_EQ(KVX2800T_InitWithOptions(resource.data(), VI_FALSE, VI_FALSE, options, &vi), VI_SUCCESS);
    ASSERT_EQ(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel3", 1.0), VI_SUCCESS);
    ASSERT_EQ(KVX2800T_close(vi), VI_SUCCESS);
}

TEST(SessionLifetime, TenThousandSimulatedSessionsLeaveNothingBehind)
{
    const auto openMany = [](int count) {
        for (int i = 0; i < count; ++i)
            ASSERT_NO_FATAL_FAILURE(openAndClose("", "Simulate=1, QueryInstrStatus=1, DriverSetup=Model:KVX2833T"));
    };
    openMany(kFirstSessions);
    const Holdings before;
    openMany(10'000);
    EXPECT_EQ(Holdings(), before);
}

TEST(SessionLifetime, TenThousandConnectionsLeaveNothingBehind)
{
    const VirtualInstrumentProcess instrument;
    const auto openMany = [&instrument](int count, const char* options) {
        for (int i = 0; i < count; ++i)
            ASSERT_NO_FATAL_FAILURE(openAndClose(instrument.resource(), options));
    };
    openMany(kFirstSessions, "QueryInstrStatus=1");
    const Holdings before;
    openMany(200, "QueryInstrStatus=1");
    openMany(9'800, "");
    EXPECT_EQ(Holdings(), before);
}

TEST(SessionLifetime, SessionsThatTurnSimulatedLeaveNothingBehind)
{
    const VirtualInstrumentProcess instrument;
    const auto turnMany = [&instrument](int count) {
        for (int i = 0; i < count; ++i) {
            ViSession vi = VI_NULL;
            std::string resource = instrument.resource();
            ASSERT_EQ(KVX2800T_init(resource.data(), VI_FALSE, VI_FALSE, &vi), VI_SUCCESS);
            ASSERT_EQ(KVX2800T_SetAttributeViBoolean(vi, "", KVX2800T_ATTR_SIMULATE, VI_TRUE), VI_SUCCESS);
            ASSERT_EQ(KVX2800T_close(vi), VI_SUCCESS);
        }
    };
    turnMany(kFirstSessions);
    const Holdings before;
    turnMany(50);
    EXPECT_EQ(Holdings(), before);
}

TEST(SessionLifetime, RefusedCallsLeaveNothingBehind)
{
    ViSession vi = VI_NULL;
    char resource[] = "";
    ASSERT_EQ(KVX2800T_InitWithOptions(resource, VI_FALSE, VI_FALSE, "Simulate=1", &vi), VI_SUCCESS);
    const auto refuseMany = [vi](int count) {
        for (int i = 0; i < count; ++i) {
            ViReal64 volts = 0.0;
            EXPECT_LT(KVX2800T_ConfigureVoltageLevel(vi, "OutputChannel1-9", 1.0), 0);
            EXPECT_LT(KVX2800T_SetAttributeViInt32(vi, "OutputChannel3", KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, 2), 0);
            EXPECT_LT(KVX2800T_GetAttributeViReal64(vi, "", 0, &volts), 0);
            EXPECT_LT(KVX2800T_Measure(vi, "OutputChannel3", 7, &volts), 0);
            EXPECT_EQ(recordedError(vi).code, status(0xBFFA0067));
        }
    };
    refuseMany(10);
    const Holdings before;
    refuseMany(500);
    EXPECT_EQ(Holdings(), before);
    EXPECT_EQ(KVX2800T_close(vi), VI_SUCCESS);
}

} // namespace
} // namespace kvxtest
