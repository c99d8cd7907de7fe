#include "visa/session/instrument_session.h"

#include <utility>

namespace visa
{

InstrumentSession::InstrumentSession(Identity identity, OpenedTransport opened, std::shared_ptr<ResourceLock> lock)
    : identity_(std::move(identity)), transport_(std::move(opened.transport)), sessionClass_(opened.sessionClass),
      lock_(std::move(lock))
{
}

InstrumentSession::~InstrumentSession()
{
    lock_->releaseAll(identity_.self);
}

ViStatus InstrumentSession::applyInitialAttributes()
{
    for (const AttributeRow& row : kAttributeRows) {
        if ((row.classes & sessionClass_) == 0)
            continue;
        if (row.holder == Holder::Suggested)
            values_.set(row.attribute, transport_->numberFact(row.attribute));
        if (row.holder != Holder::Connection)
            continue;
        const ViStatus status = transport_->setAttribute(row.attribute, row.initial);
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus InstrumentSession::getAttribute(ViAttr attribute, void* value)
{
    const AttributeRow* const row = findAttribute(attribute, sessionClass_);
    if (row == nullptr)
        return VI_ERROR_NSUP_ATTR;
    const bool isConnections = row->holder == Holder::ConnectionFact || row->holder == Holder::Line;
    if (row->type == ValueType::Text)
        storeText(isConnections ? transport_->textFact(attribute) : textFact(attribute), value);
    else
        storeNumber(isConnections ? transport_->numberFact(attribute) : numberFact(attribute), row->type, value);
    return VI_SUCCESS;
}

ViAttrState InstrumentSession::numberFact(ViAttr attribute)
{
    switch (attribute) {
    case VI_ATTR_TCPIP_PORT:
        return identity_.name.port != 0 ? identity_.name.port : kHislipPort;
    case VI_ATTR_TCPIP_IS_HISLIP:
        return sessionClass_ == kHislip ? VI_TRUE : VI_FALSE;
    case VI_ATTR_RSRC_LOCK_STATE:
        return lockState();
    case VI_ATTR_RM_SESSION:
        return identity_.manager;
    case VI_ATTR_INTF_TYPE:
        return interfaceType(identity_.name.kind);
    case VI_ATTR_INTF_NUM:
        return identity_.name.board;
    default:
        return values_.get(attribute);
    }
}

std::string InstrumentSession::textFact(ViAttr attribute) const
{
    if (findAttribute(attribute, sessionClass_)->holder == Holder::Absent)
        return {};
    switch (attribute) {
    case VI_ATTR_RSRC_MANF_NAME:
        return kManufacturerName;
    case VI_ATTR_INTF_INST_NAME:
        return interfaceName(identity_.name);
    case VI_ATTR_TCPIP_HOSTNAME:
        return identity_.name.address;
    case VI_ATTR_TCPIP_DEVICE_NAME:
        return identity_.name.device;
    case VI_ATTR_RSRC_CLASS:
        return std::string(identity_.name.resourceClass);
    default:
        return identity_.name.canonical;
    }
}

ViStatus InstrumentSession::setAttribute(ViAttr attribute, ViAttrState value)
{
    const AttributeRow* const row = findAttribute(attribute, sessionClass_);
    if (row == nullptr)
        return VI_ERROR_NSUP_ATTR;
    if (row->holder > Holder::Line)
        return VI_ERROR_ATTR_READONLY;
    const ViAttrState wanted = reduced(value, row->type);
    if (!row->allowed.contains(wanted))
        return VI_ERROR_NSUP_ATTR_STATE;
    // All sessions share a serial line's settings, and nothing else that can be set.
    const bool isOwn = row->holder == Holder::Session || row->holder == Holder::Suggested;
    const bool isShared = sessionClass_ == kSerial && !isOwn;
    if (isShared && !lock_->admits(identity_.self))
        return VI_ERROR_RSRC_LOCKED;
    const std::lock_guard guard(settingMutex_);
    const ViStatus status = isOwn ? VI_SUCCESS : transport_->setAttribute(attribute, wanted);
    if (status == VI_SUCCESS)
        values_.set(attribute, wanted);
    return status;
}

/// Runs operation(terms) unless another session's lock excludes this one.
template <class Operation>
ViStatus InstrumentSession::admitted(Operation operation)
{
    if (!lock_->admits(identity_.self))
        return VI_ERROR_RSRC_LOCKED;
    const Deadline deadline = deadlineIn(values_.get<VI_ATTR_TMO_VALUE>());
    return operation(Terms{values_, deadline});
}

ViStatus InstrumentSession::read(std::span<ViByte> buffer, std::size_t& count)
{
    return admitted([&](const Terms& terms) { return transport_->read(buffer, terms, count); });
}

ViStatus InstrumentSession::write(std::span<const ViByte> bytes, std::size_t& count)
{
    return admitted([&](const Terms& terms) { return transport_->write(bytes, terms, count); });
}

/// Gets the device's own lock behind the first of this session, which is given back where that fails.
ViStatus InstrumentSession::lockDevice(ViStatus acquired, const Deadline& deadline, const LockRequest& request)
{
    if (acquired != VI_SUCCESS)
        return acquired;
    const ViStatus status = transport_->lock({values_, deadline}, request);
    if (status < 0)
        lock_->release(identity_.self);
    return status < 0 ? status : VI_SUCCESS;
}

ViStatus InstrumentSession::lockExclusively(ViUInt32 timeoutMs)
{
    const Deadline deadline = deadlineIn(timeoutMs);
    return lockDevice(lock_->acquireExclusive(identity_.self, deadline, isClosing_), deadline, {});
}

ViStatus InstrumentSession::lockShared(ViUInt32 timeoutMs, std::optional<std::string>& key)
{
    const Deadline deadline = deadlineIn(timeoutMs);
    const ViStatus acquired = lock_->acquireShared(identity_.self, deadline, isClosing_, key);
    return lockDevice(acquired, deadline, {true, key.value_or("")});
}

ViStatus InstrumentSession::unlock()
{
    const auto released = lock_->release(identity_.self);
    if (!released.isLastOfItsKind)
        return released.status;
    // Not to be aborted: the device would keep what this process has given back.
    const Deadline deadline(values_.get<VI_ATTR_TMO_VALUE>());
    const ViStatus status = transport_->unlock({values_, deadline}, released.isShared);
    return status < 0 ? status : released.status;
}

ViAccessMode InstrumentSession::lockState()
{
    const Deadline deadline = deadlineIn(values_.get<VI_ATTR_TMO_VALUE>());
    return transport_->lockState({values_, deadline}).value_or(lock_->state());
}

ViStatus InstrumentSession::setBuffer(ViUInt16 mask, ViUInt32 size)
{
    constexpr unsigned kTransferBuffers = VI_IO_IN_BUF | VI_IO_OUT_BUF;
    constexpr unsigned kKnown = VI_READ_BUF | VI_WRITE_BUF | kTransferBuffers;
    if (mask == 0 || (mask & ~kKnown) != 0)
        return VI_ERROR_INV_MASK;
    // Output leaves with viWrite and there is no formatted input, so only received bytes can be waiting to be flushed.
    const ViStatus flushed = admitted(
        [&](const Terms& terms) { return (mask & VI_IO_IN_BUF) != 0 ? transport_->discardInput(terms) : VI_SUCCESS; });
    if (flushed < 0)
        return flushed;
    const std::lock_guard guard(settingMutex_);
    if ((mask & VI_READ_BUF) != 0)
        values_.set(VI_ATTR_RD_BUF_SIZE, size);
    if ((mask & VI_WRITE_BUF) != 0)
        values_.set(VI_ATTR_WR_BUF_SIZE, size);
    return (mask & kTransferBuffers) != 0 ? VI_WARN_NSUP_BUF : VI_SUCCESS;
}

ViStatus InstrumentSession::flush(ViUInt16 mask)
{
    constexpr unsigned kReceived = VI_IO_IN_BUF | VI_IO_IN_BUF_DISCARD;
    constexpr unsigned kKnown = kReceived | VI_IO_OUT_BUF | VI_IO_OUT_BUF_DISCARD | VI_READ_BUF | VI_READ_BUF_DISCARD |
                                VI_WRITE_BUF | VI_WRITE_BUF_DISCARD;
    if (mask == 0 || (mask & ~kKnown) != 0)
        return VI_ERROR_INV_MASK;
    // The other buffers are always empty: output leaves with viWrite, and there is no formatted I/O.
    return admitted(
        [&](const Terms& terms) { return (mask & kReceived) != 0 ? transport_->discardInput(terms) : VI_SUCCESS; });
}

ViStatus InstrumentSession::trigger()
{
    return admitted([&](const Terms& terms) { return transport_->trigger(terms); });
}

ViStatus InstrumentSession::readStatusByte(ViUInt16& status)
{
    return admitted([&](const Terms& terms) { return transport_->readStatusByte(terms, status); });
}

ViStatus InstrumentSession::controlRemote(ViUInt16 mode)
{
    return admitted([&](const Terms& terms) { return transport_->controlRemote(terms, mode); });
}

ViStatus InstrumentSession::abort()
{
    // Another session's lock has nothing to say: what is ended is this one's own.
    ++aborts_;
    lock_->wake();
    return transport_->abort();
}

ViStatus InstrumentSession::clear()
{
    return admitted([&](const Terms& terms) { return transport_->clear(terms); });
}

void InstrumentSession::interrupt() noexcept
{
    isClosing_.store(true);
    lock_->wake();
    transport_->interrupt();
}

} // namespace visa
