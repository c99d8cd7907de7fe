#include "virtual_instrument/transport/link/instrument_link.h"

#include <algorithm>
#include <utility>

namespace kvxvirtual
{
namespace
{

using SteadyClock = std::chrono::steady_clock;

} // namespace

InstrumentLink::InstrumentLink(LinkHub& hub, std::string name, Events& events)
    : hub_(hub), name_(std::move(name)), events_(events), replyTimer_(hub.context()), access_(hub.context()),
      lockRequest_(hub.context())
{
    hub_.add(*this);
}

InstrumentLink::~InstrumentLink()
{
    hub_.remove(*this);
    auto& locks = hub_.locks();
    for (const auto& wait : {access_.id, lockRequest_.id, panelWait_}) {
        if (wait)
            locks.cancel(*wait);
    }
    locks.releaseAll(this);
}

// Messages -----------------------------------------------------------------------------------------------------------

void InstrumentLink::write(std::string_view bytes, bool end)
{
    clientActed();
    if (!bytes.empty()) {
        interruptReply();
        insideLine_ = !bytes.ends_with('\n');
    }
    lines_.append(bytes);
    if (end && insideLine_) {
        lines_.append("\n");
        insideLine_ = false;
    }
    execute();
    announceReply();
}

void InstrumentLink::execute()
{
    while (const auto line = lines_.next()) {
        interruptReply();
        execute(*line);
    }
    // What is left is the beginning of a message, and a reply does not outlive the next message's beginning.
    if (insideLine_)
        interruptReply();
}

void InstrumentLink::execute(const LineAssembler::Line& line)
{
    auto& instrument = hub_.instrument();
    if (line.overrun) {
        hub_.journal().overrun(name_);
        instrument.inputOverrun();
        return;
    }
    hub_.journal().received(name_, line.bytes);
    if (auto response = instrument.receive(line.bytes))
        add(std::move(*response));
}

void InstrumentLink::trigger()
{
    clientActed();
    interruptReply();
    hub_.journal().received(name_, "(trigger)");
    hub_.instrument().trigger();
}

void InstrumentLink::add(Response response)
{
    waitingBytes_ += response.bytes.size();
    replies_.push_back({std::move(response.bytes), SteadyClock::now() + response.delay});
}

void InstrumentLink::announceReply()
{
    if (replies_.empty() || replies_.front().ready)
        return;
    if (SteadyClock::now() < replies_.front().due)
        return waitForReply();
    replies_.front().ready = true;
    setMessageAvailable(true);
    events_.replyReady();
}

void InstrumentLink::waitForReply()
{
    replyTimer_.expires_at(replies_.front().due);
    replyTimer_.async_wait([this, life = std::weak_ptr(life_)](asio::error_code error) {
        if (!error && !life.expired())
            announceReply();
    });
}

void InstrumentLink::interruptReply()
{
    if (whenInput_ == Replies::Queued || replies_.empty())
        return;
    dropReplies();
    hub_.instrument().report(ErrorCode::QueryInterrupted);
    events_.replyInterrupted();
}

void InstrumentLink::dropReplies()
{
    replyTimer_.cancel();
    replies_.clear();
    waitingBytes_ = 0;
    setMessageAvailable(false);
}

std::string InstrumentLink::takeReply()
{
    auto bytes = std::move(replies_.front().bytes);
    waitingBytes_ -= bytes.size();
    popReply(bytes);
    return bytes;
}

InstrumentLink::Piece InstrumentLink::take(std::size_t most, std::optional<char> stopAt)
{
    auto& reply = replies_.front().bytes;
    const auto stop = stopAt ? reply.find(*stopAt) : std::string::npos;
    const auto length = std::min({most, reply.size(), stop == std::string::npos ? stop : stop + 1});
    Piece piece{reply.substr(0, length), length == reply.size()};
    waitingBytes_ -= length;
    if (piece.end)
        popReply(piece.bytes);
    else
        reply.erase(0, length);
    return piece;
}

/// `sent` is what the transport is about to send of it last.
void InstrumentLink::popReply(std::string_view sent)
{
    hub_.journal().sent(name_, sent);
    replies_.pop_front();
    if (!replies_.empty() && replies_.front().due <= SteadyClock::now())
        replies_.front().ready = true;
    else if (!replies_.empty())
        waitForReply();
}

void InstrumentLink::clear()
{
    clientActed();
    lines_.clear();
    insideLine_ = false;
    dropReplies();
}

// Status -------------------------------------------------------------------------------------------------------------

void InstrumentLink::setMessageAvailable(bool available)
{
    if (messageAvailable_ == available)
        return;
    messageAvailable_ = available;
    lookAtStatus();
}

unsigned int InstrumentLink::statusByte() const
{
    auto& instrument = hub_.instrument();
    return (instrument.statusByte() & ~status_byte::kMasterSummary) |
           (messageAvailable_ ? status_byte::kMessageAvailable : 0U);
}

unsigned char InstrumentLink::poll()
{
    clientActed();
    const auto request = std::exchange(serviceRequested_, false) ? status_byte::kMasterSummary : 0U;
    return static_cast<unsigned char>(statusByte() | request);
}

void InstrumentLink::lookAtStatus()
{
    const auto byte = statusByte();
    const auto before = std::exchange(reasons_, byte & hub_.instrument().status().serviceEnable());
    const bool newReason = (reasons_ & ~before) != 0;
    if (!newReason || std::exchange(serviceRequested_, true))
        return;
    events_.serviceRequested(static_cast<unsigned char>(byte | status_byte::kMasterSummary));
}

// Front panel --------------------------------------------------------------------------------------------------------

void InstrumentLink::request(PanelRequest request)
{
    auto& locks = hub_.locks();
    if (panelWait_)
        locks.cancel(*panelWait_);
    panelWait_.reset();
    const auto attempt = [this, request] {
        if (hasAccess())
            hub_.instrument().frontPanel().request(request);
        return hasAccess();
    };
    if (!attempt())
        panelWait_ = locks.wait(attempt);
}

// Locks --------------------------------------------------------------------------------------------------------------

void InstrumentLink::Wait::stop(DeviceLocks& locks)
{
    timer.cancel();
    if (id)
        locks.cancel(*id);
    id.reset();
}

void InstrumentLink::whenAccessible(std::optional<Duration> timeout, const std::function<void(bool)>& then)
{
    stopWaitingForAccess();
    if (hasAccess())
        return then(true);
    access_.id = hub_.locks().wait([this, then] {
        if (!hasAccess())
            return false;
        access_.id.reset();
        access_.timer.cancel();
        then(true);
        return true;
    });
    if (!timeout)
        return;
    limit(access_, *timeout, [this, then] {
        stopWaitingForAccess();
        then(false);
    });
}

void InstrumentLink::lock(std::string key, Duration timeout, std::function<void(DeviceLocks::Answer)> then)
{
    clientActed();
    auto& locks = hub_.locks();
    const auto answer = locks.request(this, key);
    if (answer != DeviceLocks::Answer::Unavailable || timeout <= Duration::zero())
        return then(answer);
    lockAnswer_ = std::move(then);
    lockRequest_.id = locks.wait([this, key = std::move(key)] {
        const auto later = hub_.locks().request(this, key);
        if (later == DeviceLocks::Answer::Unavailable)
            return false;
        lockRequest_.id.reset();
        lockRequest_.timer.cancel();
        std::exchange(lockAnswer_, nullptr)(later);
        return true;
    });
    limit(lockRequest_, timeout, [this] { endLockRequest(); });
}

void InstrumentLink::limit(Wait& wait, Duration timeout, std::function<void()> over)
{
    wait.timer.expires_after(timeout);
    wait.timer.async_wait(
        [&wait, id = wait.id, over = std::move(over), life = std::weak_ptr(life_)](asio::error_code error) {
            if (!error && !life.expired() && wait.id == id)
                over();
        });
}

bool InstrumentLink::endLockRequest()
{
    if (!lockRequest_.id)
        return false;
    lockRequest_.stop(hub_.locks());
    std::exchange(lockAnswer_, nullptr)(DeviceLocks::Answer::Unavailable);
    return true;
}

} // namespace kvxvirtual
