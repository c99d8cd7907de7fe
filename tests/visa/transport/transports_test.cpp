#include "tests/support/open_descriptors.h"
#include "tests/support/visa/serial_peer.h"
#include "tests/support/visa/tcp_peer.h"
#include "tests/support/visa/visa_fixture.h"

namespace
{

using namespace kvxtest;

class VisaDescriptors : public VisaTest
{
protected:
    void expectNoneInherited(const std::string& resource)
    {
        const auto before = descriptorInheritance();
        const ViSession session = open(resource);
        int opened = 0;
        for (const auto& [descriptor, isInherited] : descriptorInheritance()) {
            if (before.contains(descriptor))
                continue;
            ++opened;
            EXPECT_FALSE(isInherited) << descriptor;
        }
        EXPECT_GT(opened, 0);
        EXPECT_EQ(viClose(session), VI_SUCCESS);
    }

    /// Opens and closes often, and expects that not every session leaves one. The host makes some of its own, such as
    /// the event of a thread's first wait, and only when it needs them.
    void expectNoneLeft(const std::string& resource)
    {
        EXPECT_EQ(viClose(open(resource)), VI_SUCCESS);
        const std::size_t before = openDescriptors();
        constexpr std::size_t kSessions = 10;
        for (std::size_t i = 0; i < kSessions; ++i)
            EXPECT_EQ(viClose(open(resource)), VI_SUCCESS);
        EXPECT_LT(openDescriptors(), before + kSessions);
    }
};

TEST_F(VisaDescriptors, SocketIsNotInheritedByChildProcesses)
{
    const TcpPeer peer;
    expectNoneInherited(peer.resource());
}

TEST_F(VisaDescriptors, SerialPortIsNotInheritedByChildProcesses)
{
    const SerialPeer peer;
    expectNoneInherited(peer.resource());
}

TEST_F(VisaDescriptors, ClosedSessionsLeaveNone)
{
    const TcpPeer socket;
    expectNoneLeft(socket.resource());
    const SerialPeer line;
    expectNoneLeft(line.resource());
}

} // namespace
