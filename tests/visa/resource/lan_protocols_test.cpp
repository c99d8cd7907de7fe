#include "visa/resource/lan_protocols.h"

#include <gtest/gtest.h>

namespace
{

using visa::lanProtocols;

TEST(LanProtocols, NamesOfVxi11AreServedByNothingElse)
{
    for (const char* name : {"inst0", "INST0", "Inst", "gpib0,5", "GPIB0,5,96", "vxi0,24", "VXI", "instrument"}) {
        EXPECT_TRUE(lanProtocols(name).vxi11) << name;
        EXPECT_FALSE(lanProtocols(name).hislip) << name;
    }
}

TEST(LanProtocols, NamesOfHislipAreServedByNothingElse)
{
    for (const char* name : {"hislip0", "HiSLIP1", "HISLIP", "hislip0_usb"}) {
        EXPECT_FALSE(lanProtocols(name).vxi11) << name;
        EXPECT_TRUE(lanProtocols(name).hislip) << name;
    }
}

TEST(LanProtocols, AnyOtherNameLeavesBoth)
{
    for (const char* name : {"", "ins", "hisli", "dev0", "xinst0", "COM1"}) {
        EXPECT_TRUE(lanProtocols(name).vxi11) << name;
        EXPECT_TRUE(lanProtocols(name).hislip) << name;
    }
}

} // namespace
