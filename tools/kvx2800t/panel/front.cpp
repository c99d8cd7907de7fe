#include "tools/kvx2800t/panel/front.h"

#include "tools/kvx2800t/panel/messages.h"

#include <utility>

namespace panel
{
namespace
{

/// Errors of the instrument that are told to a page that connects.
constexpr std::size_t kMostErrors = 100;

} // namespace

Front::Front(std::string resource, const std::string& address, unsigned short port)
    : resource_(std::move(resource)), server_(address, port)
{
}

void Front::run(const std::vector<int>& signals)
{
    HubSettings settings;
    settings.resource = resource_;
    Hub hub(settings, *this);
    hub_ = &hub;
    server_.run(*this, signals);
    hub_ = nullptr;
}

void Front::onSnapshot(const Snapshot& snapshot)
{
    server_.sendState(stateMessage(snapshot));
}

void Front::onErrors(const ErrorReport& report)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (report.cleared)
            errors_.clear();
        errors_.insert(errors_.end(), report.entries.begin(), report.entries.end());
        while (errors_.size() > kMostErrors)
            errors_.pop_front();
    }
    server_.sendAll(errorsMessage(report));
}

void Front::onResult(PageId page, const Result& result)
{
    server_.send(page, resultMessage(result));
}

void Front::onLines(PageId page, const Lines& lines)
{
    server_.send(page, linesMessage(lines, true));
    server_.sendAll(linesMessage(lines, false), page);
}

void Front::onList(const LoadedList& list)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        lists_[list.channel] = list;
    }
    server_.sendAll(listMessage(list));
}

std::vector<std::string> Front::greeting()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> messages = {helloMessage(KVX_PANEL_VERSION, resource_, resource_.empty())};
    messages.push_back(errorsMessage({true, {errors_.begin(), errors_.end()}}));
    for (const auto& [channel, list] : lists_)
        messages.push_back(listMessage(list));
    return messages;
}

bool Front::onMessage(PageId page, std::string_view text)
{
    auto message = readRequest(text);
    if (auto* const request = std::get_if<PageRequest>(&message)) {
        hub_->submit(page, std::move(*request));
        return true;
    }
    const Refusal& refusal = std::get<Refusal>(message);
    if (refusal.isObject)
        server_.send(page, refusalMessage(refusal));
    return refusal.isObject;
}

void Front::onTick()
{
    hub_->tellOfSilence();
}

} // namespace panel
