#include "tests/support/visa/session_fixtures.h"

#include <array>

namespace
{

using namespace kvxtest;

class VisaSessions : public VisaTest
{
protected:
    TcpPeer peer_;
};

TEST_F(VisaSessions, EachResourceManagerSessionIsItsOwn)
{
    ViSession second = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&second), VI_SUCCESS);
    EXPECT_NE(second, manager_);
    EXPECT_EQ(viClose(second), VI_SUCCESS);
}

TEST_F(VisaSessions, HandlesAreNotReused)
{
    ViSession last = manager_;
    for (int i = 0; i < 3; ++i) {
        const ViSession session = open(peer_.resource());
        EXPECT_GT(session, last);
        last = session;
        EXPECT_EQ(viClose(session), VI_SUCCESS);
    }
}

TEST_F(VisaSessions, ClosingNothingIsAWarning)
{
    EXPECT_EQ(viClose(VI_NULL), VI_WARN_NULL_OBJECT);
    EXPECT_EQ(viClose(VI_NULL), 0x3FFF0082);
}

TEST_F(VisaSessions, StaleAndUnknownHandlesAreRefused)
{
    const ViSession stale = open(peer_.resource());
    ASSERT_EQ(viClose(stale), VI_SUCCESS);
    for (const ViSession session : {stale, ViSession{0xFFFFFFF0}, ViSession{VI_NULL}}) {
        std::array<ViByte, 4> buffer{};
        ViUInt32 value = 17;
        ViSession opened = 17;
        EXPECT_EQ(viOpen(session, "ASRL1", VI_NULL, 0, &opened), VI_ERROR_INV_OBJECT);
        EXPECT_EQ(opened, static_cast<ViSession>(VI_NULL));
        EXPECT_EQ(viRead(session, buffer.data(), 4, &value), VI_ERROR_INV_OBJECT);
        EXPECT_EQ(value, 0U);
        EXPECT_EQ(viWrite(session, buffer.data(), 4, &value), VI_ERROR_INV_OBJECT);
        EXPECT_EQ(viSetBuf(session, VI_READ_BUF, 4), VI_ERROR_INV_OBJECT);
        EXPECT_EQ(viClear(session), VI_ERROR_INV_OBJECT);
        EXPECT_EQ(viSetAttribute(session, VI_ATTR_TMO_VALUE, 4), VI_ERROR_INV_OBJECT);
        EXPECT_EQ(viGetAttribute(session, VI_ATTR_TMO_VALUE, &value), VI_ERROR_INV_OBJECT);
    }
    EXPECT_EQ(viClose(stale), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(static_cast<ViUInt32>(VI_ERROR_INV_OBJECT), 0xBFFF000EU);
}

TEST_F(VisaSessions, ClosingAResourceManagerClosesItsSessionsAndNoOthers)
{
    ViSession other = VI_NULL;
    ASSERT_EQ(viOpenDefaultRM(&other), VI_SUCCESS);
    const ViSession first = open(peer_.resource());
    const ViSession second = open(peer_.resource());
    ViSession stays = VI_NULL;
    ASSERT_EQ(viOpen(other, peer_.resource().c_str(), VI_NULL, 0, &stays), VI_SUCCESS);

    EXPECT_EQ(viClose(manager_), VI_SUCCESS);
    EXPECT_EQ(viClose(first), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viClose(second), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viClose(manager_), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(write(stays, "x"), VI_SUCCESS);
    EXPECT_EQ(viClose(other), VI_SUCCESS);
    EXPECT_EQ(viClose(stays), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaSessions, OnlyResourceManagersOpenAndOnlyOthersTransfer)
{
    const ViSession session = open(peer_.resource());
    ViSession opened = 17;
    EXPECT_EQ(viOpen(session, peer_.resource().c_str(), VI_NULL, 0, &opened), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(opened, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(read(manager_, 4).status, VI_ERROR_NSUP_OPER);
    EXPECT_EQ(write(manager_, "x"), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viSetBuf(manager_, VI_READ_BUF, 4), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viClear(manager_), VI_ERROR_NSUP_OPER);
}

TEST_F(VisaSessions, AccessModes)
{
    ViSession session = 17;
    for (const ViAccessMode mode : {2U, 8U, 1U | 2U, 0x80000000U}) {
        EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), mode, 0, &session), VI_ERROR_INV_ACC_MODE) << mode;
        EXPECT_EQ(session, static_cast<ViSession>(VI_NULL));
    }
    EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_LOAD_CONFIG, 0, &session), VI_WARN_CONFIG_NLOADED);
    EXPECT_EQ(write(session, "x"), VI_SUCCESS);
}

TEST_F(VisaSessions, ExclusiveLockKeepsOtherSessionsOut)
{
    const ViSession before = open(peer_.resource());
    ViSession holder = VI_NULL;
    ASSERT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, 0, &holder), VI_SUCCESS);
    ViSession second = 17;
    EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, 0, &second), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(second, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(write(before, "x"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(read(before, 1).status, VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viSetAttribute(before, VI_ATTR_TMO_VALUE, 1), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viSetBuf(before, VI_READ_BUF, 1), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viClear(before), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(attribute<ViUInt32>(before, VI_ATTR_TMO_VALUE), 2000U);
    EXPECT_EQ(write(holder, "x"), VI_SUCCESS);
    EXPECT_EQ(viClose(holder), VI_SUCCESS);
    EXPECT_EQ(write(before, "x"), VI_SUCCESS);
}

TEST_F(VisaSessions, NullOutputPointersAreRefused)
{
    EXPECT_EQ(viOpenDefaultRM(nullptr), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(viOpen(manager_, "ASRL1", VI_NULL, 0, nullptr), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(viStatusDesc(manager_, VI_SUCCESS, nullptr), VI_ERROR_INV_PARAMETER);
}

TEST_F(VisaSocket, CountsMayBeNull)
{
    std::array<ViByte, 4> buffer{};
    peer_.send("abcd");
    EXPECT_EQ(viRead(session_, buffer.data(), 4, nullptr), VI_SUCCESS_MAX_CNT);
    EXPECT_EQ(viWrite(session_, buffer.data(), 4, nullptr), VI_SUCCESS);
    EXPECT_EQ(peer_.receive(4), "abcd");
}

TEST_F(VisaSocket, NullBuffersAreRefused)
{
    ViUInt32 count = 7;
    EXPECT_EQ(viRead(session_, nullptr, 4, &count), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(viWrite(session_, nullptr, 4, &count), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(count, 0U);
}

} // namespace
