#pragma once

#include "tests/support/visa/serial_peer.h"
#include "tests/support/visa/tcp_peer.h"
#include "tests/support/visa/visa_fixture.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>

namespace kvxtest
{

inline constexpr ViUInt32 kShortMs = 20;
inline constexpr ViUInt32 kLongMs = 60000;
inline constexpr std::size_t kMebibyte = 1048576;

/// What an action that waits in a session gives when another thread terminates it.
template <class Action>
ViStatus statusOnTerminate(ViSession session, Action action)
{
    std::atomic<ViStatus> status{VI_SUCCESS};
    std::atomic<bool> isOver = false;
    std::thread waiting([&] {
        status = action();
        isOver = true;
    });
    // The first may come before the action waits.
    for (; !isOver; std::this_thread::sleep_for(std::chrono::milliseconds(1)))
        EXPECT_EQ(viTerminate(session, VI_NULL, VI_NULL), VI_SUCCESS);
    waiting.join();
    return status;
}

/// A session with one peer, that waits long.
template <class Peer>
class VisaSession : public VisaTest
{
protected:
    void SetUp() override
    {
        VisaTest::SetUp();
        session_ = open(peer_.resource());
        set(VI_ATTR_TMO_VALUE, kLongMs);
    }

    void set(ViAttr attribute, ViAttrState value) { ASSERT_EQ(viSetAttribute(session_, attribute, value), VI_SUCCESS); }

    /// What an action that waits in the session gives when another thread closes it.
    template <class Action>
    ViStatus statusOnClose(Action action)
    {
        std::atomic<ViStatus> status{VI_SUCCESS};
        std::thread waiting([&] { status = action(); });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(viClose(session_), VI_SUCCESS);
        waiting.join();
        return status;
    }

    Peer peer_;
    ViSession session_ = VI_NULL;
};

using VisaSerial = VisaSession<SerialPeer>;

/// Its connection has been accepted.
class VisaSocket : public VisaSession<TcpPeer>
{
protected:
    void SetUp() override
    {
        VisaSession::SetUp();
        peer_.accept();
    }

    void endAt(char terminator)
    {
        set(VI_ATTR_TERMCHAR, static_cast<ViByte>(terminator));
        set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
    }
};

} // namespace kvxtest
