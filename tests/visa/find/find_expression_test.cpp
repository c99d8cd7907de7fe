#include "visa/find/find_expression.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using visa::FindExpression;

bool expressionFits(const std::string& expression, const std::string& name)
{
    const auto parsed = FindExpression::parse(expression);
    EXPECT_TRUE(parsed.has_value()) << expression;
    const auto resource = visa::parseResourceName(name);
    EXPECT_TRUE(resource.has_value()) << name;
    return parsed && resource && parsed->fits(*resource);
}

bool holds(const std::string& condition, const std::string& name)
{
    return expressionFits("?*{" + condition + '}', name);
}

constexpr auto kSerial = "ASRL3::INSTR";
constexpr auto kSocket = "TCPIP2::192.0.2.7::5025::SOCKET";
constexpr auto kHislip = "TCPIP0::psu.example::hislip0,4881::INSTR";
constexpr auto kUsb = "USB1::0x0FF6::0x1234::SN-1::2::INSTR";

TEST(VisaFindExpression, NeedsBothTheNameAndTheCondition)
{
    EXPECT_TRUE(expressionFits("ASRL?*{VI_ATTR_INTF_NUM == 3}", kSerial));
    EXPECT_FALSE(expressionFits("ASRL?*{VI_ATTR_INTF_NUM == 4}", kSerial));
    EXPECT_FALSE(expressionFits("USB?*{VI_ATTR_INTF_NUM == 3}", kSerial));
    EXPECT_TRUE(expressionFits("asrl3::instr", kSerial));
}

TEST(VisaFindExpression, ReadsTheExamplesOfTheStandard)
{
    EXPECT_FALSE(expressionFits("GPIB[0-9]*::?*::?*::INSTR{VI_ATTR_GPIB_SECONDARY_ADDR > 0}", "GPIB0::1::2::INSTR"));
    EXPECT_TRUE(expressionFits("ASRL?*INSTR{VI_ATTR_ASRL_BAUD == 9600}", kSerial));
    EXPECT_FALSE(expressionFits("ASRL?*INSTR{VI_ATTR_ASRL_BAUD == 19200}", kSerial));
    EXPECT_FALSE(expressionFits("?*VXI?*INSTR{VI_ATTR_MANF_ID == 0xFF6 && !(VI_ATTR_VXI_LA == 0 || VI_ATTR_SLOT <= 0)}",
                                "VXI0::1::INSTR"));
}

TEST(VisaFindExpression, TellsWhatIsKnownWithoutOpening)
{
    EXPECT_TRUE(holds("VI_ATTR_RSRC_NAME == \"ASRL3::INSTR\"", "asrl3"));
    EXPECT_TRUE(holds("VI_ATTR_RSRC_CLASS == \"SOCKET\"", kSocket));
    EXPECT_TRUE(holds("VI_ATTR_RSRC_CLASS == \"INTFC\"", "GPIB0::INTFC"));
    EXPECT_TRUE(holds("VI_ATTR_INTF_TYPE == 4", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_INTF_TYPE == 6", kSocket));
    EXPECT_TRUE(holds("VI_ATTR_INTF_NUM == 2", kSocket));
    EXPECT_TRUE(holds("VI_ATTR_TCPIP_ADDR == \"192.0.2.7\"", kSocket));
    EXPECT_TRUE(holds("VI_ATTR_TCPIP_HOSTNAME == \"psu.example\"", kHislip));
    EXPECT_TRUE(holds("VI_ATTR_TCPIP_PORT == 5025", kSocket));
    EXPECT_TRUE(holds("VI_ATTR_TCPIP_DEVICE_NAME == \"hislip0\"", kHislip));
    EXPECT_TRUE(holds("VI_ATTR_MANF_ID == 0xFF6", kUsb));
    EXPECT_TRUE(holds("VI_ATTR_MODEL_CODE == 0X1234", kUsb));
    EXPECT_TRUE(holds("VI_ATTR_USB_SERIAL_NUM == \"SN-1\"", kUsb));
    EXPECT_TRUE(holds("VI_ATTR_USB_INTFC_NUM == 2", kUsb));
    EXPECT_TRUE(holds("VI_ATTR_ASRL_DATA_BITS == 8 && VI_ATTR_ASRL_STOP_BITS == 10", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_ASRL_PARITY == 0 && VI_ATTR_ASRL_FLOW_CNTRL == 0", kSerial));
}

TEST(VisaFindExpression, ComparisonsOfWhatAResourceLacksAreFalse)
{
    for (const char* condition : {"VI_ATTR_MANF_ID == 0", "VI_ATTR_MANF_ID != 0", "VI_ATTR_TCPIP_PORT < 9",
                                  "VI_ATTR_TCPIP_ADDR != \"\"", "VI_ATTR_SLOT >= -1", "VI_ATTR_PXI_SLOTPATH != \"x\""})
    {
        EXPECT_FALSE(holds(condition, kSerial)) << condition;
        EXPECT_TRUE(holds(std::string("!") + condition, kSerial)) << condition;
    }
    EXPECT_FALSE(holds("VI_ATTR_TCPIP_ADDR != \"x\"", kHislip)) << "the address of a name is not known";
    EXPECT_FALSE(holds("VI_ATTR_USB_INTFC_NUM >= 0", "USB0::0x1::0x2::A::INSTR"));
}

TEST(VisaFindExpression, NumbersHaveSixComparisonsAndTextsTwo)
{
    EXPECT_TRUE(holds("VI_ATTR_INTF_NUM==3", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_INTF_NUM!=4", kSerial));
    EXPECT_FALSE(holds("VI_ATTR_INTF_NUM != 3", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_INTF_NUM<4", kSerial));
    EXPECT_FALSE(holds("VI_ATTR_INTF_NUM < 3", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_INTF_NUM > -1", kSerial));
    EXPECT_FALSE(holds("VI_ATTR_INTF_NUM > 3", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_INTF_NUM <= 3", kSerial));
    EXPECT_FALSE(holds("VI_ATTR_INTF_NUM <= 2", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_INTF_NUM >= 3", kSerial));
    EXPECT_FALSE(holds("VI_ATTR_INTF_NUM >= 4294967295", kSerial));
    EXPECT_TRUE(holds("VI_ATTR_RSRC_CLASS != \"SOCKET\"", kSerial));
    EXPECT_FALSE(holds("VI_ATTR_RSRC_CLASS == \"instr\"", kSerial));
    for (const char* comparison : {"<", ">", "<=", ">="})
        EXPECT_FALSE(FindExpression::parse(std::string("?*{VI_ATTR_RSRC_CLASS ") + comparison + " \"A\"}"))
            << comparison;
}

TEST(VisaFindExpression, NotBindsClosestAndOrLeast)
{
    const std::string yes = "VI_ATTR_INTF_NUM == 3";
    const std::string no = "VI_ATTR_INTF_NUM == 4";
    EXPECT_TRUE(holds(yes + "||" + yes + "&&" + no, kSerial));
    EXPECT_TRUE(holds(no + "&&" + no + "||" + yes, kSerial));
    EXPECT_FALSE(holds("(" + yes + "||" + yes + ")&&" + no, kSerial));
    EXPECT_TRUE(holds("!" + no + "&&" + yes, kSerial));
    EXPECT_FALSE(holds("!(" + no + "||" + yes + ")", kSerial));
    EXPECT_TRUE(holds("!!" + yes, kSerial));
    EXPECT_TRUE(holds("!" + yes + "||" + yes, kSerial));
    EXPECT_TRUE(holds(" ( ( " + yes + " ) )\t\n", kSerial));
}

TEST(VisaFindExpression, BracesAreOrdinaryBehindABackslashAndInLists)
{
    EXPECT_TRUE(expressionFits("USB?*[{]?*", "USB0::0x1::0x2::a{b::INSTR"));
    EXPECT_TRUE(expressionFits("USB?*\\{?*{VI_ATTR_USB_SERIAL_NUM == \"a{}b\"}", "USB0::0x1::0x2::a{}b::INSTR"));
}

TEST(VisaFindExpression, RefusesWhatIsNotWellFormed)
{
    for (const char* condition : {"",
                                  " ",
                                  "VI_ATTR_INTF_NUM",
                                  "VI_ATTR_INTF_NUM ==",
                                  "== 3",
                                  "3 == VI_ATTR_INTF_NUM",
                                  "VI_ATTR_INTF_NUM = 3",
                                  "VI_ATTR_INTF_NUM == 3 &&",
                                  "&& VI_ATTR_INTF_NUM == 3",
                                  "VI_ATTR_INTF_NUM == 3 & VI_ATTR_INTF_NUM == 3",
                                  "VI_ATTR_INTF_NUM == 3 VI_ATTR_INTF_NUM == 3",
                                  "(VI_ATTR_INTF_NUM == 3",
                                  "VI_ATTR_INTF_NUM == 3)",
                                  "()",
                                  "!",
                                  "VI_ATTR_INTF_NUM == 3 !",
                                  "VI_ATTR_INTF_NUM == 0x",
                                  "VI_ATTR_INTF_NUM == -",
                                  "VI_ATTR_INTF_NUM == -0x1",
                                  "VI_ATTR_INTF_NUM == 3x",
                                  "VI_ATTR_INTF_NUM == 4294967296",
                                  "VI_ATTR_INTF_NUM == \"3\"",
                                  "VI_ATTR_RSRC_CLASS == 3",
                                  "VI_ATTR_RSRC_CLASS == \"INSTR",
                                  "VI_ATTR_RSRC_CLASS == INSTR",
                                  "VI_ATTR_NO_SUCH_NAME == 1",
                                  "vi_attr_intf_num == 3",
                                  "VI_ATTR_INTF_NUM == 3 || || VI_ATTR_INTF_NUM == 3"})
        EXPECT_FALSE(FindExpression::parse(std::string("?*{") + condition + '}')) << condition;
    for (const char* expression :
         {"?*{", "?*}{", "?*{VI_ATTR_INTF_NUM == 3} ", "{VI_ATTR_INTF_NUM == 3}", "?*{}", "?*{VI_ATTR_INTF_NUM == 3}x"})
        EXPECT_FALSE(FindExpression::parse(expression)) << expression;
}

TEST(VisaFindExpression, RefusesLocalAttributesAndThoseThatOnlyAnOpenSessionKnows)
{
    for (const char* attribute :
         {"VI_ATTR_TMO_VALUE", "VI_ATTR_TERMCHAR_EN", "VI_ATTR_RM_SESSION", "VI_ATTR_4882_COMPLIANT"})
        EXPECT_FALSE(FindExpression::parse(std::string("?*{") + attribute + " == 1}")) << attribute;
    for (const char* attribute : {"VI_ATTR_MANF_NAME", "VI_ATTR_MODEL_NAME"})
        EXPECT_FALSE(FindExpression::parse(std::string("?*{") + attribute + " == \"x\"}")) << attribute;
}

TEST(VisaFindExpression, LengthHasALimit)
{
    const std::string longest(FindExpression::kLongest, 'a');
    EXPECT_TRUE(FindExpression::parse(longest));
    EXPECT_FALSE(FindExpression::parse(longest + 'a'));
    EXPECT_TRUE(
        FindExpression::parse("?*{" + std::string(2000, '(') + "VI_ATTR_INTF_NUM == 3" + std::string(2000, ')') + '}'));
}

} // namespace
