#include "tests/support/visa/serial_peer.h"
#include "tests/support/visa/tcp_peer.h"
#include "tests/support/visa/visa_test_support.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <set>

namespace
{

using kvxtest::SerialPeer;
using kvxtest::TcpPeer;

constexpr int kDescriptorsLookedAt = 1024;

std::set<int> openDescriptors()
{
    std::set<int> open;
    for (int descriptor = 0; descriptor < kDescriptorsLookedAt; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) >= 0)
            open.insert(descriptor);
    }
    return open;
}

/// A call of the host that needs a descriptor.
enum class HostCall
{
    None,
    EpollCreate,
    Socket
};

thread_local HostCall failingCall = HostCall::None;
thread_local int failingError = 0;

/// While it lives, this call of the thread fails with this error, the libraries' included. The limit of the process is
/// left alone, since sanitizers need descriptors too.
class HostFailure
{
public:
    HostFailure(HostCall call, int error)
    {
        failingCall = call;
        failingError = error;
    }

    ~HostFailure() { failingCall = HostCall::None; }
    HostFailure(const HostFailure&) = delete;
    HostFailure& operator=(const HostFailure&) = delete;
};

template <class... Arguments>
int callHost(HostCall call, long number, Arguments... arguments)
{
    if (call != failingCall)
        return static_cast<int>(::syscall(number, arguments...));
    errno = failingError;
    return -1;
}

} // namespace

// The program's functions take the place of the C library's for libvisa as well.
extern "C" int epoll_create1(int flags) noexcept
{
    return callHost(HostCall::EpollCreate, SYS_epoll_create1, flags);
}

extern "C" int socket(int domain, int type, int protocol) noexcept
{
    return callHost(HostCall::Socket, SYS_socket, domain, type, protocol);
}

namespace
{

class VisaDescriptors : public kvxtest::VisaTest
{
protected:
    void expectNoneInherited(const std::string& resource)
    {
        const std::set<int> before = openDescriptors();
        const ViSession session = open(resource);
        int opened = 0;
        for (const int descriptor : openDescriptors()) {
            if (before.contains(descriptor))
                continue;
            ++opened;
            EXPECT_EQ(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC) << descriptor;
        }
        EXPECT_GT(opened, 0);
        EXPECT_EQ(viClose(session), VI_SUCCESS);
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

TEST_F(VisaDescriptors, ExhaustionOfTheHostIsLackOfResources)
{
    const TcpPeer peer;
    for (const HostCall call : {HostCall::EpollCreate, HostCall::Socket}) {
        for (const int error : {EMFILE, ENFILE, ENOMEM}) {
            const HostFailure failure(call, error);
            ViSession session = 17;
            EXPECT_EQ(viOpen(manager_, peer.resource().c_str(), VI_NULL, 0, &session), VI_ERROR_ALLOC)
                << static_cast<int>(call) << ' ' << error;
            EXPECT_EQ(session, static_cast<ViSession>(VI_NULL));
        }
    }
    EXPECT_EQ(viClose(open(peer.resource())), VI_SUCCESS);
}

} // namespace
