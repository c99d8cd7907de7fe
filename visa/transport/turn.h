#pragma once

#include "visa/host/deadline.h"

#include <visa.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace visa
{

/// Lets one operation at a time use what only one can use; the others wait, no longer than their deadlines. Who has
/// taken it gives it back; TurnTaken does that at the end of a scope.
///
/// Another thread may abort() what is under way, after which the next operation goes on as usual, or interrupt() it for
/// good. Either ends the waiting of the others. Who has the turn is not ended by that: it asks status() between the
/// steps that it takes, and the action that goes with the call ends the step in which it waits.
class Turn
{
public:
    /// @return VI_ERROR_TMO, VI_ERROR_ABORT after abort() or where the deadline says so, VI_ERROR_INV_OBJECT after
    ///         interrupt()
    ViStatus take(const Deadline& deadline)
    {
        std::unique_lock lock(mutex_);
        const unsigned aborts = aborts_;
        while (isTaken_ && !isInterrupted_ && aborts == aborts_) {
            const int left = deadline.remainingMs(Deadline::kLookMs);
            if (deadline.isAborted())
                return VI_ERROR_ABORT;
            if (left == 0)
                return VI_ERROR_TMO;
            changed_.wait_for(lock, std::chrono::milliseconds(left));
        }
        if (isInterrupted_)
            return VI_ERROR_INV_OBJECT;
        if (aborts != aborts_)
            return VI_ERROR_ABORT;
        begin();
        return VI_SUCCESS;
    }

    /// @return whether nobody had it
    bool takeIfFree()
    {
        const std::lock_guard guard(mutex_);
        if (isTaken_ || isInterrupted_)
            return false;
        begin();
        return true;
    }

    /// @param last runs before another can take it
    template <class Action>
    void give(Action last)
    {
        {
            const std::lock_guard guard(mutex_);
            last();
            isTaken_ = false;
        }
        changed_.notify_one();
    }

    void give()
    {
        give([] {});
    }

    /// Whether the operation that has it may go on.
    /// @return VI_SUCCESS, VI_ERROR_ABORT after an abort() since it was taken, VI_ERROR_INV_OBJECT after interrupt()
    ViStatus status() const noexcept
    {
        if (isInterrupted_)
            return VI_ERROR_INV_OBJECT;
        return aborts_ == abortsBefore_ ? VI_SUCCESS : VI_ERROR_ABORT;
    }

    /// @param onUse runs while somebody has it, who cannot give it back meanwhile
    /// @return whether somebody had it
    template <class Action>
    bool abort(Action onUse)
    {
        const std::lock_guard guard(mutex_);
        ++aborts_;
        if (isTaken_)
            onUse();
        changed_.notify_all();
        return isTaken_;
    }

    /// Nobody takes it any more.
    /// @param onUse as with abort()
    template <class Action>
    void interrupt(Action onUse)
    {
        const std::lock_guard guard(mutex_);
        isInterrupted_ = true;
        if (isTaken_)
            onUse();
        changed_.notify_all();
    }

    bool isInterrupted() const noexcept { return isInterrupted_; }

private:
    void begin()
    {
        isTaken_ = true;
        abortsBefore_ = aborts_;
    }

    std::mutex mutex_; ///< guards isTaken_, and changes of what others look at
    std::condition_variable changed_;
    bool isTaken_ = false;
    unsigned abortsBefore_ = 0; ///< of who has it
    std::atomic<unsigned> aborts_ = 0;
    std::atomic<bool> isInterrupted_ = false;
};

/// A turn that ends with the scope.
class TurnTaken
{
public:
    TurnTaken(Turn& turn, const Deadline& deadline) : turn_(turn), status_(turn.take(deadline)) {}
    /// Does not wait.
    TurnTaken(Turn& turn, std::try_to_lock_t) : turn_(turn), status_(turn.takeIfFree() ? VI_SUCCESS : VI_ERROR_TMO) {}
    ~TurnTaken()
    {
        if (status_ >= 0)
            turn_.give();
    }
    TurnTaken(const TurnTaken&) = delete;
    TurnTaken& operator=(const TurnTaken&) = delete;

    /// VI_SUCCESS, or why it was not taken.
    ViStatus status() const noexcept { return status_; }

private:
    Turn& turn_;
    const ViStatus status_;
};

} // namespace visa
