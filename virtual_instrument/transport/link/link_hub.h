#pragma once

#include "virtual_instrument/scpi/virtual_instrument.h"
#include "virtual_instrument/transport/journal.h"
#include "virtual_instrument/transport/link/device_locks.h"

#include <asio.hpp>
#include <set>

namespace kvxvirtual
{

class InstrumentLink;

/// What all links to one instrument share: the instrument, its locks, and the look at its status that makes links
/// request service. The references must outlive the hub, and the hub must outlive its links.
class LinkHub
{
public:
    /// The hub becomes the observer of the instrument's status.
    LinkHub(asio::io_context& context, VirtualInstrument& instrument, Journal& journal);
    ~LinkHub();

    LinkHub(const LinkHub&) = delete;
    LinkHub& operator=(const LinkHub&) = delete;

    asio::io_context& context() { return context_; }
    VirtualInstrument& instrument() { return instrument_; }
    Journal& journal() { return journal_; }
    DeviceLocks& locks() { return locks_; }

private:
    friend class InstrumentLink;

    void add(InstrumentLink& link);
    void remove(InstrumentLink& link) { links_.erase(&link); }

    void lookAtStatus();
    /// Some of the status changes by time alone. While somebody would be told, it is looked at now and then.
    void watchStatus();

    asio::io_context& context_;
    VirtualInstrument& instrument_;
    Journal& journal_;
    DeviceLocks locks_;
    std::set<InstrumentLink*> links_;
    asio::steady_timer watch_;
    bool watching_ = false;
};

} // namespace kvxvirtual
