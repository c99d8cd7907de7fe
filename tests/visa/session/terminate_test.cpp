#include "tests/support/visa/session_fixtures.h"

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using namespace kvxtest;

/// The same on a socket and on a serial line.
template <class Peer>
class VisaTerminate : public VisaSession<Peer>
{
protected:
    void SetUp() override
    {
        VisaSession<Peer>::SetUp();
        if constexpr (std::is_same_v<Peer, TcpPeer>)
            this->peer_.accept();
        this->set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    }
};

using Peers = testing::Types<TcpPeer, SerialPeer>;
TYPED_TEST_SUITE(VisaTerminate, Peers);

TYPED_TEST(VisaTerminate, EndsAReadWhoseBytesStayForTheNext)
{
    this->peer_.send("ab");
    std::array<ViByte, 10> buffer{};
    ViUInt32 count = 0;
    const auto reading = [&] { return viRead(this->session_, buffer.data(), 10, &count); };
    // The bytes may come after the end of the first.
    while (count == 0)
        EXPECT_EQ(statusOnTerminate(this->session_, reading), VI_ERROR_ABORT);
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + count), "ab");
    this->peer_.send("c\n");
    count = 0;
    EXPECT_GE(reading(), VI_SUCCESS);
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + count), "abc\n");
}

TYPED_TEST(VisaTerminate, EndsAWriteThatNobodyTakes)
{
    const std::vector<ViByte> bytes(16 * kMebibyte, 'x');
    ViUInt32 count = 0;
    const auto status = statusOnTerminate(this->session_, [&] {
        return viWrite(this->session_, bytes.data(), static_cast<ViUInt32>(bytes.size()), &count);
    });
    EXPECT_EQ(status, VI_ERROR_ABORT);
    EXPECT_LT(count, bytes.size());
}

TEST_F(VisaSocket, TerminateEndsTheWaitForALockAndNotTheLock)
{
    const ViSession holder = open(peer_.resource());
    ASSERT_EQ(viLock(holder, VI_EXCLUSIVE_LOCK, kLongMs, nullptr, nullptr), VI_SUCCESS);
    for (const ViAccessMode kind : {VI_EXCLUSIVE_LOCK, VI_SHARED_LOCK}) {
        std::array<ViChar, 256> key{};
        const auto status =
            statusOnTerminate(session_, [&] { return viLock(session_, kind, kLongMs, nullptr, key.data()); });
        EXPECT_EQ(status, VI_ERROR_ABORT) << kind;
    }
    EXPECT_EQ(viUnlock(holder), VI_SUCCESS);
    EXPECT_EQ(viLock(session_, VI_EXCLUSIVE_LOCK, VI_TMO_IMMEDIATE, nullptr, nullptr), VI_SUCCESS);
}

TYPED_TEST(VisaTerminate, EndsNothingThatBeginsLater)
{
    EXPECT_EQ(viTerminate(this->session_, VI_NULL, VI_NULL), VI_SUCCESS);
    this->set(VI_ATTR_TMO_VALUE, kShortMs);
    EXPECT_EQ(read(this->session_, 10), (ReadResult{VI_ERROR_TMO, ""}));
    this->set(VI_ATTR_TMO_VALUE, kLongMs);
    this->peer_.send("a\n");
    EXPECT_EQ(read(this->session_, 10).bytes, "a\n");
}

TEST_F(VisaSocket, TerminateEndsNothingOfAnotherSession)
{
    const ViSession other = open(peer_.resource());
    ASSERT_EQ(viSetAttribute(other, VI_ATTR_TMO_VALUE, kShortMs), VI_SUCCESS);
    std::atomic<bool> isOver = false;
    std::thread terminating([&] {
        while (!isOver)
            EXPECT_EQ(viTerminate(session_, VI_NULL, VI_NULL), VI_SUCCESS);
    });
    EXPECT_EQ(read(other, 10), (ReadResult{VI_ERROR_TMO, ""}));
    isOver = true;
    terminating.join();
}

} // namespace
