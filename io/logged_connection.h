#pragma once

#include "io/message_log.h"
#include "io/visa_io.h"

#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace InstLink
{

/// A connection that writes down what it sends and receives. It is made in place of one that does not, so that one
/// without a log pays nothing for those that have one.
template <class Connection>
class LoggedConnection : public Connection
{
public:
    template <class... Arguments>
    explicit LoggedConnection(std::shared_ptr<MessageLog> log, Arguments&&... arguments)
        : Connection(std::forward<Arguments>(arguments)...), log_(std::move(log))
    {
    }

protected:
    ViStatus send(std::string_view bytes) override
    {
        log_->sent(withoutEnd(bytes));
        const ViStatus status = Connection::send(bytes);
        if (status < 0)
            log_->sendingFailed(status);
        return status;
    }

    ViStatus receive(std::span<ViByte> buffer, ViUInt32& count) override
    {
        const ViStatus status = Connection::receive(buffer, count);
        if (status >= 0 || count > 0)
            log_->received(withoutEnd({reinterpret_cast<const char*>(buffer.data()), count}));
        if (status < 0)
            log_->receivingFailed(status);
        return status;
    }

private:
    std::string_view withoutEnd(std::string_view bytes) const
    {
        if (bytes.ends_with(static_cast<char>(this->termChar())))
            bytes.remove_suffix(1);
        return bytes;
    }

    std::shared_ptr<MessageLog> log_;
};

/// A connection with this log, or one without it when there is none.
template <class Connection, class... Arguments>
std::shared_ptr<VisaIO> makeConnectionWith(const std::shared_ptr<MessageLog>& log, Arguments&&... arguments)
{
    if (log != nullptr)
        return std::make_shared<LoggedConnection<Connection>>(log, std::forward<Arguments>(arguments)...);
    return std::make_shared<Connection>(std::forward<Arguments>(arguments)...);
}

} // namespace InstLink
