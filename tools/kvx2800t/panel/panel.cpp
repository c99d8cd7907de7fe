#include "tools/kvx2800t/panel/panel.h"

#include "tools/kvx2800t/panel/front.h"
#include "tools/kvx2800t/panel/host.h"

#include <exception>
#include <iostream>
#include <memory>
#include <ostream>
#include <thread>

namespace panel
{
namespace
{

/// Stops the panel when the standard input ends. The thread is left behind where it still reads at the program's end.
void stopWithInput(const std::shared_ptr<Front>& front)
{
    std::thread([watched = std::weak_ptr<Front>(front)] {
        while (std::cin.get() != std::istream::traits_type::eof()) {
        }
        if (const auto running = watched.lock())
            running->stop();
    }).detach();
}

void tellWhere(const Front& front, const Options& options, std::ostream& out, std::ostream& err)
{
    out << "The panel of " << (options.resource.empty() ? "a simulated instrument" : options.resource) << " is at\n"
        << front.address() << std::endl;
    if (front.isOpen())
        err << "warning: who has this address can operate the instrument, also from other machines, and who listens on "
               "the network sees it"
            << std::endl;
}

} // namespace

int run(const Options& options, std::ostream& out, std::ostream& err)
{
    try {
        const auto front = std::make_shared<Front>(options.resource, options.bind, options.port);
        tellWhere(*front, options, out, err);
        if (options.untilInputEnds)
            stopWithInput(front);
        if (options.openBrowser)
            openBrowser(front->visitAddress());
        front->run(stopSignals());
        return 0;
    } catch (const std::exception& error) {
        err << error.what() << std::endl;
        return 1;
    }
}

} // namespace panel
