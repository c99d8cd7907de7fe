#include "tests/support/virtual_instrument/manual_instrument.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

TEST(Messages, EmptyOnesAreIgnored)
{
    ManualInstrument device;
    for (const auto* const message : {"", "\r", " ", ";", "\t;;\r"})
        EXPECT_EQ(device.errorOf(message), kNoError);
}

TEST(Messages, RepliesOfOneMessageAreJoinedAndFailuresSendNothing)
{
    ManualInstrument device;
    EXPECT_EQ(device.exchange("*OPC?;BAD?;*TST?"), "1;0\n");
    EXPECT_EQ(device.exchange("BAD?"), "");
    EXPECT_EQ(device.error(), "-113,\"Undefined header\"\n");
}

TEST(Parameters, ANumberTooSmallToRepresentIsZero)
{
    ManualInstrument device;
    for (const auto* const zero : {"1e-400", "-1e-400", "0.1e-99999999999999999999"}) {
        device.exchange("SOUR1:VOLT 5");
        EXPECT_EQ(device.errorOf(std::string("SOUR1:VOLT ") + zero), kNoError) << zero;
        EXPECT_EQ(device.exchange("SOUR1:VOLT?"), "0.000000\n") << zero;
    }
}

TEST(Errors, NameWhatIsWrongAndChangeNothing)
{
    struct Case
    {
        const char* message;
        const char* error;
    };
    const Case kCases[] = {
        {"SOUR1:VOLT$ 1", "-101,\"Invalid character\"\n"},
        {"SOUR1::VOLT 1", "-102,\"Syntax error\"\n"},
        {"SOUR1:VOLT \"1\"", "-104,\"Data type error\"\n"},
        {"SOUR1:VOLT ON", "-104,\"Data type error\"\n"},
        {"SOUR1:VOLT 1,2", "-108,\"Parameter not allowed\"\n"},
        {"*RST 1", "-108,\"Parameter not allowed\"\n"},
        {"SOUR1:VOLT", "-109,\"Missing parameter\"\n"},
        {"OUTP:STAT CH1", "-109,\"Missing parameter\"\n"},
        {"MEAS:ALL?", "-109,\"Missing parameter\"\n"},
        {"SOUR1:WATT 1", "-113,\"Undefined header\"\n"},
        {"MEAS:ALL CH1", "-113,\"Undefined header\"\n"},
        {"SOUR7:VOLT 1", "-114,\"Header suffix out of range\"\n"},
        {"SOUR0:VOLT?", "-114,\"Header suffix out of range\"\n"},
        {"OUTP1:STAT CH1,ON", "-114,\"Header suffix out of range\"\n"},
        {"SOUR1:VOLT 1x", "-121,\"Invalid character in number\"\n"},
        {"SOUR1:VOLT 1.2.3", "-121,\"Invalid character in number\"\n"},
        {"SOUR1:VOLT +", "-121,\"Invalid character in number\"\n"},
        {"SOUR1:VOLT 0x1", "-121,\"Invalid character in number\"\n"},
        {"OUTP:STAT CH7,ON", "-141,\"Invalid character data\"\n"},
        {"OUTP:STAT CH1,MAYBE", "-141,\"Invalid character data\"\n"},
        {"OUTP:STAT? ALL", "-141,\"Invalid character data\"\n"},
        {"OUTP:OVP:STAT ALL,ON", "-141,\"Invalid character data\"\n"},
        {"SOUR:MODE SERIES", "-141,\"Invalid character data\"\n"},
        {"SOUR:MODE 1", "-104,\"Data type error\"\n"},
        {"SOUR:MODE \"SER\"", "-104,\"Data type error\"\n"},
        {"OUTP:STAT CH1,2", "-224,\"Illegal parameter value\"\n"},
        {"MEAS:CURR:RATE CH1,63", "-224,\"Illegal parameter value\"\n"},
        {"SOUR1:VOLT nan", kOutOfRange},
        {"SOUR1:VOLT -INF", kOutOfRange},
        {"SOUR1:VOLT 1e999", kOutOfRange},
        {"SOUR1:VOLT 0.1e999999999999", kOutOfRange},
        {"SOUR1:VOLT 33.000001", kOutOfRange},
        {"SOUR1:VOLT -0.001", kOutOfRange},
        {"SOUR5:VOLT 1", kSettingsConflict},
    };
    ManualInstrument device;
    for (const auto& [message, error] : kCases)
        EXPECT_EQ(device.errorOf(message), error) << message;
    EXPECT_EQ(device.exchange("SOUR1:VOLT?;:OUTP:STAT? CH1;:SOUR:MODE?"), "0.000000;0;NORMAL\n");
    EXPECT_EQ(device.error(), kNoError);
}

} // namespace
