#include "virtual_instrument/transport/link/link_hub.h"

#include "virtual_instrument/transport/link/instrument_link.h"

#include <chrono>

namespace kvxvirtual
{
namespace
{

constexpr std::chrono::milliseconds kWatchInterval{50};

} // namespace

LinkHub::LinkHub(asio::io_context& context, VirtualInstrument& instrument, Journal& journal)
    : context_(context), instrument_(instrument), journal_(journal), watch_(context)
{
    instrument_.setStatusObserver([this] { lookAtStatus(); });
}

LinkHub::~LinkHub()
{
    instrument_.setStatusObserver(nullptr);
}

void LinkHub::add(InstrumentLink& link)
{
    links_.insert(&link);
    lookAtStatus();
}

void LinkHub::lookAtStatus()
{
    if (links_.empty())
        return;
    // A link that is told may end, and take others with it.
    const auto links = links_;
    for (auto* const link : links) {
        if (links_.contains(link))
            link->lookAtStatus();
    }
    watchStatus();
}

void LinkHub::watchStatus()
{
    if (watching_ || links_.empty() || instrument_.status().serviceEnable() == 0)
        return;
    watching_ = true;
    watch_.expires_after(kWatchInterval);
    watch_.async_wait([this](asio::error_code error) {
        if (error)
            return;
        watching_ = false;
        lookAtStatus();
    });
}

} // namespace kvxvirtual
