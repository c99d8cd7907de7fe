#include "virtual_instrument/transport/hislip/hislip_session.h"

#include <algorithm>
#include <utility>

namespace kvxvirtual::hislip
{
namespace
{

/// Two letters, as makers have them.
constexpr std::uint32_t kVendor = 'K' << 8U | 'V';

/// Of the control codes that have one.
constexpr std::uint8_t kDelivered = 1;
constexpr std::uint8_t kOverlapped = 1;
constexpr std::uint8_t kRequest = 1;

namespace lock_answer
{
constexpr std::uint8_t kFailure = 0;
constexpr std::uint8_t kSuccess = 1;
constexpr std::uint8_t kReleasedShared = 2;
constexpr std::uint8_t kError = 3;
} // namespace lock_answer

std::uint8_t codeOf(DeviceLocks::Answer answer)
{
    switch (answer) {
    case DeviceLocks::Answer::Granted:
        return lock_answer::kSuccess;
    case DeviceLocks::Answer::Held:
        return lock_answer::kError;
    case DeviceLocks::Answer::Unavailable:
        break;
    }
    return lock_answer::kFailure;
}

std::uint8_t codeOf(DeviceLocks::Released released)
{
    switch (released) {
    case DeviceLocks::Released::Exclusive:
        return lock_answer::kSuccess;
    case DeviceLocks::Released::Shared:
        return lock_answer::kReleasedShared;
    case DeviceLocks::Released::None:
        break;
    }
    return lock_answer::kError;
}

bool isData(Type type)
{
    return type == Type::Data || type == Type::DataEnd;
}

bool hasMessageId(Type type)
{
    return isData(type) || type == Type::Trigger;
}

} // namespace

const Session::Handler Session::kHandlers[] = {
    {Type::Initialize, &Session::initializeAgain},
    {Type::AsyncInitialize, &Session::initializeAgain},
    {Type::FatalError, &Session::clientFailed},
    {Type::Error, &Session::ignore},
    {Type::Data, &Session::data},
    {Type::DataEnd, &Session::data},
    {Type::Trigger, &Session::trigger},
    {Type::DeviceClearComplete, &Session::deviceClearComplete},
    {Type::GetDescriptors, &Session::getDescriptors},
    {Type::AsyncLock, &Session::lock},
    {Type::AsyncLockInfo, &Session::lockInfo},
    {Type::AsyncRemoteLocalControl, &Session::remoteLocal},
    {Type::AsyncMaximumMessageSize, &Session::maximumMessageSize},
    {Type::AsyncDeviceClear, &Session::deviceClear},
    {Type::AsyncStatusQuery, &Session::statusQuery},
};

Session::Session(LinkHub& hub, std::shared_ptr<MessageChannel> synchronous, std::uint16_t version,
                 std::function<void()> ended)
    : hub_(hub), synchronous_(std::move(synchronous)), version_(version), ended_(std::move(ended))
{
}

void Session::addAsynchronous(std::shared_ptr<MessageChannel> channel)
{
    asynchronous_ = std::move(channel);
    hub_.journal().clientCame(synchronous_->name());
    asynchronous_->send({Type::AsyncInitializeResponse, 0, kVendor});
    link_.emplace(hub_, synchronous_->name(), *this);
}

void Session::abandon()
{
    link_.reset();
    synchronous_->abandon();
    if (asynchronous_)
        asynchronous_->abandon();
}

void Session::ended(MessageChannel&)
{
    const auto ended = std::exchange(ended_, nullptr);
    if (!ended)
        return;
    link_.reset();
    if (isComplete())
        hub_.journal().clientWent(synchronous_->name());
    synchronous_->close();
    if (asynchronous_)
        asynchronous_->close();
    ended();
}

void Session::fail(Fatal code)
{
    synchronous_->sendFatal(code);
    if (asynchronous_)
        asynchronous_->sendFatal(code);
    // Its locks are not to wait for the goodbye.
    link_.reset();
}

// What comes in ------------------------------------------------------------------------------------------------------

Channel Session::kindOf(const MessageChannel& channel) const
{
    return &channel == synchronous_.get() ? Channel::Synchronous : Channel::Asynchronous;
}

MessageChannel::Use Session::arrived(MessageChannel& channel, const Header& header)
{
    using Use = MessageChannel::Use;
    const auto kind = kindOf(channel);
    const auto finding = judge(header, kind, version_);
    if (finding.fatal || !isComplete()) {
        fail(finding.fatal.value_or(Fatal::ChannelsNotEstablished));
        return Use::Drop;
    }
    if (kind == Channel::Synchronous && waitsForClear(header))
        return Use::Drop;
    if (kind == Channel::Synchronous && !clearing_ && !(link_->hasAccess() && link_->takesInput()))
        return hold();
    if (finding.complaint) {
        channel.sendComplaint(*finding.complaint);
        return Use::Drop;
    }
    if (hasMessageId(header.type))
        noteDelivery(header);
    return isData(header.type) ? Use::Pieces : Use::Whole;
}

void Session::received(MessageChannel& channel, const Header& header, std::string_view piece, bool complete)
{
    const auto* const row = std::find_if(std::begin(kHandlers), std::end(kHandlers),
                                         [&](const Handler& handler) { return handler.type == header.type; });
    if (row != std::end(kHandlers))
        (this->*row->handle)({channel, header, piece, complete});
}

void Session::outOfStep(MessageChannel&)
{
    fail(Fatal::PoorlyFormedHeader);
}

void Session::idle(MessageChannel& channel)
{
    // A reply is not to leave when the message that interrupts it is there already.
    if (kindOf(channel) == Channel::Synchronous && (overlapped_ || channel.bytesWaiting() == 0))
        sendReplies();
}

void Session::drained(MessageChannel&)
{
    sendReplies();
}

/// Another client's lock, or replies that this one does not take, keep the instrument from what it has sent.
MessageChannel::Use Session::hold()
{
    sendReplies();
    link_->whenAccessible(std::nullopt, [this](bool) {
        asio::post(hub_.context(), [self = shared_from_this()] {
            if (self->link_ && self->link_->takesInput())
                self->synchronous_->resume();
        });
    });
    return MessageChannel::Use::Hold;
}

bool Session::waitsForClear(const Header& header) const
{
    return clearing_ && header.type != Type::DeviceClearComplete && header.type != Type::FatalError;
}

void Session::noteDelivery(const Header& header)
{
    current_ = header.parameter;
    if (overlapped_)
        return;
    const bool delivered = (header.control & kDelivered) != 0;
    const bool expected = std::exchange(deliveryExpected_, false);
    if (delivered || expected)
        link_->setMessageAvailable(false);
    if (delivered != expected)
        hub_.instrument().report(ErrorCode::QueryInterrupted);
}

// Messages of the synchronous channel --------------------------------------------------------------------------------

void Session::data(const Incoming& message)
{
    if (clearing_)
        return;
    feeding_ = true;
    link_->write(message.payload, message.complete && message.header.type == Type::DataEnd);
    feeding_ = false;
    if (message.complete)
        handled(message.header.parameter);
}

void Session::trigger(const Incoming& message)
{
    link_->trigger();
    handled(message.header.parameter);
}

void Session::deviceClearComplete(const Incoming& message)
{
    if (!clearing_)
        return message.channel.sendComplaint(Complaint::Unidentified);
    clearing_ = false;
    overlapped_ = (message.header.control & kOverlapped) != 0;
    link_->setReplies(overlapped_ ? InstrumentLink::Replies::Queued : InstrumentLink::Replies::Interrupted);
    current_ = kBeforeFirstId;
    lastHandled_ = kBeforeFirstId;
    nextReply_ = kFirstId;
    deliveryExpected_ = false;
    synchronous_->readInSpiteOfOutput(false);
    synchronous_->send({Type::DeviceClearAcknowledge, overlapped_ ? kOverlapped : std::uint8_t{0}});
}

// Messages of either channel -----------------------------------------------------------------------------------------

void Session::ignore(const Incoming&) {}

void Session::clientFailed(const Incoming& message)
{
    message.channel.close();
}

void Session::initializeAgain(const Incoming&)
{
    fail(Fatal::InvalidInitialization);
}

void Session::getDescriptors(const Incoming& message)
{
    // All that are defined are about encryption.
    message.channel.send({Type::GetDescriptorsResponse});
}

// Messages of the asynchronous channel -------------------------------------------------------------------------------

void Session::handled(MessageId id)
{
    lastHandled_ = id;
    doWhatWaited();
}

void Session::doWhatWaited()
{
    if (panelAfter_ && hasHandled(*panelAfter_))
        actOnPanel(panelRequest_);
    if (releaseAfter_ && hasHandled(*releaseAfter_))
        releaseLock();
}

void Session::lock(const Incoming& message)
{
    // The answers could not be told apart.
    if (releaseAfter_ || lockRequested_)
        return message.channel.sendComplaint(Complaint::Unidentified);
    if (message.header.control == kRequest)
        return requestLock(message.header, message.payload);
    link_->clientActed();
    releaseAfter_ = message.header.parameter;
    doWhatWaited();
}

void Session::requestLock(const Header& header, std::string_view key)
{
    lockRequested_ = true;
    const InstrumentLink::Duration timeout(header.parameter);
    link_->lock(std::string(key), timeout, [this](DeviceLocks::Answer answer) {
        lockRequested_ = false;
        answerLock(codeOf(answer));
    });
}

void Session::releaseLock()
{
    releaseAfter_.reset();
    answerLock(codeOf(link_->unlock()));
}

void Session::answerLock(std::uint8_t control)
{
    asynchronous_->send({Type::AsyncLockResponse, control});
}

void Session::lockInfo(const Incoming& message)
{
    const auto& locks = hub_.locks();
    message.channel.send({Type::AsyncLockInfoResponse, locks.isExclusive() ? std::uint8_t{1} : std::uint8_t{0},
                          static_cast<std::uint32_t>(locks.holderCount())});
}

void Session::remoteLocal(const Incoming& message)
{
    if (panelAfter_)
        return message.channel.sendComplaint(Complaint::Unidentified);
    panelAfter_ = message.header.parameter;
    panelRequest_ = static_cast<PanelRequest>(message.header.control);
    doWhatWaited();
}

void Session::actOnPanel(PanelRequest request)
{
    panelAfter_.reset();
    link_->request(request);
    asynchronous_->send({Type::AsyncRemoteLocalResponse});
}

void Session::maximumMessageSize(const Incoming& message)
{
    const auto size = parseSize(message.payload);
    // Whether a client counts the header is its own affair: this suits both.
    longestReply_ = std::max<std::uint64_t>(size > kHeaderSize ? size - kHeaderSize : size, 1);
    message.channel.send({Type::AsyncMaximumMessageSizeResponse}, encodeSize(kLongestData));
}

void Session::deviceClear(const Incoming& message)
{
    link_->endLockRequest();
    // Nobody is told of it any more.
    if (std::exchange(releaseAfter_, std::nullopt))
        link_->unlock();
    if (panelAfter_)
        actOnPanel(panelRequest_);
    clearing_ = true;
    deliveryExpected_ = false;
    link_->clear();
    link_->stopWaitingForAccess();
    message.channel.send({Type::AsyncDeviceClearAcknowledge});
    synchronous_->dropUnsent();
    synchronous_->readInSpiteOfOutput(true);
}

void Session::statusQuery(const Incoming& message)
{
    const auto id = message.header.parameter;
    if (overlapped_) {
        link_->setMessageAvailable(id != nextReply_ - 2);
    } else if ((message.header.control & kDelivered) != 0) {
        deliveryExpected_ = false;
        link_->setMessageAvailable(false);
    }
    auto byte = link_->poll();
    // The message that is still under way will have interrupted what is available now.
    if (!overlapped_ && id != lastHandled_)
        byte = static_cast<unsigned char>(byte & ~status_byte::kMessageAvailable);
    message.channel.send({Type::AsyncStatusResponse, byte});
}

// From the link ------------------------------------------------------------------------------------------------------

void Session::replyReady()
{
    // Behind the message that is being fed there may be one that interrupts.
    if (!feeding_)
        sendReplies();
}

void Session::replyInterrupted()
{
    synchronous_->dropUnsent();
    asynchronous_->send({Type::AsyncInterrupted, 0, current_});
    synchronous_->send({Type::Interrupted, 0, current_});
}

void Session::serviceRequested(unsigned char statusByte)
{
    asynchronous_->send({Type::AsyncServiceRequest, statusByte});
}

void Session::sendReplies()
{
    if (!link_ || clearing_)
        return;
    const bool tookInput = link_->takesInput();
    while (link_->hasReply() && !synchronous_->hasUnsent())
        sendReply(link_->takeReply());
    if (!tookInput && link_->takesInput() && link_->hasAccess())
        asio::post(hub_.context(), [channel = synchronous_] { channel->resume(); });
}

void Session::sendReply(std::string_view reply)
{
    while (true) {
        const auto piece =
            reply.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(longestReply_, reply.size())));
        reply.remove_prefix(piece.size());
        const auto id = overlapped_ ? std::exchange(nextReply_, nextReply_ + 2) : current_;
        synchronous_->send({reply.empty() ? Type::DataEnd : Type::Data, 0, id}, piece);
        if (reply.empty())
            break;
    }
    deliveryExpected_ = !overlapped_;
}

} // namespace kvxvirtual::hislip
