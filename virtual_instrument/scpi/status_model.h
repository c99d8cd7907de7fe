#pragma once

#include "virtual_instrument/common/error_code.h"

#include <deque>
#include <string>

namespace kvxvirtual
{

/// Bits of the standard event status register (IEEE 488.2).
namespace event_status
{
inline constexpr unsigned int kOperationComplete = 1;
inline constexpr unsigned int kQueryError = 4;
inline constexpr unsigned int kDeviceError = 8;
inline constexpr unsigned int kExecutionError = 16;
inline constexpr unsigned int kCommandError = 32;
inline constexpr unsigned int kPowerOn = 128;
} // namespace event_status

/// Bits of the status byte (IEEE 488.2; bit 2 as SCPI-99 uses it).
namespace status_byte
{
inline constexpr unsigned int kErrorAvailable = 4;
inline constexpr unsigned int kQuestionableSummary = 8;
inline constexpr unsigned int kMessageAvailable = 16;
inline constexpr unsigned int kEventSummary = 32;
inline constexpr unsigned int kMasterSummary = 64;
inline constexpr unsigned int kOperationSummary = 128;
} // namespace status_byte

struct ErrorEntry
{
    int code = 0;
    std::string text;
};

/// The error queue and the standard event status register with its enables. A new object stands as after power-on:
/// queue empty, enables 0, power-on bit set.
class StatusModel
{
public:
    static constexpr std::size_t kQueueLength = 20;

    /// Queues an error and sets the event status bit of its class. When the queue is full, its newest entry becomes
    /// -350, "Queue overflow".
    void report(ErrorCode code);
    void report(int code, std::string text);

    /// Takes the oldest entry off the queue; 0, "No error" when there is none.
    ErrorEntry nextError();

    /// *CLS: empties the queue and the event status register; the enables stay.
    void clear();

    /// As a new object.
    void powerOn() { *this = StatusModel(); }

    unsigned int takeEventStatus();
    void setEventStatusBits(unsigned int bits) { eventStatus_ |= bits; }

    unsigned int eventEnable() const { return eventEnable_; }
    void setEventEnable(unsigned int mask) { eventEnable_ = mask; }

    /// The master summary bit cannot enable itself, so it always reads 0.
    unsigned int serviceEnable() const { return serviceEnable_; }
    void setServiceEnable(unsigned int mask) { serviceEnable_ = mask & ~status_byte::kMasterSummary; }

    /// `others` are the bits of what this does not know: the supply's summaries, a message for the client.
    unsigned int statusByte(unsigned int others = 0) const;

private:
    std::deque<ErrorEntry> queue_;
    unsigned int eventStatus_ = event_status::kPowerOn;
    unsigned int eventEnable_ = 0;
    unsigned int serviceEnable_ = 0;
};

} // namespace kvxvirtual
