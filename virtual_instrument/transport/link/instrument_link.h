#pragma once

#include "virtual_instrument/common/front_panel.h"
#include "virtual_instrument/scpi/line_assembler.h"
#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/link/device_locks.h"
#include "virtual_instrument/transport/link/link_hub.h"

#include <asio.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// One client's exchange of messages with the instrument (IEEE 488.2), for transports that mark the end of a message
/// (END), have a status byte, device clear, triggers, locks and remote/local. The transport feeds what its client sends
/// and fetches replies when it can send them.
///
/// A message ends at a line feed or at END, whichever comes first; a line feed with END is one end. A reply ends in a
/// line feed, with END on it. It is ready as soon as its message has been executed, or later when the test control
/// delays replies.
///
/// What a client does sets the front panel to remote as IEEE 488 says. Locks are not enforced here: the transport asks
/// hasAccess() before it feeds or triggers, as it knows what its standard lets pass.
///
/// One thread, that of the hub's context. None of the callbacks may destroy the link.
class InstrumentLink
{
public:
    using Duration = std::chrono::milliseconds;

    /// What becomes of a reply that has not been taken when more input comes.
    enum class Replies
    {
        Interrupted, ///< lost: error -410 (IEEE 488.2)
        Queued       ///< it keeps its place before those to come
    };

    /// What the transport is told.
    class Events
    {
    public:
        virtual ~Events() = default;
        Events(const Events&) = delete;
        Events& operator=(const Events&) = delete;

        /// hasReply() has become true: at the end of write(), or when a delay is over.
        virtual void replyReady() = 0;
        /// A reply was lost because of the input that write() or trigger() is being given.
        virtual void replyInterrupted() = 0;
        /// A new reason for service: the status byte with bit 6 set. Not told again before poll() has cleared it.
        virtual void serviceRequested(unsigned char statusByte) = 0;

    protected:
        Events() = default;
    };

    /// `name` is the client's in the journal; `events` must outlive the link.
    InstrumentLink(LinkHub& hub, std::string name, Events& events);
    /// Gives all locks back. Waits that are not over are forgotten without being told.
    ~InstrumentLink();

    InstrumentLink(const InstrumentLink&) = delete;
    InstrumentLink& operator=(const InstrumentLink&) = delete;

    const std::string& name() const { return name_; }

    /// Interrupted at first. To be changed while nothing is under way, as behind clear().
    void setReplies(Replies replies) { whenInput_ = replies; }

    // Messages -------------------------------------------------------------------------------------------------------

    /// The next bytes from the client; with `end`, END came with the last one. Executes every message that is complete.
    void write(std::string_view bytes, bool end);

    /// False while so many queued replies wait that no more should be fed until some have been taken.
    bool takesInput() const { return waitingBytes_ < kMostWaitingBytes; }

    /// A trigger from the bus; interrupts a reply as a message does.
    void trigger();

    bool hasReply() const { return !replies_.empty() && replies_.front().ready; }
    /// Whether there is one or, delayed, will be.
    bool expectsReply() const { return !replies_.empty(); }

    /// The whole reply, or what take() has left of it; hasReply() must hold.
    std::string takeReply();

    struct Piece
    {
        std::string bytes;
        bool end = false; ///< the reply's last byte is the last of these
    };
    /// At most `most` bytes of the reply and none behind a `stopAt`; hasReply() must hold.
    Piece take(std::size_t most, std::optional<char> stopAt = std::nullopt);

    /// The client reads although no reply is ready and none will be: error -420.
    void reportUnterminated() { hub_.instrument().report(ErrorCode::QueryUnterminated); }

    /// Device clear: forgets input and replies. Status and error queue stay, locks too.
    void clear();

    // Status ---------------------------------------------------------------------------------------------------------

    /// Bit 4 for this client. A reply that becomes ready sets it; nothing ready any more, by an interruption or
    /// clear(), clears it. Taking the last reply leaves it as it is: a transport whose client holds replies that it has
    /// not read says itself when they have been.
    bool messageAvailable() const { return messageAvailable_; }
    void setMessageAvailable(bool available);

    /// A serial poll: the status byte, in bit 6 whether this link has requested service since the last one.
    unsigned char poll();

    // Front panel ----------------------------------------------------------------------------------------------------

    /// At once, or when other links' locks no longer keep this one out.
    void request(PanelRequest request);

    /// For what acts on the instrument and is none of the calls above.
    void clientActed() { hub_.instrument().frontPanel().clientActed(); }

    // Locks ----------------------------------------------------------------------------------------------------------

    bool hasAccess() const { return hub_.locks().permits(this); }

    /// Calls `then` once, now or later: true as soon as there is access, false when `timeout` is over; no time-out:
    /// waits as long as it takes. One such wait at a time; another takes its place.
    void whenAccessible(std::optional<Duration> timeout, const std::function<void(bool)>& then);
    void stopWaitingForAccess() { access_.stop(hub_.locks()); }

    /// The answer to a request for a lock: exclusive for an empty key. Unavailable comes when `timeout` is over. One
    /// request at a time.
    void lock(std::string key, Duration timeout, std::function<void(DeviceLocks::Answer)> then);
    /// A request that still waits is answered with Unavailable now; false when there is none.
    bool endLockRequest();

    DeviceLocks::Released unlock() { return hub_.locks().release(this); }

private:
    friend class LinkHub;

    static constexpr std::size_t kMostWaitingBytes = std::size_t{1} << 18;

    struct Reply
    {
        std::string bytes;
        std::chrono::steady_clock::time_point due;
        bool ready = false;
    };

    /// Something that other links' locks hold up, and the time it may take.
    struct Wait
    {
        explicit Wait(asio::io_context& context) : timer(context) {}

        void stop(DeviceLocks& locks);

        asio::steady_timer timer;
        std::optional<DeviceLocks::WaitId> id;
    };

    void execute();
    void execute(const LineAssembler::Line& line);
    void add(Response response);
    void announceReply();
    void interruptReply();
    void dropReplies();
    void popReply(std::string_view sent);
    void waitForReply();
    /// Calls `over` when the wait is still the same by then.
    void limit(Wait& wait, Duration timeout, std::function<void()> over);
    unsigned int statusByte() const;
    void lookAtStatus();

    LinkHub& hub_;
    std::string name_;
    Events& events_;
    Replies whenInput_ = Replies::Interrupted;
    LineAssembler lines_;
    bool insideLine_ = false;
    std::deque<Reply> replies_;
    std::size_t waitingBytes_ = 0;
    asio::steady_timer replyTimer_;
    bool messageAvailable_ = false;
    unsigned int reasons_ = 0;
    bool serviceRequested_ = false;
    Wait access_;
    Wait lockRequest_;
    std::function<void(DeviceLocks::Answer)> lockAnswer_;
    std::optional<DeviceLocks::WaitId> panelWait_;
    /// Ends with the link: a timer that had run out calls back even when it is destroyed.
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
};

} // namespace kvxvirtual
