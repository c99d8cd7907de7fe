#include "tools/kvx2800t/panel/panel.h"

#include "tools/kvx2800t/panel/front.h"
#include "tools/kvx2800t/panel/host.h"

#include <memory>
#include <thread>

namespace panel
{
namespace
{

/// Stops the panel when the standard input ends. The thread is left behind where it still reads at the program's end.
void stopWithInput(const std::shared_ptr<Front>& front)
{
    std::thread([watched = std::weak_ptr<Front>(front)] {
        drainInput();
        if (const auto running = watched.lock())
            running->stop();
    }).detach();
}

} // namespace

void run(const Options& options, const std::function<void(const Place&)>& tell)
{
    const auto front = std::make_shared<Front>(options.resource, options.bind, options.port);
    tell({front->address(), front->isOpen()});
    if (options.untilInputEnds)
        stopWithInput(front);
    if (options.openBrowser)
        openBrowser(front->visitAddress());
    front->run(stopSignals());
}

} // namespace panel
