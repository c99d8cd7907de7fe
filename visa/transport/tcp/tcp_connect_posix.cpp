#include "visa/host/close_on_exec_posix.h"
#include "visa/transport/tcp/tcp_connect.h"

#include <unistd.h>

#include <limits>

namespace visa
{
namespace
{

using asio::ip::tcp;

/// Closes a socket that nobody takes over.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return descriptor_; }
    void giveUp() { descriptor_ = -1; }

private:
    int descriptor_;
};

/// Moves a connected socket from the context that connected it to the other's and readies it for transfers.
asio::error_code adopt(tcp::socket& connected, const tcp& protocol, tcp::socket& adopted)
{
    asio::error_code error;
    adopted.close(error);
    Descriptor owned(connected.release(error));
    if (!error)
        adopted.assign(protocol, owned.get(), error);
    if (error)
        return error;
    owned.giveUp();
    adopted.native_non_blocking(false, error);
    return error;
}

} // namespace

std::optional<asio::error_code> connectTo(tcp::socket& socket, const tcp::endpoint& endpoint, const Deadline& deadline)
{
    asio::io_context context(1);
    tcp::socket connecting(context);
    asio::error_code error;
    connecting.open(endpoint.protocol(), error);
    if (error)
        return error;
    closeOnExec(connecting.native_handle());
    std::optional<asio::error_code> outcome;
    connecting.async_connect(endpoint, [&outcome](const asio::error_code& result) { outcome = result; });
    context.run_for(std::chrono::milliseconds(deadline.remainingMs(std::numeric_limits<int>::max())));
    return outcome && !*outcome ? adopt(connecting, endpoint.protocol(), socket) : outcome;
}

} // namespace visa
