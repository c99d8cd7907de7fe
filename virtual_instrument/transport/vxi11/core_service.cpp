#include "virtual_instrument/transport/vxi11/core_service.h"

#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <utility>

namespace kvxvirtual::vxi11
{
namespace
{

constexpr std::string_view kDevice = "inst0";
constexpr std::chrono::milliseconds kLongestConnect{2000};

InstrumentLink::Duration milliseconds(std::uint32_t count)
{
    return InstrumentLink::Duration(count);
}

std::string wordsOf(std::initializer_list<std::uint32_t> numbers)
{
    XdrWriter writer;
    for (const auto number : numbers)
        writer.word(number);
    return writer.bytes();
}

bool isDevice(std::string_view name)
{
    return std::equal(name.begin(), name.end(), kDevice.begin(), kDevice.end(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

} // namespace

/// A link and what its client has asked to be told of.
class CoreService::DeviceLink final : public InstrumentLink::Events
{
public:
    DeviceLink(CoreService& service, LinkId number)
        : id(number), service_(service), link(service.hub_, service.name_, *this)
    {
    }

    void replyReady() override { service_.replyReady(*this); }
    void replyInterrupted() override {}
    void serviceRequested(unsigned char) override { service_.serviceRequested(*this); }

    const LinkId id;
    std::optional<std::string> srqHandle;

private:
    CoreService& service_;

public:
    /// The last: it may call as soon as it is there.
    InstrumentLink link;
};

struct CoreService::Row
{
    CoreProcedure procedure;
    Handler handle;
    std::size_t failureWords; ///< behind the error when it fails
};

const CoreService::Row CoreService::kRows[] = {
    {CoreProcedure::CreateLink, &CoreService::createLink, 3},
    {CoreProcedure::DeviceWrite, &CoreService::deviceWrite, 1},
    {CoreProcedure::DeviceRead, &CoreService::deviceRead, 2},
    {CoreProcedure::DeviceReadStb, &CoreService::deviceReadStb, 1},
    {CoreProcedure::DeviceTrigger, &CoreService::deviceTrigger, 0},
    {CoreProcedure::DeviceClear, &CoreService::deviceClear, 0},
    {CoreProcedure::DeviceRemote, &CoreService::deviceRemote, 0},
    {CoreProcedure::DeviceLocal, &CoreService::deviceLocal, 0},
    {CoreProcedure::DeviceLock, &CoreService::deviceLock, 0},
    {CoreProcedure::DeviceUnlock, &CoreService::deviceUnlock, 0},
    {CoreProcedure::DeviceEnableSrq, &CoreService::deviceEnableSrq, 0},
    {CoreProcedure::DeviceDocmd, &CoreService::deviceDocmd, 1},
    {CoreProcedure::DestroyLink, &CoreService::destroyLink, 0},
    {CoreProcedure::CreateIntrChan, &CoreService::createIntrChan, 0},
    {CoreProcedure::DestroyIntrChan, &CoreService::destroyIntrChan, 0},
};

CoreService::CoreService(LinkHub& hub, LinkRegistry& registry, std::string name, asio::ip::address address)
    : hub_(hub), registry_(registry), name_(std::move(name)), address_(std::move(address)), limit_(hub.context())
{
    hub_.journal().clientCame(name_);
}

CoreService::~CoreService()
{
    for (const auto& [id, link] : links_)
        registry_.remove(id);
    if (interrupts_ != nullptr)
        interrupts_->close();
    hub_.journal().clientWent(name_);
}

void CoreService::call(const RpcCall& call, Reply reply)
{
    constexpr std::uint32_t kNull = 0;
    if (call.program != kCoreProgram)
        return reply({Acceptance::ProgramUnavailable});
    if (call.version != kVersion)
        return reply(versionMismatch(kVersion));
    if (call.procedure == kNull)
        return reply({});
    const auto* const row = std::find_if(std::begin(kRows), std::end(kRows), [&call](const Row& each) {
        return static_cast<std::uint32_t>(each.procedure) == call.procedure;
    });
    if (row == std::end(kRows))
        return reply({Acceptance::ProcedureUnavailable});
    reply_ = std::move(reply);
    refusal_ = DeviceError::Locked;
    onFailure_.assign(row->failureWords * sizeof(std::uint32_t), '\0');
    XdrReader arguments(call.arguments);
    (this->*row->handle)(arguments);
}

// Answers ------------------------------------------------------------------------------------------------------------

void CoreService::answer(DeviceError error, std::string_view values)
{
    waiting_ = nullptr;
    waitsForReply_ = false;
    limit_.cancel();
    const auto reply = std::exchange(reply_, nullptr);
    reply({Acceptance::Success, wordsOf({static_cast<std::uint32_t>(error)}).append(values)});
}

void CoreService::answer(DeviceError error)
{
    answer(error, {});
}

void CoreService::fail(DeviceError error)
{
    answer(error, std::exchange(onFailure_, {}));
}

void CoreService::refuseArguments()
{
    std::exchange(reply_, nullptr)({Acceptance::GarbageArguments});
}

// Links --------------------------------------------------------------------------------------------------------------

CoreService::DeviceLink* CoreService::find(LinkId id)
{
    const auto found = links_.find(id);
    return found == links_.end() ? nullptr : found->second.get();
}

void CoreService::dropLink(LinkId id)
{
    registry_.remove(id);
    links_.erase(id);
}

void CoreService::onLink(const Terms& terms, std::function<void(DeviceLink&)> act)
{
    auto* const device = find(terms.link);
    if (device == nullptr)
        return fail(DeviceError::InvalidLink);
    if (!device->link.hasAccess() && (terms.flags & flag::kWaitLock) == 0)
        return fail(DeviceError::Locked);
    waiting_ = device;
    device->link.whenAccessible(milliseconds(terms.lockTimeout), [this, device, act = std::move(act)](bool accessible) {
        waiting_ = nullptr;
        if (accessible)
            act(*device);
        else
            fail(DeviceError::Locked);
    });
}

void CoreService::createLink(XdrReader& arguments)
{
    arguments.word(); // the client's own number
    const bool locks = arguments.flag();
    const auto lockTimeout = arguments.word();
    const auto device = arguments.opaque(kLongestDevice);
    if (!arguments.good())
        return refuseArguments();
    if (!isDevice(device))
        return fail(DeviceError::NotAccessible);
    const auto id = registry_.add(*this);
    if (!id)
        return fail(DeviceError::OutOfResources);
    auto& link = *links_.emplace(*id, std::make_unique<DeviceLink>(*this, *id)).first->second;
    if (!locks)
        return tellLink(link);
    waiting_ = &link;
    link.link.lock({}, milliseconds(lockTimeout), [this, &link](DeviceLocks::Answer granted) {
        waiting_ = nullptr;
        if (granted == DeviceLocks::Answer::Unavailable)
            dropLinkLater(link.id);
        else
            tellLink(link);
    });
}

/// The link itself is at work.
void CoreService::dropLinkLater(LinkId id)
{
    asio::post(hub_.context(), [this, life = std::weak_ptr(life_), id] {
        if (life.expired())
            return;
        dropLink(id);
        fail(refusal_);
    });
}

void CoreService::tellLink(const DeviceLink& link)
{
    answer(DeviceError::None, wordsOf({link.id, registry_.abortPort(), static_cast<std::uint32_t>(kMostReceived)}));
}

void CoreService::destroyLink(XdrReader& arguments)
{
    const LinkId id = arguments.word();
    if (!arguments.good())
        return refuseArguments();
    if (find(id) == nullptr)
        return fail(DeviceError::InvalidLink);
    dropLink(id);
    answer(DeviceError::None);
}

void CoreService::abort(LinkId id)
{
    if (waiting_ == nullptr || waiting_->id != id)
        return;
    refusal_ = DeviceError::Abort;
    auto& link = waiting_->link;
    if (link.endLockRequest())
        return;
    link.stopWaitingForAccess();
    fail(DeviceError::Abort);
}

// Messages -----------------------------------------------------------------------------------------------------------

void CoreService::deviceWrite(XdrReader& arguments)
{
    Terms terms;
    terms.link = arguments.word();
    terms.ioTimeout = arguments.word();
    terms.lockTimeout = arguments.word();
    terms.flags = arguments.word();
    std::string data(arguments.opaque(RecordAssembler::kLongestRecord));
    if (!arguments.good())
        return refuseArguments();
    if (data.size() > kMostReceived)
        return fail(find(terms.link) == nullptr ? DeviceError::InvalidLink : DeviceError::Parameter);
    onLink(terms, [this, data = std::move(data), end = (terms.flags & flag::kEnd) != 0](DeviceLink& device) {
        device.link.write(data, end);
        answer(DeviceError::None, wordsOf({static_cast<std::uint32_t>(data.size())}));
    });
}

void CoreService::deviceRead(XdrReader& arguments)
{
    Terms terms;
    terms.link = arguments.word();
    const auto most = arguments.word();
    terms.ioTimeout = arguments.word();
    terms.lockTimeout = arguments.word();
    terms.flags = arguments.word();
    const auto character = static_cast<char>(arguments.word());
    if (!arguments.good())
        return refuseArguments();
    wanted_ = {most, (terms.flags & flag::kTermChar) != 0 ? std::optional(character) : std::nullopt};
    onLink(terms, [this, ioTimeout = terms.ioTimeout](DeviceLink& device) { waitForReply(device, ioTimeout); });
}

void CoreService::waitForReply(DeviceLink& link, std::uint32_t ioTimeout)
{
    link.link.clientActed();
    if (link.link.hasReply())
        return sendReply(link);
    if (ioTimeout == 0)
        return replyTimedOut(link);
    waiting_ = &link;
    waitsForReply_ = true;
    limit_.expires_after(milliseconds(ioTimeout));
    limit_.async_wait([this, life = std::weak_ptr(life_), id = link.id](asio::error_code error) {
        if (!error && !life.expired() && waitsForReply_ && waiting_->id == id)
            replyTimedOut(*waiting_);
    });
}

void CoreService::replyReady(DeviceLink& link)
{
    if (waitsForReply_ && waiting_ == &link)
        sendReply(link);
}

void CoreService::sendReply(DeviceLink& link)
{
    const auto piece = link.link.take(wanted_.most, wanted_.stopAt);
    std::uint32_t reasons = piece.end ? reason::kEnd : 0;
    if (piece.bytes.size() == wanted_.most)
        reasons |= reason::kCount;
    if (wanted_.stopAt && piece.bytes.ends_with(*wanted_.stopAt))
        reasons |= reason::kTermChar;
    if (piece.end)
        link.link.setMessageAvailable(link.link.hasReply());
    answer(DeviceError::None, XdrWriter().word(reasons).opaque(piece.bytes).bytes());
}

void CoreService::replyTimedOut(DeviceLink& link)
{
    if (!link.link.expectsReply())
        link.link.reportUnterminated();
    fail(DeviceError::Timeout);
}

// The others ---------------------------------------------------------------------------------------------------------

void CoreService::generic(XdrReader& arguments, void (CoreService::*act)(DeviceLink& link))
{
    Terms terms;
    terms.link = arguments.word();
    terms.flags = arguments.word();
    terms.lockTimeout = arguments.word();
    terms.ioTimeout = arguments.word();
    if (!arguments.good())
        return refuseArguments();
    onLink(terms, [this, act](DeviceLink& device) { (this->*act)(device); });
}

void CoreService::pollLink(DeviceLink& device)
{
    answer(DeviceError::None, wordsOf({device.link.poll()}));
}

void CoreService::triggerLink(DeviceLink& device)
{
    device.link.trigger();
    answer(DeviceError::None);
}

void CoreService::clearLink(DeviceLink& device)
{
    device.link.clear();
    answer(DeviceError::None);
}

void CoreService::remoteLink(DeviceLink& device)
{
    device.link.request(PanelRequest::EnableRemoteAndGoToRemote);
    answer(DeviceError::None);
}

void CoreService::localLink(DeviceLink& device)
{
    device.link.request(PanelRequest::GoToLocal);
    answer(DeviceError::None);
}

void CoreService::deviceReadStb(XdrReader& arguments)
{
    generic(arguments, &CoreService::pollLink);
}

void CoreService::deviceTrigger(XdrReader& arguments)
{
    generic(arguments, &CoreService::triggerLink);
}

void CoreService::deviceClear(XdrReader& arguments)
{
    generic(arguments, &CoreService::clearLink);
}

void CoreService::deviceRemote(XdrReader& arguments)
{
    generic(arguments, &CoreService::remoteLink);
}

void CoreService::deviceLocal(XdrReader& arguments)
{
    generic(arguments, &CoreService::localLink);
}

void CoreService::deviceLock(XdrReader& arguments)
{
    const LinkId id = arguments.word();
    const bool waits = (arguments.word() & flag::kWaitLock) != 0;
    const auto timeout = arguments.word();
    if (!arguments.good())
        return refuseArguments();
    auto* const device = find(id);
    if (device == nullptr)
        return fail(DeviceError::InvalidLink);
    waiting_ = device;
    device->link.lock({}, milliseconds(waits ? timeout : 0), [this](DeviceLocks::Answer granted) {
        answer(granted == DeviceLocks::Answer::Unavailable ? refusal_ : DeviceError::None);
    });
}

void CoreService::deviceUnlock(XdrReader& arguments)
{
    const LinkId id = arguments.word();
    if (!arguments.good())
        return refuseArguments();
    auto* const device = find(id);
    if (device == nullptr)
        return fail(DeviceError::InvalidLink);
    const bool hadLock = device->link.unlock() != DeviceLocks::Released::None;
    answer(hadLock ? DeviceError::None : DeviceError::NoLockHeld);
}

void CoreService::deviceDocmd(XdrReader& arguments)
{
    const LinkId id = arguments.word();
    // Flags, both time-outs, the command, the order of its bytes and their size.
    for (int i = 0; i < 6; ++i)
        arguments.word();
    arguments.opaque(RecordAssembler::kLongestRecord);
    if (!arguments.good())
        return refuseArguments();
    fail(find(id) == nullptr ? DeviceError::InvalidLink : DeviceError::NotSupported);
}

// Service requests ---------------------------------------------------------------------------------------------------

void CoreService::deviceEnableSrq(XdrReader& arguments)
{
    const LinkId id = arguments.word();
    const bool enable = arguments.flag();
    const auto handle = arguments.opaque(kLongestHandle);
    if (!arguments.good())
        return refuseArguments();
    auto* const device = find(id);
    if (device == nullptr)
        return fail(DeviceError::InvalidLink);
    device->srqHandle = enable ? std::optional(std::string(handle)) : std::nullopt;
    answer(DeviceError::None);
}

void CoreService::createIntrChan(XdrReader& arguments)
{
    const auto host = arguments.word();
    const auto port = arguments.word();
    const auto program = arguments.word();
    const auto version = arguments.word();
    const auto family = arguments.word();
    if (!arguments.good())
        return refuseArguments();
    if (interrupts_ != nullptr)
        return fail(DeviceError::ChannelAlreadyEstablished);
    if (family != kInternetTcp)
        return fail(DeviceError::NotSupported);
    // Nobody makes this instrument connect to anybody else.
    const asio::ip::address target = asio::ip::address_v4(host);
    if (target != address_ || port == 0 || port > 0xFFFF)
        return fail(DeviceError::InvalidAddress);
    const auto channel = std::make_shared<InterruptChannel>(hub_.context(), program, version);
    channel->connect({target, static_cast<unsigned short>(port)}, kLongestConnect,
                     [this, channel, life = std::weak_ptr(life_)](bool connected) {
                         if (life.expired())
                             return channel->close();
                         if (connected)
                             interrupts_ = channel;
                         answer(connected ? DeviceError::None : DeviceError::ChannelNotEstablished);
                     });
}

void CoreService::destroyIntrChan(XdrReader&)
{
    if (interrupts_ == nullptr)
        return fail(DeviceError::ChannelNotEstablished);
    std::exchange(interrupts_, nullptr)->close();
    answer(DeviceError::None);
}

void CoreService::serviceRequested(const DeviceLink& link)
{
    if (interrupts_ != nullptr && link.srqHandle)
        interrupts_->requestService(*link.srqHandle);
}

} // namespace kvxvirtual::vxi11
