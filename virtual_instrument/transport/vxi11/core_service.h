#pragma once

#include "virtual_instrument/transport/link/instrument_link.h"
#include "virtual_instrument/transport/vxi11/interrupt_channel.h"
#include "virtual_instrument/transport/vxi11/rpc_connection.h"
#include "virtual_instrument/transport/vxi11/vxi11_protocol.h"
#include "virtual_instrument/transport/vxi11/xdr.h"

#include <asio.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual::vxi11
{

using LinkId = std::uint32_t;

class CoreService;

/// What the core channels of all clients share.
class LinkRegistry
{
public:
    LinkRegistry() = default;
    virtual ~LinkRegistry() = default;
    LinkRegistry(const LinkRegistry&) = delete;
    LinkRegistry& operator=(const LinkRegistry&) = delete;

    /// Takes a number for a link of this service; nothing when there are too many.
    virtual std::optional<LinkId> add(CoreService& service) = 0;
    virtual void remove(LinkId id) = 0;
    virtual unsigned short abortPort() const = 0;
};

/// The procedures of the core channel on one client's connection, and the links that it has created.
class CoreService final : public RpcService
{
public:
    /// `name` is the client's in the journal, `address` where it is. The references must outlive the service.
    CoreService(LinkHub& hub, LinkRegistry& registry, std::string name, asio::ip::address address);
    ~CoreService() override;
    CoreService(const CoreService&) = delete;
    CoreService& operator=(const CoreService&) = delete;

    void call(const RpcCall& call, Reply reply) override;

    /// Ends what a link waits for; harmless when it waits for nothing.
    void abort(LinkId id);

private:
    class DeviceLink;
    struct Row;
    static const Row kRows[];

    using Handler = void (CoreService::*)(XdrReader& arguments);

    /// What most procedures begin with.
    struct Terms
    {
        LinkId link = 0;
        std::uint32_t flags = 0;
        std::uint32_t lockTimeout = 0;
        std::uint32_t ioTimeout = 0;
    };

    void createLink(XdrReader& arguments);
    void deviceWrite(XdrReader& arguments);
    void deviceRead(XdrReader& arguments);
    void deviceReadStb(XdrReader& arguments);
    void deviceTrigger(XdrReader& arguments);
    void deviceClear(XdrReader& arguments);
    void deviceRemote(XdrReader& arguments);
    void deviceLocal(XdrReader& arguments);
    void deviceLock(XdrReader& arguments);
    void deviceUnlock(XdrReader& arguments);
    void deviceEnableSrq(XdrReader& arguments);
    void deviceDocmd(XdrReader& arguments);
    void destroyLink(XdrReader& arguments);
    void createIntrChan(XdrReader& arguments);
    void destroyIntrChan(XdrReader& arguments);

    void answer(DeviceError error);
    void answer(DeviceError error, std::string_view values);
    void refuseArguments();
    /// Answers with an error, and with what the procedure's result has beside it.
    void fail(DeviceError error);

    void generic(XdrReader& arguments, void (CoreService::*act)(DeviceLink& link));
    /// Runs act() on the link, now or when other links' locks allow it; answers with an error where they do not.
    void onLink(const Terms& terms, std::function<void(DeviceLink& link)> act);
    DeviceLink* find(LinkId id);
    void pollLink(DeviceLink& device);
    void triggerLink(DeviceLink& device);
    void clearLink(DeviceLink& device);
    void remoteLink(DeviceLink& device);
    void localLink(DeviceLink& device);
    void tellLink(const DeviceLink& link);
    void dropLink(LinkId id);
    void dropLinkLater(LinkId id);

    void waitForReply(DeviceLink& link, std::uint32_t ioTimeout);
    void replyReady(DeviceLink& link);
    void sendReply(DeviceLink& link);
    void replyTimedOut(DeviceLink& link);
    void serviceRequested(const DeviceLink& link);

    LinkHub& hub_;
    LinkRegistry& registry_;
    std::string name_;
    asio::ip::address address_;
    std::map<LinkId, std::unique_ptr<DeviceLink>> links_;
    std::shared_ptr<InterruptChannel> interrupts_;

    // The call under way.
    Reply reply_;
    std::string onFailure_; ///< the rest of its result when it fails
    struct Read
    {
        std::uint32_t most = 0;
        std::optional<char> stopAt;
    };
    Read wanted_;
    DeviceLink* waiting_ = nullptr; ///< the link that the call waits for something of
    bool waitsForReply_ = false;
    DeviceError refusal_ = DeviceError::Locked; ///< what a lock that is not to be had is answered with
    asio::steady_timer limit_;
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
};

} // namespace kvxvirtual::vxi11
