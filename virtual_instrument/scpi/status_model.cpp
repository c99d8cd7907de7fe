#include "virtual_instrument/scpi/status_model.h"

#include <utility>

namespace kvxvirtual
{
namespace
{

/// SCPI-99: the hundreds of an error name its class; positive codes are the device's own.
unsigned int eventStatusBitOf(int code)
{
    if (code <= -100 && code > -200)
        return event_status::kCommandError;
    if (code <= -200 && code > -300)
        return event_status::kExecutionError;
    if (code <= -400 && code > -500)
        return event_status::kQueryError;
    return event_status::kDeviceError;
}

ErrorEntry entryOf(ErrorCode code)
{
    return {static_cast<int>(code), std::string(errorText(code))};
}

} // namespace

void StatusModel::report(ErrorCode code)
{
    report(static_cast<int>(code), std::string(errorText(code)));
}

void StatusModel::report(int code, std::string text)
{
    setEventStatusBits(eventStatusBitOf(code));
    if (queue_.size() < kQueueLength) {
        queue_.push_back({code, std::move(text)});
        return;
    }
    setEventStatusBits(event_status::kDeviceError);
    queue_.back() = entryOf(ErrorCode::QueueOverflow);
}

ErrorEntry StatusModel::nextError()
{
    if (queue_.empty())
        return entryOf(ErrorCode::None);
    auto entry = std::move(queue_.front());
    queue_.pop_front();
    return entry;
}

void StatusModel::clear()
{
    queue_.clear();
    eventStatus_ = 0;
}

unsigned int StatusModel::takeEventStatus()
{
    return std::exchange(eventStatus_, 0U);
}

unsigned int StatusModel::statusByte(unsigned int others) const
{
    unsigned int byte = others;
    if (!queue_.empty())
        byte |= status_byte::kErrorAvailable;
    if ((eventStatus_ & eventEnable_) != 0)
        byte |= status_byte::kEventSummary;
    if ((byte & serviceEnable_) != 0)
        byte |= status_byte::kMasterSummary;
    return byte;
}

} // namespace kvxvirtual
