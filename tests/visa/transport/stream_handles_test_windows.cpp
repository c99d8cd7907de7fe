#include "tests/support/visa/serial_peer.h"
#include "tests/support/visa/tcp_peer.h"
#include "tests/support/visa/visa_test_support.h"

#include <windows.h>

#include <map>

namespace
{

using kvxtest::SerialPeer;
using kvxtest::TcpPeer;

/// Handles of this process and whether the programs that it starts inherit them.
std::map<std::uintptr_t, bool> openHandles()
{
    constexpr std::uintptr_t kHandlesLookedAt = 0x4000;
    constexpr std::uintptr_t kStep = 4;
    std::map<std::uintptr_t, bool> open;
    for (std::uintptr_t value = kStep; value < kHandlesLookedAt; value += kStep) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0)
            open[value] = (flags & HANDLE_FLAG_INHERIT) != 0;
    }
    return open;
}

class VisaHandles : public kvxtest::VisaTest
{
protected:
    void expectNoneInherited(const std::string& resource)
    {
        const auto before = openHandles();
        const ViSession session = open(resource);
        int opened = 0;
        for (const auto& [handle, inherited] : openHandles()) {
            if (before.contains(handle))
                continue;
            ++opened;
            EXPECT_FALSE(inherited) << handle;
        }
        EXPECT_GT(opened, 0);
        EXPECT_EQ(viClose(session), VI_SUCCESS);
    }

    /// Opens and closes often, and expects that not every session leaves a handle. The host makes some of its own, such
    /// as the event of a thread's first wait, and only when it needs them.
    void expectNoneLeft(const std::string& resource)
    {
        EXPECT_EQ(viClose(open(resource)), VI_SUCCESS);
        const std::size_t before = openHandles().size();
        constexpr std::size_t kSessions = 10;
        for (std::size_t i = 0; i < kSessions; ++i)
            EXPECT_EQ(viClose(open(resource)), VI_SUCCESS);
        EXPECT_LT(openHandles().size(), before + kSessions);
    }
};

TEST_F(VisaHandles, SocketIsNotInheritedByChildProcesses)
{
    const TcpPeer peer;
    expectNoneInherited(peer.resource());
}

TEST_F(VisaHandles, SerialPortIsNotInheritedByChildProcesses)
{
    const SerialPeer peer;
    expectNoneInherited(peer.resource());
}

TEST_F(VisaHandles, ClosedSessionsLeaveNone)
{
    const TcpPeer socket;
    expectNoneLeft(socket.resource());
    const SerialPeer line;
    expectNoneLeft(line.resource());
}

} // namespace
