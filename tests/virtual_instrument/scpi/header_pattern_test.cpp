#include "virtual_instrument/scpi/header_pattern.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxvirtual;
using Kind = HeaderMatch::Kind;

HeaderMatch match(std::string_view pattern, std::string_view message)
{
    const auto units = parseMessage(message);
    return HeaderPattern(pattern).match(units.at(0));
}

TEST(HeaderPattern, MatchesShortAndLongFormIgnoringCaseAndNothingBetween)
{
    for (const auto* const header : {"SYST:ERR?", "SYSTem:ERRor?", "system:err?", ":SYST:ERROR?"})
        EXPECT_EQ(match("SYSTem:ERRor?", header).kind, Kind::Full) << header;
    for (const auto* const header : {"SYSTE:ERR?", "SYS:ERR?", "SYST:ERRO?", "SYST:ERR", "SYST?", "SYST:ERR:NEXT?"})
        EXPECT_EQ(match("SYSTem:ERRor?", header).kind, Kind::None) << header;
}

TEST(HeaderPattern, TakesFurtherSpellings)
{
    for (const auto* const header : {"INST:SEL CH1", "INST:SELECT CH1", "INST:SELE CH1", "INSTRUMENT:sele CH1"})
        EXPECT_EQ(match("INSTrument:SELect|SELE", header).kind, Kind::Full) << header;
    EXPECT_EQ(match("INSTrument:SELect|SELE", "INST:SELEC CH1").kind, Kind::None);
}

TEST(HeaderPattern, ReadsTheChannelSuffix)
{
    EXPECT_EQ(match("SOURce<n>:VOLTage?", "SOUR6:VOLT?").suffix, 6);
    EXPECT_EQ(match("SOURce<n>:VOLTage?", "SOUR:VOLT?").suffix, 1);
    for (const auto* const header : {"SOUR0:VOLT?", "SOUR7:VOLT?", "SOUR99999999999999999999:VOLT?", "SOUR1:VOLT1?"})
        EXPECT_EQ(match("SOURce<n>:VOLTage?", header).kind, Kind::BadSuffix) << header;
}

TEST(HeaderPattern, MatchesCommonCommands)
{
    EXPECT_EQ(match("*IDN?", "*idn?").kind, Kind::Full);
    EXPECT_EQ(match("*IDN?", "*IDN").kind, Kind::None);
    EXPECT_EQ(match("*IDN?", "IDN?").kind, Kind::None);
}

} // namespace
