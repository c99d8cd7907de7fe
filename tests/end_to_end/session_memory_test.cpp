#include "tests/support/driver/session_memory.h"

#include <gtest/gtest.h>

namespace kvxtest
{
namespace
{

constexpr std::size_t kMostBytes = 16UL * 1024;

TEST(SessionMemory, ASimulatedSessionHoldsLessThanSixteenKibibytes)
{
    EXPECT_LT(bytesOfSimulatedSession(), kMostBytes);
}

TEST(SessionMemory, AConnectedSessionHoldsLessThanSixteenKibibytesBeyondVisasOwn)
{
    const VirtualInstrumentProcess instrument;
    EXPECT_LT(bytesOfConnectedSession(instrument), kMostBytes);
}

} // namespace
} // namespace kvxtest
