#include "virtual_instrument/transport/standard_input.h"

#include <array>
#include <memory>
#include <unistd.h>
#include <utility>

namespace kvxvirtual
{
namespace
{

class StandardInput : public std::enable_shared_from_this<StandardInput>
{
public:
    StandardInput(asio::io_context& context, std::function<void()> action)
        : stream_(context, STDIN_FILENO), action_(std::move(action))
    {
    }

    /// Waiting first leaves the descriptor in blocking mode, which a terminal shares with the shell. A file cannot be
    /// waited for and never blocks, so it is read whatever the wait says.
    void drain()
    {
        stream_.async_wait(asio::posix::stream_descriptor::wait_read,
                           [self = shared_from_this()](asio::error_code error) {
                               if (error != asio::error::operation_aborted)
                                   self->read();
                           });
    }

private:
    void read()
    {
        std::array<char, 4096> dropped{};
        asio::error_code error;
        stream_.read_some(asio::buffer(dropped), error);
        if (error)
            return action_();
        drain();
    }

    asio::posix::stream_descriptor stream_;
    std::function<void()> action_;
};

} // namespace

void whenStandardInputEnds(asio::io_context& context, std::function<void()> action)
{
    std::make_shared<StandardInput>(context, std::move(action))->drain();
}

} // namespace kvxvirtual
