#pragma once

#include "tools/kvx2800t/panel/hub.h"
#include "tools/kvx2800t/panel/server.h"

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace panel
{

/// A server and a hub, joined: what pages ask for goes to the hub, what the hub tells to the pages.
class Front : HubListener, PageListener
{
public:
    /// Listens; the instrument is not opened before run(). Throws std::runtime_error when it cannot listen.
    Front(std::string resource, const std::string& address, unsigned short port);

    std::string address() const { return server_.gatekeeper().pageAddress(); }
    std::string visitAddress() const { return server_.gatekeeper().visitAddress(); }
    const Gatekeeper& gatekeeper() const { return server_.gatekeeper(); }
    /// Whether other machines reach it.
    bool isOpen() const { return server_.gatekeeper().isOpen(); }

    /// Serves until stop(), from any thread, or one of these signals.
    void run(const std::vector<int>& signals = {});
    void stop() { server_.stop(); }

private:
    void onSnapshot(const Snapshot& snapshot) override;
    void onErrors(const ErrorReport& report) override;
    void onResult(PageId page, const Result& result) override;
    void onLines(PageId page, const Lines& lines) override;
    void onList(const LoadedList& list) override;

    std::vector<std::string> greeting() override;
    bool onMessage(PageId page, std::string_view text) override;
    void onTick() override;

    const std::string resource_;
    Server server_;
    Hub* hub_ = nullptr; ///< while it runs

    // What pages that come later have to know.
    std::mutex mutex_;
    std::deque<kvx2800t::InstrumentError> errors_;
    std::map<int, LoadedList> lists_;
};

} // namespace panel
