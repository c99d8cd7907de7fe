#pragma once

#include "tools/kvx2800t/panel/messages.h"
#include "tools/kvx2800t/panel/state.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace panel
{

/// Tells pages apart for as long as the panel runs.
using PageId = std::uint64_t;

/// What the hub tells; called from the hub's thread or, for a snapshot, from that of tellOfSilence. One call at a time.
class HubListener
{
public:
    HubListener() = default;
    virtual ~HubListener() = default;
    HubListener(const HubListener&) = delete;
    HubListener& operator=(const HubListener&) = delete;

    virtual void onSnapshot(const Snapshot& snapshot) = 0;
    virtual void onErrors(const ErrorReport& report) = 0;
    virtual void onResult(PageId page, const Result& result) = 0;
    virtual void onLines(PageId page, const Lines& lines) = 0;
    virtual void onList(const LoadedList& list) = 0;
};

struct HubSettings
{
    std::string resource; ///< empty for a simulated instrument
    std::chrono::milliseconds period{100};
    std::chrono::milliseconds retry{1000};
    std::chrono::milliseconds silence{1500};
};

/// The one place that has the session: a thread that reads the instrument ten times a second, does what pages ask for
/// in the order in which they ask, and connects anew each second when the link is lost.
///
/// To switch all outputs off comes before every action that waits, and cancels those: what was asked for earlier does
/// not switch an output on again. While there is no connection actions fail at once.
class Hub
{
public:
    /// Starts the thread.
    Hub(HubSettings settings, HubListener& listener);
    /// Ends when the call of the driver that is under way does.
    ~Hub();
    Hub(const Hub&) = delete;
    Hub& operator=(const Hub&) = delete;

    /// At most that many actions wait; those beyond get the result "BUSY". Any thread's.
    static constexpr std::size_t kMostWaiting = 64;
    void submit(PageId page, PageRequest request);

    /// Tells of a lost link when the instrument has said nothing for longer than `silence`, so that pages do not keep
    /// showing what it said last. To be called now and then, by any thread.
    void tellOfSilence();

private:
    class Worker;
    std::unique_ptr<Worker> worker_;
};

} // namespace panel
