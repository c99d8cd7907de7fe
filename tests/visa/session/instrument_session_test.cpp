#include "tests/support/visa/tcp_peer.h"
#include "tests/support/visa/visa_test_support.h"

#include <algorithm>
#include <array>
#include <vector>

namespace
{

using kvxtest::TcpPeer;

class VisaSessions : public kvxtest::VisaTest
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
    EXPECT_EQ(kvxtest::write(stays, "x"), VI_SUCCESS);
    EXPECT_EQ(viClose(other), VI_SUCCESS);
    EXPECT_EQ(viClose(stays), VI_ERROR_INV_OBJECT);
}

TEST_F(VisaSessions, OnlyResourceManagersOpenAndOnlyOthersTransfer)
{
    const ViSession session = open(peer_.resource());
    ViSession opened = 17;
    EXPECT_EQ(viOpen(session, peer_.resource().c_str(), VI_NULL, 0, &opened), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(opened, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(kvxtest::read(manager_, 4).status, VI_ERROR_NSUP_OPER);
    EXPECT_EQ(kvxtest::write(manager_, "x"), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viSetBuf(manager_, VI_READ_BUF, 4), VI_ERROR_NSUP_OPER);
}

TEST_F(VisaSessions, AccessModes)
{
    ViSession session = 17;
    for (const ViAccessMode mode : {2U, 8U, 1U | 2U, 0x80000000U}) {
        EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), mode, 0, &session), VI_ERROR_INV_ACC_MODE) << mode;
        EXPECT_EQ(session, static_cast<ViSession>(VI_NULL));
    }
    EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_LOAD_CONFIG, 0, &session), VI_WARN_CONFIG_NLOADED);
    EXPECT_EQ(kvxtest::write(session, "x"), VI_SUCCESS);
}

TEST_F(VisaSessions, ExclusiveLockKeepsOtherSessionsOut)
{
    const ViSession before = open(peer_.resource());
    ViSession holder = VI_NULL;
    ASSERT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, 0, &holder), VI_SUCCESS);
    ViSession second = 17;
    EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, 0, &second), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(second, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(kvxtest::write(before, "x"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(kvxtest::read(before, 1).status, VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viSetAttribute(before, VI_ATTR_TMO_VALUE, 1), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viSetBuf(before, VI_READ_BUF, 1), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(kvxtest::attribute<ViUInt32>(before, VI_ATTR_TMO_VALUE), 2000U);
    EXPECT_EQ(kvxtest::write(holder, "x"), VI_SUCCESS);
    EXPECT_EQ(viClose(holder), VI_SUCCESS);
    EXPECT_EQ(kvxtest::write(before, "x"), VI_SUCCESS);
}

TEST_F(VisaSessions, NullOutputPointersAreRefused)
{
    EXPECT_EQ(viOpenDefaultRM(nullptr), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(viOpen(manager_, "ASRL1", VI_NULL, 0, nullptr), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(viStatusDesc(manager_, VI_SUCCESS, nullptr), VI_ERROR_INV_PARAMETER);
}

TEST(VisaStatusDesc, EveryCodeHasATextOfItsOwn)
{
    std::vector<std::string> texts;
    for (const ViStatus status : {VI_SUCCESS,
                                  VI_SUCCESS_TERM_CHAR,
                                  VI_SUCCESS_MAX_CNT,
                                  VI_WARN_NULL_OBJECT,
                                  VI_WARN_NSUP_ATTR_STATE,
                                  VI_WARN_UNKNOWN_STATUS,
                                  VI_WARN_NSUP_BUF,
                                  VI_ERROR_SYSTEM_ERROR,
                                  VI_ERROR_INV_OBJECT,
                                  VI_ERROR_RSRC_LOCKED,
                                  VI_ERROR_RSRC_NFOUND,
                                  VI_ERROR_INV_RSRC_NAME,
                                  VI_ERROR_INV_ACC_MODE,
                                  VI_ERROR_TMO,
                                  VI_ERROR_NSUP_ATTR,
                                  VI_ERROR_NSUP_ATTR_STATE,
                                  VI_ERROR_ATTR_READONLY,
                                  VI_ERROR_ALLOC,
                                  VI_ERROR_INV_MASK,
                                  VI_ERROR_IO,
                                  VI_ERROR_NLISTENERS,
                                  VI_ERROR_NCIC,
                                  VI_ERROR_NSUP_OPER,
                                  VI_ERROR_ASRL_PARITY,
                                  VI_ERROR_ASRL_FRAMING,
                                  VI_ERROR_ASRL_OVERRUN,
                                  VI_ERROR_RSRC_BUSY,
                                  VI_ERROR_INV_PROT,
                                  VI_ERROR_LIBRARY_NFOUND,
                                  VI_ERROR_INTF_NUM_NCONFIG,
                                  VI_ERROR_CONN_LOST,
                                  VI_ERROR_NPERMISSION,
                                  VI_SUCCESS_DEV_NPRESENT,
                                  VI_WARN_CONFIG_NLOADED,
                                  VI_ERROR_CLOSING_FAILED,
                                  VI_ERROR_ABORT,
                                  VI_ERROR_OUTP_PROT_VIOL,
                                  VI_ERROR_INP_PROT_VIOL,
                                  VI_ERROR_BERR,
                                  VI_ERROR_INV_SETUP,
                                  VI_ERROR_INV_PARAMETER,
                                  VI_ERROR_NIMPL_OPER})
    {
        std::array<ViChar, 256> text{};
        EXPECT_EQ(viStatusDesc(VI_NULL, status, text.data()), VI_SUCCESS) << std::hex << status;
        EXPECT_STRNE(text.data(), "");
        EXPECT_EQ(std::count(texts.begin(), texts.end(), text.data()), 0) << text.data();
        texts.emplace_back(text.data());
    }
}

TEST(VisaStatusDesc, UnknownCodeIsNamedWithAWarning)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, static_cast<ViStatus>(0xBFFF0FFF), text.data()), VI_WARN_UNKNOWN_STATUS);
    EXPECT_STREQ(text.data(), "Unknown status code 0xBFFF0FFF.");
}

TEST(VisaStatusDesc, TimeoutText)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_TMO, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "The time-out passed before the operation was complete.");
}

} // namespace
