#include "tests/support/visa/tcp_peer.h"
#include "tests/support/visa/visa_fixture.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace
{

using kvxtest::TcpPeer;

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

class VisaExhaustion : public kvxtest::VisaTest
{
};

TEST_F(VisaExhaustion, OfTheHostIsLackOfResources)
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
