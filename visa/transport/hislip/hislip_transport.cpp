#include "visa/transport/hislip/hislip_transport.h"

#include "visa/transport/hislip/hislip_channel.h"
#include "visa/transport/hislip/hislip_message.h"
#include "visa/transport/tcp/tcp_stream.h"
#include "visa/transport/turn.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <limits>
#include <mutex>

namespace visa
{
namespace
{

/// The device where a string names none.
constexpr std::string_view kDefaultDevice = "hislip0";

constexpr std::uint32_t kNewestVersion = 0x0200;
constexpr std::uint16_t kOldestVersion = 0x0100;
/// Two letters, as makers have them.
constexpr std::uint32_t kVendor = 'K' << 8U | 'V';

// Of control codes.
constexpr ViByte kOverlapped = 1;
constexpr ViByte kEncryptionBits = 6;
constexpr ViByte kDelivered = 1;
constexpr ViByte kRelease = 0;
constexpr ViByte kRequest = 1;

constexpr std::uint32_t kFirstId = 0xFFFFFF00;
constexpr std::uint32_t kBeforeFirstId = kFirstId - 2;
constexpr std::uint32_t kIdStep = 2;
/// Of data whose question the device cannot tell.
constexpr std::uint32_t kUnknownId = 0xFFFFFFFF;

constexpr std::size_t kSynchronousInput = 16384;
constexpr std::size_t kAsynchronousInput = 512;
constexpr std::uint64_t kBytesPerKilobyte = 1024;
/// Before a device has said how much it takes.
constexpr std::uint64_t kUsualPayload = std::uint64_t{1024} * kBytesPerKilobyte;
/// For what an attribute's new value makes the channel do.
constexpr ViUInt32 kSettingMs = 2000;
/// How much later than at the end of its time a device may tell that a lock is not to be had.
constexpr int kLockGraceMs = 2000;

/// The answer to a question on the asynchronous channel.
struct Answer
{
    HislipHeader header;
    std::array<ViByte, sizeof(std::uint64_t)> payload{};
};

/// What a device has said of itself.
struct Greeting
{
    std::uint16_t version = 0; ///< 0x0100 is 1.0
    std::uint16_t sessionId = 0;
    bool prefersOverlapped = false;
};

bool isData(HislipType type)
{
    return type == HislipType::Data || type == HislipType::DataEnd;
}

/// A session with a device behind its two channels. Synchronized or overlapped, as the device prefers at first.
///
/// Under way at a time: one message out and one in on the synchronous channel, and one question on the other.
class HislipTransport : public Transport
{
public:
    HislipTransport(std::unique_ptr<HislipChannel> synchronous, std::unique_ptr<HislipChannel> asynchronous,
                    const Greeting& greeting)
        : synchronousChannel_(std::move(synchronous)), asynchronousChannel_(std::move(asynchronous)),
          version_(greeting.version), isOverlapped_(greeting.prefersOverlapped)
    {
    }

    /// Makes the two channels one session.
    ViStatus join(std::uint16_t sessionId, const Deadline& deadline);

    ViStatus read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count) override;
    ViStatus write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count) override;
    ViStatus clear(const Terms& terms) override;
    ViStatus discardInput(const Terms& terms) override;
    ViStatus readStatusByte(const Terms& terms, ViUInt16& status) override;
    ViStatus trigger(const Terms& terms) override;
    ViStatus controlRemote(const Terms& terms, ViUInt16 mode) override;
    ViStatus lock(const Terms& terms, const LockRequest& request) override;
    ViStatus unlock(const Terms& terms, bool isShared) override;
    std::optional<ViAccessMode> lockState(const Terms& terms) override;
    ViStatus setAttribute(ViAttr attribute, ViAttrState value) override;
    ViUInt32 numberFact(ViAttr attribute) override;
    std::string textFact(ViAttr attribute) override;
    void interrupt() noexcept override;

private:
    // The end of the connection
    ViStatus fail(ViStatus status);
    ViStatus told(ViStatus status) const;

    // Asynchronous channel
    ViStatus ask(const HislipHeader& question, std::span<const ViByte> payload, HislipType answerType,
                 const Deadline& deadline, Answer& answer);
    ViStatus sendQuestion(HislipHeader question, std::span<const ViByte> payload, const Deadline& deadline);
    ViStatus awaitAnswer(HislipType type, const Deadline& deadline, Answer& answer);
    ViStatus awaitInterruption(const Deadline& deadline);
    ViStatus takePayload(Answer& answer, const Deadline& deadline);
    std::uint32_t& unanswered(HislipType type) { return unanswered_[static_cast<std::size_t>(type)]; }

    // Synchronous channel
    ViStatus nextMessage(const Deadline& deadline, std::size_t& count);
    bool isAnswerToLast(const HislipHeader& header) const;
    ViStatus finishMessage(const Terms& terms);
    ViStatus takeData(std::span<ViByte> room, const Terms& terms, std::size_t& taken);
    void dropArrivedReplies();
    ViStatus readyToSend(const Deadline& deadline);
    ViStatus sendNumbered(HislipType type, std::span<const ViByte> payload, const Deadline& deadline,
                          std::size_t& count);
    ViStatus exchangeClear(bool overlapped, const Deadline& deadline);
    ViStatus clearInto(bool overlapped, const Deadline& deadline);
    ViStatus setOverlapped(bool overlapped);
    ViStatus negotiateSize(std::uint64_t kilobytes);
    void complain(HislipChannel& channel, const HislipHeader& header);
    ViByte takeDelivered() { return isDelivered_.exchange(false) ? kDelivered : ViByte{0}; }

    const std::unique_ptr<HislipChannel> synchronousChannel_;
    const std::unique_ptr<HislipChannel> asynchronousChannel_;
    HislipChannel& synchronous_ = *synchronousChannel_;
    HislipChannel& asynchronous_ = *asynchronousChannel_;
    const std::uint16_t version_;
    std::atomic<std::uint64_t> largestPayload_ = kUsualPayload;
    std::atomic<bool> isOverlapped_;
    std::atomic<bool> isClosing_ = false;
    std::atomic<bool> isLost_ = false;
    /// A device clear has begun, and the device drops what is sent until it is complete.
    std::atomic<bool> isClearing_ = false;

    Turn sending_;
    std::uint32_t nextId_ = kFirstId;
    std::atomic<std::uint32_t> lastSentId_ = kBeforeFirstId;

    Turn reading_;
    bool isInMessage_ = false;
    HislipHeader message_;                                        ///< the one that is being read
    std::atomic<std::uint32_t> lastDeliveredId_ = kBeforeFirstId; ///< overlapped
    std::atomic<bool> isDelivered_ = false;                       ///< a whole reply, since the device was told last

    /// How many more messages of an interruption have come on the synchronous channel than on the other. As long as
    /// there are more, nothing may be sent, as long as there are fewer, replies are void.
    std::atomic<int> interruptions_ = 0;

    Turn asking_;
    /// Answers that nobody waits for any more, by their type.
    std::array<std::uint32_t, kHislipTypes> unanswered_{};
};

// The end of the connection ------------------------------------------------------------------------------------------

/// Leaves a device that does not follow the protocol, or lets one go that has left.
ViStatus HislipTransport::fail(ViStatus status)
{
    if (isLost_.exchange(true))
        return status;
    if (status == VI_ERROR_INP_PROT_VIOL) {
        synchronous_.tell({HislipType::FatalError, kPoorlyFormedHeader});
        asynchronous_.tell({HislipType::FatalError, kPoorlyFormedHeader});
    }
    synchronous_.stream().interrupt();
    asynchronous_.stream().interrupt();
    return status;
}

/// What ended because the connection was given up by another call was not ended by the session's own end.
ViStatus HislipTransport::told(ViStatus status) const
{
    return status == VI_ERROR_INV_OBJECT && isLost_ && !isClosing_ ? VI_ERROR_CONN_LOST : status;
}

void HislipTransport::interrupt() noexcept
{
    isClosing_ = true;
    for (Turn* const turn : {&sending_, &reading_, &asking_})
        turn->interrupt([] {});
    synchronous_.stream().interrupt();
    asynchronous_.stream().interrupt();
}

void HislipTransport::complain(HislipChannel& channel, const HislipHeader& header)
{
    const bool isVendors = static_cast<ViByte>(header.type) >= kFirstVendorType;
    channel.tell({HislipType::Error, isVendors ? kUnrecognizedVendorType : kUnrecognizedType});
}

// Initialization -----------------------------------------------------------------------------------------------------

ViStatus HislipTransport::join(std::uint16_t sessionId, const Deadline& deadline)
{
    Answer joined;
    return ask({HislipType::AsyncInitialize, 0, sessionId}, {}, HislipType::AsyncInitializeResponse, deadline, joined);
}

// The asynchronous channel -------------------------------------------------------------------------------------------

ViStatus HislipTransport::ask(const HislipHeader& question, std::span<const ViByte> payload, HislipType answerType,
                              const Deadline& deadline, Answer& answer)
{
    const TurnTaken turn(asking_, deadline);
    if (turn.status() < 0)
        return turn.status();
    if (isLost_)
        return VI_ERROR_CONN_LOST;
    ViStatus status = awaitInterruption(deadline);
    if (status >= 0)
        status = sendQuestion(question, payload, deadline);
    if (status < 0)
        return told(status);
    status = awaitAnswer(answerType, deadline, answer);
    if (status == VI_ERROR_TMO || status == VI_ERROR_ABORT)
        ++unanswered(answerType);
    return told(status);
}

ViStatus HislipTransport::sendQuestion(HislipHeader question, std::span<const ViByte> payload, const Deadline& deadline)
{
    if (question.type == HislipType::AsyncStatusQuery)
        question.control = takeDelivered();
    std::size_t count = 0;
    const ViStatus status = asynchronous_.send(question, payload, deadline, count);
    // The rest of a question that has gone in part cannot be taken back.
    if (status < 0 && asynchronous_.owesOutput())
        return fail(status);
    if (status < 0 && question.type == HislipType::AsyncStatusQuery && question.control != 0)
        isDelivered_ = true;
    return status;
}

ViStatus HislipTransport::awaitAnswer(HislipType type, const Deadline& deadline, Answer& answer)
{
    for (;;) {
        ViStatus status = asynchronous_.receiveHeader(answer.header, deadline);
        if (status == VI_ERROR_INP_PROT_VIOL)
            return fail(status);
        if (status < 0)
            return status;
        const HislipType came = answer.header.type;
        const auto sender = sentOn(came);
        if (came == HislipType::FatalError)
            return fail(statusOfFatalError(answer.header.control));
        if (came == HislipType::Error)
            return statusOfError(answer.header.control);
        if (sender != HislipSender::Asynchronous) {
            complain(asynchronous_, answer.header);
            continue;
        }
        if (came == HislipType::AsyncInterrupted)
            --interruptions_;
        if (unanswered(came) > 0)
            --unanswered(came);
        else if (came == type)
            return takePayload(answer, deadline);
    }
}

ViStatus HislipTransport::takePayload(Answer& answer, const Deadline& deadline)
{
    if (answer.header.type != HislipType::AsyncMaximumMessageSizeResponse)
        return VI_SUCCESS;
    if (answer.header.length != answer.payload.size())
        return fail(VI_ERROR_INP_PROT_VIOL);
    for (std::size_t size = 0; size < answer.payload.size();) {
        std::size_t count = 0;
        const ViStatus status = asynchronous_.receive(std::span(answer.payload).subspan(size), deadline, count);
        if (status < 0)
            return status;
        size += count;
    }
    return VI_SUCCESS;
}

/// Nothing may be sent between the two messages of an interruption.
ViStatus HislipTransport::awaitInterruption(const Deadline& deadline)
{
    while (interruptions_ > 0) {
        Answer ignored;
        const ViStatus status = awaitAnswer(HislipType::AsyncInterrupted, deadline, ignored);
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus HislipTransport::readStatusByte(const Terms& terms, ViUInt16& status)
{
    const std::uint32_t id = isOverlapped_ ? lastDeliveredId_ : lastSentId_;
    Answer answer;
    const ViStatus asked =
        ask({HislipType::AsyncStatusQuery, 0, id}, {}, HislipType::AsyncStatusResponse, terms.deadline, answer);
    if (asked >= 0)
        status = answer.header.control;
    return asked;
}

ViStatus HislipTransport::controlRemote(const Terms& terms, ViUInt16 mode)
{
    Answer answer;
    return ask({HislipType::AsyncRemoteLocalControl, static_cast<ViByte>(mode), lastSentId_}, {},
               HislipType::AsyncRemoteLocalResponse, terms.deadline, answer);
}

ViStatus HislipTransport::lock(const Terms& terms, const LockRequest& request)
{
    const auto waitMs =
        static_cast<ViUInt32>(terms.deadline.remainingMs(std::numeric_limits<int>::max() - kLockGraceMs));
    const Deadline grace(waitMs + kLockGraceMs);
    const std::span key(reinterpret_cast<const ViByte*>(request.key.data()), request.isShared ? request.key.size() : 0);
    Answer answer;
    const ViStatus asked =
        ask({HislipType::AsyncLock, kRequest, waitMs}, key, HislipType::AsyncLockResponse, grace, answer);
    // A lock that comes when nobody waits for it any more would stay.
    if (asked == VI_ERROR_TMO)
        return fail(asked);
    if (asked < 0)
        return asked;
    const ViStatus status = statusOfLock(answer.header.control);
    return status == VI_ERROR_TMO && waitMs == 0 ? VI_ERROR_RSRC_LOCKED : status;
}

ViStatus HislipTransport::unlock(const Terms& terms, bool)
{
    Answer answer;
    const ViStatus asked =
        ask({HislipType::AsyncLock, kRelease, lastSentId_}, {}, HislipType::AsyncLockResponse, terms.deadline, answer);
    return asked < 0 ? asked : statusOfUnlock(answer.header.control);
}

std::optional<ViAccessMode> HislipTransport::lockState(const Terms& terms)
{
    Answer answer;
    if (ask({HislipType::AsyncLockInfo}, {}, HislipType::AsyncLockInfoResponse, terms.deadline, answer) < 0)
        return std::nullopt;
    if (answer.header.control != 0)
        return VI_EXCLUSIVE_LOCK;
    return answer.header.parameter > 0 ? VI_SHARED_LOCK : VI_NO_LOCK;
}

// Reading ------------------------------------------------------------------------------------------------------------

ViStatus HislipTransport::read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count)
{
    count = 0;
    const TurnTaken turn(reading_, terms.deadline);
    if (turn.status() < 0)
        return turn.status();
    while (count < buffer.size()) {
        if (isLost_)
            return VI_ERROR_CONN_LOST;
        ViStatus status = isInMessage_ ? VI_SUCCESS : nextMessage(terms.deadline, count);
        if (status < 0)
            return told(status);
        std::size_t taken = 0;
        if (synchronous_.payloadLeft() > 0)
            status = takeData(buffer.subspan(count), terms, taken);
        count += taken;
        if (status < 0)
            return told(status);
        const bool isWhole = synchronous_.payloadLeft() == 0;
        const ViStatus ended = isWhole ? finishMessage(terms) : VI_SUCCESS_MAX_CNT;
        if (ended == VI_SUCCESS || status == VI_SUCCESS_TERM_CHAR)
            return ended == VI_SUCCESS ? ended : status;
    }
    return VI_SUCCESS_MAX_CNT;
}

/// Takes some of the payload, and nothing behind a termination character.
ViStatus HislipTransport::takeData(std::span<ViByte> room, const Terms& terms, std::size_t& taken)
{
    if (terms.attributes.get<VI_ATTR_TERMCHAR_EN>() != VI_TRUE)
        return synchronous_.receive(room, terms.deadline, taken);
    std::span<const ViByte> arrived;
    const ViStatus status = synchronous_.look(terms.deadline, arrived);
    if (status < 0)
        return status;
    taken = std::min(room.size(), arrived.size());
    const auto termChar = static_cast<ViByte>(terms.attributes.get<VI_ATTR_TERMCHAR>());
    const auto* const end = static_cast<const ViByte*>(std::memchr(arrived.data(), termChar, taken));
    if (end != nullptr)
        taken = static_cast<std::size_t>(end - arrived.data()) + 1;
    std::copy_n(arrived.begin(), taken, room.begin());
    synchronous_.take(taken);
    return end != nullptr ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS;
}

/// @return VI_SUCCESS when this ends a reply and with it the read
ViStatus HislipTransport::finishMessage(const Terms& terms)
{
    isInMessage_ = false;
    lastDeliveredId_ = message_.parameter;
    if (message_.type != HislipType::DataEnd)
        return VI_SUCCESS_MAX_CNT;
    isDelivered_ = true;
    return terms.attributes.get<VI_ATTR_SUPPRESS_END_EN>() == VI_TRUE ? VI_SUCCESS_MAX_CNT : VI_SUCCESS;
}

bool HislipTransport::isAnswerToLast(const HislipHeader& header) const
{
    return header.parameter == lastSentId_ || (header.type == HislipType::Data && header.parameter == kUnknownId);
}

/// Waits for data that answer the last question.
/// @param count of what the present read has stored, which an interruption makes void
ViStatus HislipTransport::nextMessage(const Deadline& deadline, std::size_t& count)
{
    for (;;) {
        HislipHeader header;
        const ViStatus status = synchronous_.receiveHeader(header, deadline);
        if (status == VI_ERROR_INP_PROT_VIOL)
            return fail(status);
        if (status < 0)
            return status;
        if (header.type == HislipType::FatalError)
            return fail(statusOfFatalError(header.control));
        if (header.type == HislipType::Error)
            return statusOfError(header.control);
        if (header.type == HislipType::Interrupted) {
            ++interruptions_;
            count = 0;
        } else if (isData(header.type)) {
            const bool isVoid = interruptions_ < 0 || (!isOverlapped_ && !isAnswerToLast(header));
            if (!isVoid) {
                message_ = header;
                isInMessage_ = true;
                return VI_SUCCESS;
            }
            count = 0;
        } else if (sentOn(header.type) != HislipSender::Synchronous) {
            complain(synchronous_, header);
        }
    }
}

/// A question makes void what has come in answer to an earlier one.
void HislipTransport::dropArrivedReplies()
{
    const TurnTaken reading(reading_, std::try_to_lock);
    // Whoever reads knows an answer to an earlier question by its number.
    if (reading.status() >= 0)
        isInMessage_ = false;
}

ViStatus HislipTransport::discardInput(const Terms& terms)
{
    const TurnTaken reading(reading_, std::try_to_lock);
    if (reading.status() < 0)
        return VI_SUCCESS;
    isInMessage_ = false;
    constexpr std::uint64_t kMostDiscarded = std::uint64_t{16} * 1024 * 1024;
    const Deadline now(VI_TMO_IMMEDIATE);
    for (std::uint64_t discarded = 0; discarded < kMostDiscarded && !isLost_; discarded += message_.length) {
        std::size_t none = 0;
        const ViStatus status = nextMessage(now, none);
        if (status == VI_ERROR_TMO)
            return VI_SUCCESS;
        if (status < 0)
            return told(status);
        isInMessage_ = false;
        if (terms.deadline.remainingMs(1) == 0)
            break;
    }
    return isLost_ ? VI_ERROR_CONN_LOST : VI_ERROR_TMO;
}

// Writing ------------------------------------------------------------------------------------------------------------

ViStatus HislipTransport::readyToSend(const Deadline& deadline)
{
    if (isLost_)
        return VI_ERROR_CONN_LOST;
    // Only a device clear gets a message across that was cut short, or ends one that was.
    if (isClearing_ || synchronous_.owesOutput())
        return VI_ERROR_IO;
    if (!isOverlapped_)
        dropArrivedReplies();
    if (interruptions_ <= 0)
        return VI_SUCCESS;
    const TurnTaken turn(asking_, deadline);
    return turn.status() < 0 ? turn.status() : awaitInterruption(deadline);
}

ViStatus HislipTransport::sendNumbered(HislipType type, std::span<const ViByte> payload, const Deadline& deadline,
                                       std::size_t& count)
{
    const std::uint32_t before = lastSentId_;
    const ViByte delivered = takeDelivered();
    lastSentId_ = nextId_;
    const ViStatus status = synchronous_.send({type, delivered, nextId_}, payload, deadline, count);
    if (status >= 0 || synchronous_.owesOutput()) {
        nextId_ += kIdStep;
        return status;
    }
    // The device has not seen anything of it.
    lastSentId_ = before;
    if (delivered != 0)
        isDelivered_ = true;
    return status;
}

ViStatus HislipTransport::write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count)
{
    count = 0;
    const TurnTaken turn(sending_, terms.deadline);
    if (turn.status() < 0)
        return turn.status();
    ViStatus status = readyToSend(terms.deadline);
    const bool sendsEnd = terms.attributes.get<VI_ATTR_SEND_END_EN>() == VI_TRUE;
    while (status >= 0 && count < bytes.size()) {
        const std::uint64_t left = bytes.size() - count;
        const auto part =
            bytes.subspan(count, static_cast<std::size_t>(std::min<std::uint64_t>(left, largestPayload_)));
        const bool isLast = part.size() == left;
        std::size_t sent = 0;
        status = sendNumbered(isLast && sendsEnd ? HislipType::DataEnd : HislipType::Data, part, terms.deadline, sent);
        count += sent;
    }
    return told(status);
}

ViStatus HislipTransport::trigger(const Terms& terms)
{
    const TurnTaken turn(sending_, terms.deadline);
    if (turn.status() < 0)
        return turn.status();
    ViStatus status = readyToSend(terms.deadline);
    std::size_t count = 0;
    if (status >= 0)
        status = sendNumbered(HislipType::Trigger, {}, terms.deadline, count);
    return told(status);
}

// Device clear -------------------------------------------------------------------------------------------------------

ViStatus HislipTransport::clear(const Terms& terms)
{
    return clearInto(isOverlapped_, terms.deadline);
}

ViStatus HislipTransport::clearInto(bool overlapped, const Deadline& deadline)
{
    const TurnTaken sending(sending_, deadline);
    const TurnTaken asking(asking_, deadline);
    const TurnTaken reading(reading_, deadline);
    if (const ViStatus taken = std::min({sending.status(), asking.status(), reading.status()}); taken < 0)
        return taken;
    if (isLost_)
        return VI_ERROR_CONN_LOST;
    isClearing_ = true;
    const ViStatus status = exchangeClear(overlapped, deadline);
    if (status < 0)
        return told(asynchronous_.owesOutput() ? fail(status) : status);
    isClearing_ = false;
    isInMessage_ = false;
    isDelivered_ = false;
    nextId_ = kFirstId;
    lastSentId_ = kBeforeFirstId;
    lastDeliveredId_ = kBeforeFirstId;
    interruptions_ = 0;
    unanswered_ = {};
    return isOverlapped_ == overlapped ? VI_SUCCESS : VI_ERROR_NSUP_ATTR_STATE;
}

ViStatus HislipTransport::exchangeClear(bool overlapped, const Deadline& deadline)
{
    std::size_t count = 0;
    Answer acknowledged;
    ViStatus status = asynchronous_.send({HislipType::AsyncDeviceClear}, {}, deadline, count);
    if (status >= 0)
        status = awaitAnswer(HislipType::AsyncDeviceClearAcknowledge, deadline, acknowledged);
    // The device no longer looks at what it is sent.
    if (status >= 0)
        status = synchronous_.sendOwed(deadline);
    if (status >= 0)
        status = synchronous_.send({HislipType::DeviceClearComplete, overlapped ? kOverlapped : ViByte{0}}, {},
                                   deadline, count);
    while (status >= 0) {
        HislipHeader header;
        status = synchronous_.receiveHeader(header, deadline);
        if (status == VI_ERROR_INP_PROT_VIOL)
            return fail(status);
        if (status >= 0 && header.type == HislipType::FatalError)
            return fail(statusOfFatalError(header.control));
        if (status >= 0 && header.type == HislipType::DeviceClearAcknowledge) {
            isOverlapped_ = (header.control & kOverlapped) != 0;
            return VI_SUCCESS;
        }
    }
    return status;
}

// Attributes ---------------------------------------------------------------------------------------------------------

ViStatus HislipTransport::setAttribute(ViAttr attribute, ViAttrState value)
{
    switch (attribute) {
    case VI_ATTR_TCPIP_HISLIP_OVERLAP_EN:
        return setOverlapped(value == VI_TRUE);
    case VI_ATTR_TCPIP_HISLIP_MAX_MESSAGE_KB:
        return value == 0 ? VI_ERROR_NSUP_ATTR_STATE : negotiateSize(value);
    case VI_ATTR_TCPIP_HISLIP_ENCRYPTION_EN:
        return value == VI_FALSE ? VI_SUCCESS : VI_ERROR_NSUP_ATTR_STATE;
    default:
        return synchronous_.stream().setAttribute(attribute, static_cast<ViUInt32>(value));
    }
}

ViStatus HislipTransport::setOverlapped(bool overlapped)
{
    return isOverlapped_ == overlapped ? VI_SUCCESS : clearInto(overlapped, Deadline(kSettingMs));
}

/// Tells the device how large its messages may be, and learns how large its client's may be.
ViStatus HislipTransport::negotiateSize(std::uint64_t kilobytes)
{
    std::array<ViByte, sizeof(std::uint64_t)> size{};
    encodeSize(kilobytes * kBytesPerKilobyte, size);
    Answer answer;
    const ViStatus status = ask({HislipType::AsyncMaximumMessageSize}, size,
                                HislipType::AsyncMaximumMessageSizeResponse, Deadline(kSettingMs), answer);
    if (status < 0)
        return status;
    const std::uint64_t largest = decodeSize(answer.payload);
    if (largest == 0)
        return fail(VI_ERROR_INP_PROT_VIOL);
    // Whether the device counts the header is not said: this suits both.
    largestPayload_ = largest > kHislipHeaderSize ? largest - kHislipHeaderSize : largest;
    return VI_SUCCESS;
}

ViUInt32 HislipTransport::numberFact(ViAttr)
{
    // VI_ATTR_TCPIP_HISLIP_VERSION, in the layout of a ViVersion.
    return static_cast<ViUInt32>(version_ >> 8U) << 20U | static_cast<ViUInt32>(version_ & 0xFFU) << 8U;
}

std::string HislipTransport::textFact(ViAttr)
{
    return synchronous_.stream().address();
}

/// Asks a device for a session.
ViStatus greet(HislipChannel& channel, std::string_view device, const Deadline& deadline, Greeting& greeting)
{
    const std::span name(reinterpret_cast<const ViByte*>(device.data()), device.size());
    std::size_t count = 0;
    HislipHeader answer;
    ViStatus status = channel.send({HislipType::Initialize, 0, kNewestVersion << 16U | kVendor}, name, deadline, count);
    if (status >= 0)
        status = channel.receiveHeader(answer, deadline);
    if (status < 0)
        return status;
    if (answer.type == HislipType::FatalError)
        return statusOfFatalError(answer.control);
    greeting.version = static_cast<std::uint16_t>(answer.parameter >> 16U);
    greeting.sessionId = static_cast<std::uint16_t>(answer.parameter & 0xFFFFU);
    greeting.prefersOverlapped = (answer.control & kOverlapped) != 0;
    if (answer.type != HislipType::InitializeResponse || greeting.version < kOldestVersion ||
        greeting.version > kNewestVersion)
        return VI_ERROR_INP_PROT_VIOL;
    const bool wantsEncryption = greeting.version == kNewestVersion && (answer.control & kEncryptionBits) != 0;
    return wantsEncryption ? VI_ERROR_INV_PROT : VI_SUCCESS;
}

ViStatus openChannel(const HislipConnect& connect, const Deadline& deadline, std::size_t inputSize,
                     std::unique_ptr<HislipChannel>& channel)
{
    std::unique_ptr<Stream> stream;
    const ViStatus status = connect(deadline, stream);
    if (status >= 0)
        channel = std::make_unique<HislipChannel>(std::move(stream), inputSize);
    return status;
}

} // namespace

ViStatus openHislip(const HislipConnect& connect, std::string_view device, const Deadline& deadline,
                    std::unique_ptr<Transport>& transport)
{
    std::unique_ptr<HislipChannel> synchronous;
    std::unique_ptr<HislipChannel> asynchronous;
    Greeting greeting;
    ViStatus status = openChannel(connect, deadline, kSynchronousInput, synchronous);
    if (status >= 0)
        status = greet(*synchronous, device, deadline, greeting);
    if (status >= 0)
        status = openChannel(connect, deadline, kAsynchronousInput, asynchronous);
    if (status < 0)
        return status;
    auto opened = std::make_unique<HislipTransport>(std::move(synchronous), std::move(asynchronous), greeting);
    status = opened->join(greeting.sessionId, deadline);
    if (status >= 0)
        transport = std::move(opened);
    return status;
}

ViStatus openHislip(const ResourceName& name, const Deadline& deadline, std::unique_ptr<Transport>& transport)
{
    ResourceName address = name;
    address.port = name.port != 0 ? name.port : kHislipPort;
    const auto connect = [&address](const Deadline& limit, std::unique_ptr<Stream>& stream) {
        return openTcpStream(address, limit, stream);
    };
    return openHislip(connect, name.namesDevice ? std::string_view(name.device) : kDefaultDevice, deadline, transport);
}

} // namespace visa
