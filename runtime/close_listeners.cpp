#include "runtime/close_listeners.h"

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
        const std::lock_guard lock(mutex_);
        listeners_.push_back(std::move(listener));
    }

    std::vector<CloseListener> all()
    {
        const std::lock_guard lock(mutex_);
        return listeners_;
    }

private:
    std::mutex mutex_;
    std::vector<CloseListener> listeners_;
};

CloseListeners& closeListeners()
{
    static CloseListeners instance;
    return instance;
}

} // namespace

void addCloseListener(CloseListener listener)
{
    closeListeners().add(std::move(listener));
}

void notifyCloseListeners(ViSession vi)
{
    for (const CloseListener& listener : closeListeners().all()) {
        if (!listener)
            std::terminate();
        listener(vi);
    }
}

} // namespace drivekit
