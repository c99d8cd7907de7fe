#pragma once

#include "visa/host/deadline.h"

#include <visa.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace visa
{

/// Lets one operation at a time use what only one can use; the others wait, no longer than their deadlines.
class Turn
{
public:
    /// @return VI_ERROR_TMO, VI_ERROR_ABORT after abort(), VI_ERROR_INV_OBJECT after interrupt()
    ViStatus take(const Deadline& deadline)
    {
        std::unique_lock lock(mutex_);
        const unsigned aborts = aborts_;
        while (isTaken_ && !isInterrupted_ && aborts == aborts_) {
            const int left = deadline.remainingMs(kLookMs);
            if (left == 0)
                return VI_ERROR_TMO;
            changed_.wait_for(lock, std::chrono::milliseconds(left));
        }
        if (isInterrupted_)
            return VI_ERROR_INV_OBJECT;
        if (aborts != aborts_)
            return VI_ERROR_ABORT;
        isTaken_ = true;
        return VI_SUCCESS;
    }

    /// @return whether nobody had it
    bool takeIfFree()
    {
        const std::lock_guard guard(mutex_);
        return !isTaken_ && !isInterrupted_ && (isTaken_ = true);
    }

    /// @param last runs before another can take it
    template <class Action>
    void give(Action last)
    {
        const std::lock_guard guard(mutex_);
        last();
        isTaken_ = false;
        changed_.notify_one();
    }

    /// Ends the waiting of those who wait at this moment.
    /// @param onUse runs while somebody has it, who cannot give it back meanwhile
    template <class Action>
    void abort(Action onUse)
    {
        const std::lock_guard guard(mutex_);
        ++aborts_;
        if (isTaken_)
            onUse();
        changed_.notify_all();
    }

    /// Nobody takes it any more.
    void interrupt()
    {
        const std::lock_guard guard(mutex_);
        isInterrupted_ = true;
        changed_.notify_all();
    }

    bool isInterrupted()
    {
        const std::lock_guard guard(mutex_);
        return isInterrupted_;
    }

private:
    static constexpr int kLookMs = 60000;

    std::mutex mutex_;
    std::condition_variable changed_;
    bool isTaken_ = false;
    bool isInterrupted_ = false;
    unsigned aborts_ = 0;
};

} // namespace visa
