#pragma once

#include "visa/attribute/attributes.h"
#include "visa/resource/resource_name.h"
#include "visa/session/resource_lock.h"
#include "visa/session/session.h"
#include "visa/transport/transports.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace visa
{

/// A session to an instrument: VISA's rules for attributes and locks, on top of a transport.
class InstrumentSession : public Session
{
public:
    struct Identity
    {
        ViSession self;
        ViSession manager;
        ResourceName name;
    };

    /// @param lock the resource's lock; what this session holds of it is given back at the end
    InstrumentSession(Identity identity, OpenedTransport opened, std::shared_ptr<ResourceLock> lock);
    ~InstrumentSession() override;
    InstrumentSession(const InstrumentSession&) = delete;
    InstrumentSession& operator=(const InstrumentSession&) = delete;

    ViSession manager() const override { return identity_.manager; }
    ViStatus getAttribute(ViAttr attribute, void* value) override;
    ViStatus setAttribute(ViAttr attribute, ViAttrState value) override;
    ViStatus read(std::span<ViByte> buffer, std::size_t& count) override;
    ViStatus write(std::span<const ViByte> bytes, std::size_t& count) override;
    ViStatus lockExclusively(ViUInt32 timeoutMs) override;
    ViStatus lockShared(ViUInt32 timeoutMs, std::optional<std::string>& key) override;
    ViStatus unlock() override;
    ViStatus setBuffer(ViUInt16 mask, ViUInt32 size) override;
    ViStatus flush(ViUInt16 mask) override;
    ViStatus clear() override;
    ViStatus trigger() override;
    ViStatus readStatusByte(ViUInt16& status) override;
    ViStatus controlRemote(ViUInt16 mode) override;
    ViStatus abort() override;
    void interrupt() noexcept override;

    /// Brings the initial values of the connection's own attributes into force, and takes those that it suggests.
    ViStatus applyInitialAttributes();

private:
    template <class Operation>
    ViStatus admitted(Operation operation);
    Deadline deadlineIn(ViUInt32 timeoutMs) const { return {timeoutMs, aborts_}; }
    ViStatus lockDevice(ViStatus acquired, const Deadline& deadline, const LockRequest& request);
    ViAccessMode lockState();
    ViAttrState numberFact(ViAttr attribute);
    std::string textFact(ViAttr attribute) const;

    const Identity identity_;
    const std::unique_ptr<Transport> transport_;
    const SessionClass sessionClass_;
    const std::shared_ptr<ResourceLock> lock_;
    std::atomic<bool> isClosing_ = false;
    Aborts aborts_ = 0;

    std::mutex settingMutex_; ///< held by the one change of values_ under way
    AttributeValues values_;
};

} // namespace visa
