#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>

namespace panel
{

/// What waits to be sent to one page. Messages keep their order and are all sent; of the instrument's state only the
/// newest is, so that a page that is slow is behind by one message and not by minutes.
class Outbox
{
public:
    using Message = std::shared_ptr<const std::string>;

    /// A page that leaves that much behind is not read by anybody.
    static constexpr std::size_t kMostBytes = std::size_t{1} << 20;

    /// False when there is no room for it.
    bool add(Message message)
    {
        bytes_ += message->size();
        messages_.push_back(std::move(message));
        return bytes_ <= kMostBytes;
    }

    /// In place of the state that waits.
    void setState(Message state) { state_ = std::move(state); }

    /// What is to be sent next; null when nothing waits.
    Message take()
    {
        if (messages_.empty())
            return std::move(state_);
        Message message = std::move(messages_.front());
        messages_.pop_front();
        bytes_ -= message->size();
        return message;
    }

private:
    std::deque<Message> messages_;
    std::size_t bytes_ = 0;
    Message state_;
};

} // namespace panel
