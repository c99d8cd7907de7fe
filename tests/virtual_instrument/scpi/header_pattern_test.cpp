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
        EXPECT_EQ(Kind::Full, match("SYSTem:ERRor?", header).kind) << header;
    for (const auto* const header : {"SYSTE:ERR?", "SYS:ERR?", "SYST:ERRO?", "SYST:ERR", "SYST?", "SYST:ERR:NEXT?"})
        EXPECT_EQ(Kind::None, match("SYSTem:ERRor?", header).kind) << header;
}

TEST(HeaderPattern, TakesFurtherSpellings)
{
    for (const auto* const header : {"INST:SEL CH1", "INST:SELECT CH1", "INST:SELE CH1", "INSTRUMENT:sele CH1"})
        EXPECT_EQ(Kind::Full, match("INSTrument:SELect|SELE", header).kind) << header;
    EXPECT_EQ(Kind::None, match("INSTrument:SELect|SELE", "INST:SELEC CH1").kind);
}

TEST(HeaderPattern, ReadsTheChannelSuffix)
{
    EXPECT_EQ(6, match("SOURce<n>:VOLTage?", "SOUR6:VOLT?").suffix);
    EXPECT_EQ(1, match("SOURce<n>:VOLTage?", "SOUR:VOLT?").suffix);
    for (const auto* const header : {"SOUR0:VOLT?", "SOUR7:VOLT?", "SOUR99999999999999999999:VOLT?", "SOUR1:VOLT1?"})
        EXPECT_EQ(Kind::BadSuffix, match("SOURce<n>:VOLTage?", header).kind) << header;
}

TEST(HeaderPattern, MatchesCommonCommands)
{
    EXPECT_EQ(Kind::Full, match("*IDN?", "*idn?").kind);
    EXPECT_EQ(Kind::None, match("*IDN?", "*IDN").kind);
    EXPECT_EQ(Kind::None, match("*IDN?", "IDN?").kind);
}

} // namespace
