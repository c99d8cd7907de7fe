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
    ViUInt16 status = 0;
    EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, 0, &second), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(second, static_cast<ViSession>(VI_NULL));
    EXPECT_EQ(write(before, "x"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(read(before, 1).status, VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viSetBuf(before, VI_READ_BUF, 1), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viClear(before), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viFlush(before, VI_IO_IN_BUF), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viReadSTB(before, &status), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viAssertTrigger(before, VI_TRIG_PROT_DEFAULT), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viSetAttribute(before, VI_ATTR_TMO_VALUE, 1), VI_SUCCESS);
    EXPECT_EQ(attribute<ViUInt32>(before, VI_ATTR_TMO_VALUE), 1U);
    EXPECT_EQ(attribute<ViAccessMode>(before, VI_ATTR_RSRC_LOCK_STATE), static_cast<ViAccessMode>(VI_EXCLUSIVE_LOCK));
    EXPECT_EQ(write(holder, "x"), VI_SUCCESS);
    EXPECT_EQ(viClose(holder), VI_SUCCESS);
    EXPECT_EQ(write(before, "x"), VI_SUCCESS);
}

TEST_F(VisaSessions, OpeningWaitsForTheLockAsLongAsItIsTold)
{
    ViSession holder = VI_NULL;
    ASSERT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, 0, &holder), VI_SUCCESS);
    ViSession second = 17;
    EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, kShortMs, &second), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(second, static_cast<ViSession>(VI_NULL));
    std::thread closer([holder] {
        std::this_thread::sleep_for(std::chrono::milliseconds(kShortMs));
        EXPECT_EQ(viClose(holder), VI_SUCCESS);
    });
    EXPECT_EQ(viOpen(manager_, peer_.resource().c_str(), VI_EXCLUSIVE_LOCK, kLongMs, &second), VI_SUCCESS);
    closer.join();
}

TEST_F(VisaSessions, LineOfALockedSerialPortIsNotForOthers)
{
    const SerialPeer line;
    const ViSession before = open(line.resource());
    const ViSession holder = open(line.resource());
    ASSERT_EQ(viLock(holder, VI_EXCLUSIVE_LOCK, VI_TMO_IMMEDIATE, nullptr, nullptr), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(before, VI_ATTR_ASRL_BAUD, 19200), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(viSetAttribute(before, VI_ATTR_ASRL_END_IN, VI_ASRL_END_NONE), VI_SUCCESS);
    EXPECT_EQ(viUnlock(holder), VI_SUCCESS);
    EXPECT_EQ(viSetAttribute(before, VI_ATTR_ASRL_BAUD, 19200), VI_SUCCESS);
}

TEST_F(VisaSessions, SharedLocksAreJoinedWithTheirKey)
{
    const ViSession first = open(peer_.resource());
    const ViSession second = open(peer_.resource());
    const ViSession third = open(peer_.resource());
    std::array<ViChar, 256> key{};
    ASSERT_EQ(viLock(first, VI_SHARED_LOCK, VI_TMO_IMMEDIATE, nullptr, key.data()), VI_SUCCESS);
    EXPECT_NE(std::string(key.data()), "");
    std::array<ViChar, 256> joined{};
    EXPECT_EQ(viLock(second, VI_SHARED_LOCK, VI_TMO_IMMEDIATE, key.data(), joined.data()), VI_SUCCESS);
    EXPECT_EQ(joined, key);
    EXPECT_EQ(write(first, "1"), VI_SUCCESS);
    EXPECT_EQ(write(second, "2"), VI_SUCCESS);
    EXPECT_EQ(write(third, "3"), VI_ERROR_RSRC_LOCKED);
    EXPECT_EQ(attribute<ViAccessMode>(third, VI_ATTR_RSRC_LOCK_STATE), static_cast<ViAccessMode>(VI_SHARED_LOCK));
    EXPECT_EQ(viLock(first, VI_SHARED_LOCK, VI_TMO_IMMEDIATE, "", joined.data()), VI_SUCCESS_NESTED_SHARED);
    EXPECT_EQ(viUnlock(first), VI_SUCCESS_NESTED_SHARED);
    EXPECT_EQ(viUnlock(first), VI_SUCCESS);
    EXPECT_EQ(viUnlock(first), VI_ERROR_SESN_NLOCKED);
    EXPECT_EQ(viClose(second), VI_SUCCESS);
    EXPECT_EQ(write(third, "3"), VI_SUCCESS);
}

TEST_F(VisaSessions, LockTakesAsMuchAsAKeyMayHave)
{
    const ViSession session = open(peer_.resource());
    std::array<ViChar, 256> key{};
    const std::string longest(255, 'k');
    const std::string overlong(256, 'k');
    EXPECT_EQ(viLock(session, VI_SHARED_LOCK, 0, overlong.c_str(), key.data()), VI_ERROR_INV_ACCESS_KEY);
    EXPECT_EQ(viLock(session, VI_SHARED_LOCK, 0, longest.c_str(), key.data()), VI_SUCCESS);
    EXPECT_EQ(key.data(), longest);
    EXPECT_EQ(viLock(session, VI_SHARED_LOCK, 0, "other", key.data()), VI_ERROR_INV_ACCESS_KEY);
}

TEST_F(VisaSessions, LockRefusesWhatItDoesNotKnow)
{
    const ViSession session = open(peer_.resource());
    std::array<ViChar, 256> key{'x'};
    for (const ViAccessMode type : {0U, 3U, 4U, 0xFFFFFFFFU})
        EXPECT_EQ(viLock(session, type, 0, nullptr, key.data()), VI_ERROR_INV_LOCK_TYPE);
    EXPECT_EQ(viLock(session, VI_SHARED_LOCK, 0, "key", nullptr), VI_ERROR_INV_PARAMETER);
    EXPECT_EQ(viLock(manager_, VI_EXCLUSIVE_LOCK, 0, nullptr, nullptr), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viUnlock(manager_), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(viLock(VI_NULL, VI_EXCLUSIVE_LOCK, 0, nullptr, nullptr), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viUnlock(VI_NULL), VI_ERROR_INV_OBJECT);
    EXPECT_EQ(viLock(session, VI_EXCLUSIVE_LOCK, 0, "ignored", key.data()), VI_SUCCESS);
    EXPECT_EQ(key[0], '\0');
    EXPECT_EQ(viLock(session, VI_EXCLUSIVE_LOCK, 0, nullptr, nullptr), VI_SUCCESS_NESTED_EXCLUSIVE);
}

TEST_F(VisaSessions, ClosingASessionEndsItsWaitForALock)
{
    const ViSession holder = open(peer_.resource());
    const ViSession waiting = open(peer_.resource());
    ASSERT_EQ(viLock(holder, VI_EXCLUSIVE_LOCK, 0, nullptr, nullptr), VI_SUCCESS);
    ViStatus status = VI_SUCCESS;
    std::thread waiter([&] { status = viLock(waiting, VI_EXCLUSIVE_LOCK, VI_TMO_INFINITE, nullptr, nullptr); });
    std::this_thread::sleep_for(std::chrono::milliseconds(kShortMs));
    EXPECT_EQ(viClose(waiting), VI_SUCCESS);
    waiter.join();
    EXPECT_EQ(status, VI_ERROR_INV_OBJECT);
    EXPECT_EQ(write(holder, "x"), VI_SUCCESS);
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
