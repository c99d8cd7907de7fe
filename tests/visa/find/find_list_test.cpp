#include "tests/support/visa/serial_peer.h"
#include "tests/support/visa/visa_fixture.h"

#include <string>
#include <vector>

namespace
{

using namespace kvxtest;

constexpr ViChar kUntouched = 'x';

/// A list of two lines, whose numbers no host has.
class VisaFindList : public VisaTest
{
protected:
    void SetUp() override
    {
        VisaTest::SetUp();
        first_.publishAs("VISA_ASRL6401");
        second_.publishAs("VISA_ASRL6402");
    }

    ViStatus find(const std::string& expression)
    {
        return viFindRsrc(manager_, expression.c_str(), &list_, &count_, name_.data());
    }

    std::string next()
    {
        std::array<ViChar, VI_FIND_BUFLEN> name{};
        EXPECT_EQ(viFindNext(list_, name.data()), VI_SUCCESS);
        return name.data();
    }

    SerialPeer first_;
    SerialPeer second_;
    ViFindList list_ = 17;
    ViUInt32 count_ = 17;
    std::array<ViChar, VI_FIND_BUFLEN> name_{kUntouched};
};

TEST_F(VisaFindList, TellsEachNameOnceInOrder)
{
    ASSERT_EQ(find("asrl640[0-9]::instr"), VI_SUCCESS);
    EXPECT_EQ(count_, 2U);
    EXPECT_STREQ(name_.data(), "ASRL6401::INSTR");
    EXPECT_EQ(next(), "ASRL6402::INSTR");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(viFindNext(list_, name_.data()), VI_ERROR_RSRC_NFOUND);
        EXPECT_STREQ(name_.data(), "");
    }
    EXPECT_EQ(viClose(list_), VI_SUCCESS);
    EXPECT_EQ(viFindNext(list_, name_.data()), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaFindList, FoundNamesCanBeOpenedAndParsed)
{
    ASSERT_EQ(find("ASRL6402?*"), VI_SUCCESS);
    EXPECT_EQ(count_, 1U);
    EXPECT_EQ(write(open(name_.data()), "x"), VI_SUCCESS);
    EXPECT_EQ(second_.receive(1), "x");
    ViUInt16 type = 0;
    ViUInt16 number = 0;
    EXPECT_EQ(viParseRsrc(manager_, name_.data(), &type, &number), VI_SUCCESS);
    EXPECT_EQ(type, VI_INTF_ASRL);
    EXPECT_EQ(number, 6402);
}

TEST_F(VisaFindList, ConditionsNarrowTheList)
{
    ASSERT_EQ(find("ASRL?*{VI_ATTR_INTF_NUM > 6401 && VI_ATTR_INTF_NUM < 6403}"), VI_SUCCESS);
    EXPECT_EQ(count_, 1U);
    EXPECT_STREQ(name_.data(), "ASRL6402::INSTR");
}

TEST_F(VisaFindList, ListAndCountAreOptional)
{
    ASSERT_EQ(viFindRsrc(manager_, "ASRL640?*", nullptr, nullptr, name_.data()), VI_SUCCESS);
    EXPECT_STREQ(name_.data(), "ASRL6401::INSTR");
    const ViSession before = open(first_.resource());
    ASSERT_EQ(viFindRsrc(manager_, "ASRL640?*", nullptr, &count_, name_.data()), VI_SUCCESS);
    EXPECT_EQ(count_, 2U);
    EXPECT_EQ(open(second_.resource()), before + 1) << "no list was opened";
}

TEST_F(VisaFindList, ListsAreIndependent)
{
    ASSERT_EQ(find("ASRL640?*"), VI_SUCCESS);
    const ViFindList one = list_;
    ASSERT_EQ(find("ASRL640?*"), VI_SUCCESS);
    EXPECT_NE(list_, one);
    EXPECT_EQ(next(), "ASRL6402::INSTR");
    list_ = one;
    EXPECT_EQ(next(), "ASRL6402::INSTR");
}

TEST_F(VisaFindList, NothingFoundLeavesNothingOpen)
{
    EXPECT_EQ(find("ASRL6403::INSTR"), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(list_, static_cast<ViFindList>(VI_NULL));
    EXPECT_EQ(count_, 0U);
    EXPECT_STREQ(name_.data(), "");
    EXPECT_EQ(find("ASRL640?*{VI_ATTR_INTF_NUM == 1}"), VI_ERROR_RSRC_NFOUND);
    EXPECT_EQ(find("GPIB?*INSTR"), VI_ERROR_RSRC_NFOUND);
}

TEST_F(VisaFindList, BadExpressionsAreRefused)
{
    for (const char* expression : {"", "(", "ASRL[", "*", "ASRL?*{", "ASRL?*{VI_ATTR_TMO_VALUE == 1}"}) {
        list_ = 17;
        EXPECT_EQ(find(expression), VI_ERROR_INV_EXPR) << expression;
        EXPECT_EQ(list_, static_cast<ViFindList>(VI_NULL));
        EXPECT_EQ(count_, 0U);
    }
    EXPECT_EQ(viFindRsrc(manager_, nullptr, &list_, &count_, name_.data()), VI_ERROR_INV_EXPR);
    EXPECT_EQ(static_cast<ViUInt32>(VI_ERROR_INV_EXPR), 0xBFFF0010U);
}

TEST_F(VisaFindList, RoomForTheNameIsNeeded)
{
    EXPECT_EQ(viFindRsrc(manager_, "ASRL640?*", &list_, &count_, nullptr), VI_ERROR_INV_PARAMETER);
    ASSERT_EQ(find("ASRL640?*"), VI_SUCCESS);
    EXPECT_EQ(viFindNext(list_, nullptr), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(next(), "ASRL6402::INSTR");
}

TEST_F(VisaFindList, ClosingTheResourceManagerClosesItsLists)
{
    ASSERT_EQ(find("ASRL640?*"), VI_SUCCESS);
    EXPECT_EQ(viClose(manager_), VI_SUCCESS);
    EXPECT_EQ(viFindNext(list_, name_.data()), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viClose(list_), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(find("ASRL640?*"), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaFindList, IsNoManagerAndNoInstrument)
{
    ASSERT_EQ(find("ASRL640?*"), VI_SUCCESS);
    ViSession session = 17;
    ViFindList other = 17;
    ViUInt32 value = 0;
    EXPECT_EQ(viOpen(list_, "ASRL6401", VI_NULL, 0, &session), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viFindRsrc(list_, "ASRL640?*", &other, nullptr, name_.data()), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(write(list_, "x"), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viGetAttribute(list_, VI_ATTR_RM_SESSION, &value), VI_ERROR_NSUP_ATTR);
    EXPECT_EQ(viSetAttribute(list_, VI_ATTR_TMO_VALUE, 1), VI_ERROR_NSUP_ATTR);
    EXPECT_EQ(viFindNext(manager_, name_.data()), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viFindNext(open(first_.resource()), name_.data()), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viFindRsrc(open(first_.resource()), "?*", &other, nullptr, name_.data()), VI_ERROR_NSUP_OPER);
}

} // namespace
