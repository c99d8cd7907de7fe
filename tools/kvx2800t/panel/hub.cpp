#include "tools/kvx2800t/panel/hub.h"

#include "tools/kvx2800t/command_line/status_names.h"
#include "tools/kvx2800t/panel/instrument.h"
#include "tools/kvx2800t/panel/lines.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace panel
{
namespace
{

using Clock = std::chrono::steady_clock;

/// Settings and the error queue are read with every so many readings.
constexpr unsigned kReadingsPerSettings = 10;

struct WaitingAction
{
    PageId page;
    PageRequest request;
};

Result failureOf(std::int64_t id, std::string name, std::string text)
{
    return {id, false, std::nullopt, std::move(name), std::move(text)};
}

Result failureOf(std::int64_t id, const kvx2800t::Error& error)
{
    return {id, false, error.code(), std::string(command_line::statusName(error.code())), error.text()};
}

Result successOf(std::int64_t id, ViStatus status)
{
    Result result;
    result.id = id;
    if (status > VI_SUCCESS) {
        result.code = status;
        result.text = command_line::statusName(status);
    }
    return result;
}

/// Whether it changes the list of its channel, or asks for it.
bool concernsList(ActionKind kind)
{
    return kind == ActionKind::LoadList || kind == ActionKind::ReadList;
}

/// Actions of pages, which wait for their turn.
class ActionQueue
{
public:
    /// What comes of taking an action in: it may have to be refused, and others cancelled.
    struct Answer
    {
        bool isTaken = true;
        std::vector<WaitingAction> cancelled;
    };

    Answer add(WaitingAction action)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        Answer answer;
        if (action.request.action.kind == ActionKind::AllOff) {
            const auto others = std::stable_partition(waiting_.begin(), waiting_.end(), [](const WaitingAction& other) {
                return other.request.action.kind == ActionKind::AllOff;
            });
            answer.cancelled.assign(std::make_move_iterator(others), std::make_move_iterator(waiting_.end()));
            waiting_.erase(others, waiting_.end());
        }
        answer.isTaken = waiting_.size() < Hub::kMostWaiting;
        if (answer.isTaken)
            waiting_.push_back(std::move(action));
        changed_.notify_one();
        return answer;
    }

    /// The next action; nothing once it is `until` or the queue is closed.
    std::optional<WaitingAction> take(Clock::time_point until)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_until(lock, until, [this] { return isClosed_ || !waiting_.empty(); });
        if (isClosed_ || waiting_.empty())
            return std::nullopt;
        WaitingAction action = std::move(waiting_.front());
        waiting_.pop_front();
        return action;
    }

    void close()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isClosed_ = true;
        changed_.notify_one();
    }

    bool isClosed() const
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return isClosed_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<WaitingAction> waiting_;
    bool isClosed_ = false;
};

} // namespace

class Hub::Worker
{
public:
    Worker(HubSettings settings, HubListener& listener)
        : settings_(std::move(settings)), session_(Instrument::sessionTexts(settings_.resource)), listener_(listener),
          begin_(Clock::now()), lastTold_(begin_), thread_([this] { work(); })
    {
    }

    ~Worker()
    {
        queue_.close();
        thread_.join();
    }

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void submit(WaitingAction action)
    {
        const PageId page = action.page;
        const std::int64_t id = action.request.id;
        const auto answer = queue_.add(std::move(action));
        for (const WaitingAction& cancelled : answer.cancelled)
            tellResult(cancelled.page,
                       failureOf(cancelled.request.id, "CANCELLED", "all outputs were switched off first"));
        if (!answer.isTaken)
            tellResult(page, failureOf(id, "BUSY", "too many actions wait for the instrument"));
    }

    void tellOfSilence()
    {
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        if (Clock::now() - lastTold_ < settings_.silence)
            return;
        Link link = link_;
        if (link.state == LinkState::Connected)
            link = {LinkState::Lost, "the instrument does not answer"};
        tell(link, std::nullopt);
    }

private:
    void work()
    {
        connect();
        while (!queue_.isClosed()) {
            // Readings have their turn also when actions never end.
            if (Clock::now() >= due_)
                readOrConnect();
            else if (auto action = queue_.take(due_))
                carryOut(*action);
        }
    }

    void readOrConnect()
    {
        if (instrument_)
            attempt([this] { readAll(); });
        else
            connect();
    }

    void connect()
    {
        attempt([this] {
            tellLink();
            instrument_.emplace(settings_.resource);
            setLink({LinkState::Connected, ""});
            due_ = Clock::now();
            readings_ = 0;
            for (const int channel : instrument_->channelsWithLists())
                tellList(instrument_->readList(channel));
            readAll();
        });
    }

    /// Whatever goes wrong on the way to the instrument, the link is lost.
    template <class Step>
    void attempt(Step step)
    {
        try {
            step();
        } catch (const std::exception& error) {
            loseLink(error.what());
        }
    }

    void loseLink(std::string reason)
    {
        instrument_.reset();
        setLink({LinkState::Lost, std::move(reason)});
        due_ = Clock::now() + settings_.retry;
        tellLink();
    }

    void readAll()
    {
        const bool wholly = readings_++ % kReadingsPerSettings == 0;
        if (wholly)
            instrument_->readSettings();
        instrument_->readMeters(wholly);
        tellState();
        if (wholly)
            tellErrors(instrument_->takeErrors());
        // Readings that were missed are not made up for.
        due_ = std::max(due_ + settings_.period, Clock::now());
    }

    void carryOut(const WaitingAction& waiting)
    {
        const Action& action = waiting.request.action;
        if (action.kind == ActionKind::Reconnect)
            reconnect(waiting);
        else if (instrument_)
            operate(waiting);
        else
            tellResult(waiting.page, failureOf(waiting.request.id, kvx2800t::Error(KVX2800T_ERROR_IO, link_.text)));
    }

    void reconnect(const WaitingAction& waiting)
    {
        instrument_.reset();
        setLink({LinkState::Connecting, ""});
        connect();
        tellLines(waiting, {});
        tellResult(waiting.page, instrument_
                                     ? successOf(waiting.request.id, VI_SUCCESS)
                                     : failureOf(waiting.request.id, kvx2800t::Error(KVX2800T_ERROR_IO, link_.text)));
    }

    void operate(const WaitingAction& waiting)
    {
        const Action& action = waiting.request.action;
        static_cast<void>(instrument_->takeMessages()); // the readings'
        Result result;
        try {
            result = successOf(waiting.request.id, instrument_->perform(action));
        } catch (const kvx2800t::Error& error) {
            result = failureOf(waiting.request.id, error);
        } catch (const std::exception& error) {
            result = failureOf(waiting.request.id, "FAILED", error.what());
        }
        tellLines(waiting, instrument_->takeMessages());
        tellResult(waiting.page, result);
        attempt([this, &action] { tellOfChange(action); });
    }

    /// What has come of an action: the whole state at once, what the instrument thinks of it, and lists.
    void tellOfChange(const Action& action)
    {
        if (action.kind == ActionKind::ClearErrors)
            tellErrors({}, true);
        else
            tellErrors(instrument_->takeErrors());
        if (concernsList(action.kind)) {
            instrument_->noticeList(action.channel);
            tellList(instrument_->readList(action.channel));
        }
        if (action.kind == ActionKind::Reset)
            noticeAllLists();
        readings_ = 0;
        due_ = Clock::now();
    }

    /// A reset has deleted them.
    void noticeAllLists()
    {
        for (const int channel : instrument_->channelsWithLists()) {
            instrument_->noticeList(channel);
            tellList(instrument_->readList(channel));
        }
    }

    void setLink(Link link)
    {
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        link_ = std::move(link);
    }

    /// With the mutex held.
    void tell(const Link& link, std::optional<InstrumentState> state)
    {
        const auto now = Clock::now();
        lastTold_ = now;
        listener_.onSnapshot(
            {++sequence_, std::chrono::duration<double>(now - begin_).count(), link, std::move(state)});
    }

    void tellLink()
    {
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        tell(link_, std::nullopt);
    }

    void tellState()
    {
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        tell(link_, instrument_->state());
    }

    void tellErrors(std::vector<kvx2800t::InstrumentError> errors, bool cleared = false)
    {
        if (errors.empty() && !cleared)
            return;
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        listener_.onErrors({cleared, std::move(errors)});
    }

    void tellResult(PageId page, const Result& result)
    {
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        listener_.onResult(page, result);
    }

    void tellLines(const WaitingAction& waiting, std::vector<std::string> scpi)
    {
        const Action& action = waiting.request.action;
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        listener_.onLines(waiting.page, {waiting.request.id, std::move(scpi), linesOfC(action, session_),
                                         linesOfPython(action, session_)});
    }

    void tellList(const LoadedList& list)
    {
        const std::lock_guard<std::mutex> lock(listenerMutex_);
        listener_.onList(list);
    }

    const HubSettings settings_;
    const SessionTexts session_;
    ActionQueue queue_;

    // The worker thread's alone.
    std::optional<Instrument> instrument_;
    unsigned readings_ = 0;
    Clock::time_point due_;

    std::mutex listenerMutex_;
    HubListener& listener_;
    const Clock::time_point begin_;
    Link link_; ///< changed by the worker thread alone
    Clock::time_point lastTold_;
    std::uint64_t sequence_ = 0;

    std::thread thread_;
};

Hub::Hub(HubSettings settings, HubListener& listener) : worker_(std::make_unique<Worker>(std::move(settings), listener))
{
}

Hub::~Hub() = default;

void Hub::submit(PageId page, PageRequest request)
{
    worker_->submit({page, std::move(request)});
}

void Hub::tellOfSilence()
{
    worker_->tellOfSilence();
}

} // namespace panel
