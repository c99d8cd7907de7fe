#include "runtime/close_listeners.h"

#include "base/spin_lock.h"

#include <exception>
#include <mutex>
#include <utility>
#include <vector>

namespace drivekit
{
namespace
{

/// The listeners of the process; closing sessions of several threads share them.
class CloseListeners
{
public:
    void add(CloseListener listener)
    {
        const std::lock_guard guard(lock_);
        listeners_.push_back(std::move(listener));
    }

    std::vector<CloseListener> all()
    {
        const std::lock_guard guard(lock_);
        return listeners_;
    }

private:
    base::SpinLock lock_;
    std::vector<CloseListener> listeners_;
};

constinit CloseListeners closeListeners;

} // namespace

void addCloseListener(CloseListener listener)
{
    closeListeners.add(std::move(listener));
}

void notifyCloseListeners(ViSession vi)
{
    for (const CloseListener& listener : closeListeners.all()) {
        if (!listener)
            std::terminate();
        listener(vi);
    }
}

} // namespace drivekit
