#pragma once

#include "virtual_instrument/transport/hislip/hislip_channel.h"
#include "virtual_instrument/transport/hislip/hislip_message.h"
#include "virtual_instrument/transport/link/instrument_link.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual::hislip
{

/// One client: the link behind its two channels, and what the protocol remembers of them. It begins with the
/// synchronous channel and ends with either.
class Session final : public MessageChannel::Receiver,
                      public InstrumentLink::Events,
                      public std::enable_shared_from_this<Session>
{
public:
    /// `ended` is called once.
    Session(LinkHub& hub, std::shared_ptr<MessageChannel> synchronous, std::uint16_t version,
            std::function<void()> ended);

    /// The second channel has come: tells the client of it.
    void addAsynchronous(std::shared_ptr<MessageChannel> channel);
    bool isComplete() const { return asynchronous_ != nullptr; }

    /// Ends both channels without telling anybody.
    void abandon();

    // From the channels
    MessageChannel::Use arrived(MessageChannel& channel, const Header& header) override;
    void received(MessageChannel& channel, const Header& header, std::string_view piece, bool complete) override;
    void outOfStep(MessageChannel& channel) override;
    void idle(MessageChannel& channel) override;
    void drained(MessageChannel& channel) override;
    void ended(MessageChannel& channel) override;

    // From the link
    void replyReady() override;
    void replyInterrupted() override;
    void serviceRequested(unsigned char statusByte) override;

private:
    using MessageId = std::uint32_t;

    struct Incoming
    {
        MessageChannel& channel;
        const Header& header;
        std::string_view payload; ///< a piece of it for data, otherwise all of it
        bool complete;
    };
    struct Handler
    {
        Type type;
        void (Session::*handle)(const Incoming& message);
    };
    static const Handler kHandlers[];

    static constexpr MessageId kFirstId = 0xffffff00;
    static constexpr MessageId kBeforeFirstId = kFirstId - 2;

    Channel kindOf(const MessageChannel& channel) const;
    void fail(Fatal code);

    MessageChannel::Use hold();
    bool waitsForClear(const Header& header) const;
    void noteDelivery(const Header& header);

    // One for each type that a client may send.
    void data(const Incoming& message);
    void trigger(const Incoming& message);
    void deviceClearComplete(const Incoming& message);
    void ignore(const Incoming& message);
    void clientFailed(const Incoming& message);
    void initializeAgain(const Incoming& message);
    void getDescriptors(const Incoming& message);
    void lock(const Incoming& message);
    void lockInfo(const Incoming& message);
    void remoteLocal(const Incoming& message);
    void maximumMessageSize(const Incoming& message);
    void deviceClear(const Incoming& message);
    void statusQuery(const Incoming& message);

    void handled(MessageId id);
    bool hasHandled(MessageId id) const { return static_cast<std::int32_t>(lastHandled_ - id) >= 0; }
    void doWhatWaited();
    void requestLock(const Header& header, std::string_view key);
    void releaseLock();
    void actOnPanel(PanelRequest request);
    void answerLock(std::uint8_t control);

    void sendReplies();
    void sendReply(std::string_view reply);

    LinkHub& hub_;
    std::shared_ptr<MessageChannel> synchronous_;
    std::shared_ptr<MessageChannel> asynchronous_;
    std::uint16_t version_;
    std::function<void()> ended_;
    /// From the second channel on.
    std::optional<InstrumentLink> link_;

    bool overlapped_ = false;
    bool clearing_ = false;
    /// Of the client's message that is being fed, and of the last one that has been.
    MessageId current_ = kBeforeFirstId;
    MessageId lastHandled_ = kBeforeFirstId;
    MessageId nextReply_ = kFirstId; ///< in overlapped mode
    bool deliveryExpected_ = false;
    std::uint64_t longestReply_ = kLongestData;

    bool feeding_ = false;
    bool lockRequested_ = false;
    // What a client wants when a message of its has been handled, which may come later on the other channel.
    std::optional<MessageId> releaseAfter_;
    std::optional<MessageId> panelAfter_;
    PanelRequest panelRequest_{};
};

} // namespace kvxvirtual::hislip
