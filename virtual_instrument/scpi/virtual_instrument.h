#pragma once

#include "virtual_instrument/common/front_panel.h"
#include "virtual_instrument/common/instrument_clock.h"
#include "virtual_instrument/scpi/command.h"
#include "virtual_instrument/scpi/received_log.h"

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kvxvirtual
{

/// How an instrument is built.
struct InstrumentSettings
{
    /// The reply to *IDN?.
    std::string identity = "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00";
    std::chrono::milliseconds settleTime{500};
    Wording wording{};
    /// Whether what clients send is kept for the test control.
    bool keepsLog = true;
};

/// What goes back to a client, line end included.
struct Response
{
    std::string bytes;
    std::chrono::milliseconds delay{0};
};

/// The whole instrument without its transports: takes messages, gives responses, and lets a test control arrange
/// faults. All clients share it. One thread at a time.
class VirtualInstrument
{
public:
    /// `time` is where its clock gets the time from.
    VirtualInstrument(InstrumentSettings settings, InstrumentClock::Source time);

    VirtualInstrument(const VirtualInstrument&) = delete;
    VirtualInstrument& operator=(const VirtualInstrument&) = delete;
    ~VirtualInstrument() = default;

    // From clients ---------------------------------------------------------------------------------------------------

    /// Executes one message, given without its line feed; a carriage return at its end is dropped.
    std::optional<Response> receive(std::string_view line);

    /// A client sent more than the input buffer holds without a line feed.
    void inputOverrun() { report(ErrorCode::InputBufferOverrun); }

    /// An error of the exchange of messages.
    void report(ErrorCode code);

    /// What a bus calls a trigger: as *TRG.
    void trigger();

    /// The status byte as *STB? answers it.
    unsigned int statusByte();

    FrontPanel& frontPanel() { return frontPanel_; }

    /// Calls `observer` whenever the status byte may have changed other than by time going by.
    void setStatusObserver(std::function<void()> observer) { statusObserver_ = std::move(observer); }

    // From the test control ------------------------------------------------------------------------------------------

    PowerSupply& supply() { return state_.supply; }
    StatusModel& status() { return state_.status; }
    ReceivedLog& log() { return log_; }

    /// Answers one message that holds a query with `bytes` instead of executing it. Several are used in their order.
    void queueAnswer(std::string bytes) { answers_.push_back(std::move(bytes)); }

    /// Lets the next `count` replies get lost.
    void swallowReplies(int count) { repliesToSwallow_ = count; }

    /// Every reply from now on leaves this much later.
    void setReplyDelay(std::chrono::milliseconds delay) { replyDelay_ = delay; }

    /// Forgets queued answers, replies to swallow and the delay.
    void clearFaults();

    /// Off and on again; clients stay connected.
    void powerCycle();

    void advanceClock(InstrumentClock::Duration step);

    /// To be called when something has changed by supply() or status().
    void statusMayHaveChanged();

private:
    std::optional<std::string> replyTo(std::string_view message);

    InstrumentClock clock_;
    InstrumentState state_;
    bool keepsLog_;
    ReceivedLog log_;
    std::deque<std::string> answers_;
    int repliesToSwallow_ = 0;
    std::chrono::milliseconds replyDelay_{0};
    FrontPanel frontPanel_;
    std::function<void()> statusObserver_;
};

} // namespace kvxvirtual
