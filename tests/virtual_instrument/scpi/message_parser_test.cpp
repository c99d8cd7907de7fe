#include "virtual_instrument/scpi/message_parser.h"

#include <gmock/gmock.h>

#include <string>

namespace
{

using namespace kvxvirtual;
using testing::ElementsAre;

/// `SOUR3:VOLT? a|b` for a query with two parameters, or the number of the error.
std::string shown(const MessageUnit& unit)
{
    if (unit.error != ErrorCode::None)
        return std::to_string(static_cast<int>(unit.error));
    std::string text;
    for (const auto& node : unit.header)
        text += (text.empty() ? "" : ":") + std::string(node.name) + std::string(node.suffix);
    text += unit.isQuery ? "?" : "";
    for (std::size_t i = 0; i < unit.parameters.size(); ++i)
        text += (i == 0 ? " " : "|") + std::string(unit.parameters[i]);
    return text;
}

std::vector<std::string> unitsOf(std::string_view message)
{
    std::vector<std::string> units;
    for (const auto& unit : parseMessage(message))
        units.push_back(shown(unit));
    return units;
}

TEST(MessageParser, SplitsHeaderAndParameters)
{
    EXPECT_THAT(unitsOf(":SOUR3:VOLT 5.000000"), ElementsAre("SOUR3:VOLT 5.000000"));
    EXPECT_THAT(unitsOf("  OUTP:STAT \t CH1 , ON  "), ElementsAre("OUTP:STAT CH1|ON"));
    EXPECT_THAT(unitsOf("*ESR?"), ElementsAre("*ESR?"));
}

TEST(MessageParser, SeparatesTheSuffixFromTheName)
{
    const auto units = parseMessage("SOUR12:V2X?");
    ASSERT_EQ(units.size(), 1U);
    EXPECT_EQ(units[0].header[0].name, "SOUR");
    EXPECT_EQ(units[0].header[0].suffix, "12");
    EXPECT_EQ(units[0].header[1].name, "V2X");
}

TEST(MessageParser, LeavesEmptyUnitsOut)
{
    EXPECT_THAT(unitsOf(""), ElementsAre());
    EXPECT_THAT(unitsOf(" ;; \t;"), ElementsAre());
    EXPECT_THAT(unitsOf("*CLS;"), ElementsAre("*CLS"));
}

TEST(MessageParser, ContinuesFromTheParentOfTheHeaderBefore)
{
    EXPECT_THAT(unitsOf("SOUR1:VOLT 5;CURR 1"), ElementsAre("SOUR1:VOLT 5", "SOUR1:CURR 1"));
    EXPECT_THAT(unitsOf(":OUTP:OVP:VAL CH1,5;STAT CH1,ON;:OUTP:STAT CH1,ON"),
                ElementsAre("OUTP:OVP:VAL CH1|5", "OUTP:OVP:STAT CH1|ON", "OUTP:STAT CH1|ON"));
}

TEST(MessageParser, CommonCommandsAndUnreadableUnitsLeaveThePath)
{
    EXPECT_THAT(unitsOf("SOUR2:VOLT 5;*OPC?;CURR?"), ElementsAre("SOUR2:VOLT 5", "*OPC?", "SOUR2:CURR?"));
    EXPECT_THAT(unitsOf("SOUR2:VOLT 5;A::B;CURR?"), ElementsAre("SOUR2:VOLT 5", "-102", "SOUR2:CURR?"));
}

TEST(MessageParser, EveryMessageStartsAtTheRoot)
{
    EXPECT_THAT(unitsOf("SOUR2:VOLT 5"), ElementsAre("SOUR2:VOLT 5"));
    EXPECT_THAT(unitsOf("CURR?"), ElementsAre("CURR?"));
}

TEST(MessageParser, RespectsQuotedStrings)
{
    EXPECT_THAT(unitsOf("A \"x;y,z\",'a\"b';*CLS"), ElementsAre("A \"x;y,z\"|'a\"b'", "*CLS"));
    EXPECT_THAT(unitsOf("A \"say \"\"hi\"\"\""), ElementsAre("A \"say \"\"hi\"\"\""));
}

TEST(MessageParser, NamesWhatItCannotRead)
{
    EXPECT_THAT(unitsOf("A#B 1"), ElementsAre("-101"));
    EXPECT_THAT(unitsOf("A \xE4"), ElementsAre("-101"));
    for (const auto* const message : {":", "A:", "A::B", "::A", "?", "A?B", "A??", "1A", "*", "*1", "A:*IDN?", "A ,",
                                      "A 1,", "A 1,,2", "A \"open", "A x\"y\"", "A 'x'y", ":*CLS"})
        EXPECT_THAT(unitsOf(message), ElementsAre("-102")) << message;
}

TEST(MessageParser, DoesNotGrowWithEverDeeperRelativeHeaders)
{
    std::string message;
    for (int i = 0; i < 1000; ++i)
        message += "A:B;";
    for (const auto& unit : parseMessage(message))
        EXPECT_LE(unit.header.size(), 10U);
}

TEST(MessageParser, FindsTheQueryAmongTheUnits)
{
    EXPECT_TRUE(holdsQuery(parseMessage("*CLS;*ESR?")));
    EXPECT_FALSE(holdsQuery(parseMessage("*CLS;A \"?\"")));
}

} // namespace
