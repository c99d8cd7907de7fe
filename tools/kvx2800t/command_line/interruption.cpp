#include "tools/kvx2800t/command_line/interruption.h"

#include <algorithm>
#include <csignal>
#include <thread>

namespace command_line
{
namespace
{

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteInterruption(int signal)
{
    interrupted = 1;
    static_cast<void>(std::signal(signal, SIG_DFL));
}

} // namespace

Interruption::Interruption()
{
    interrupted = 0;
    static_cast<void>(std::signal(SIGINT, noteInterruption));
    static_cast<void>(std::signal(SIGTERM, noteInterruption));
}

Interruption::~Interruption()
{
    static_cast<void>(std::signal(SIGINT, SIG_DFL));
    static_cast<void>(std::signal(SIGTERM, SIG_DFL));
}

bool Interruption::isRequested() const
{
    return interrupted != 0;
}

void Interruption::waitUntil(std::chrono::steady_clock::time_point time) const
{
    using Clock = std::chrono::steady_clock;
    constexpr auto kSlice = std::chrono::milliseconds(50);
    for (auto now = Clock::now(); now < time && !isRequested(); now = Clock::now())
        std::this_thread::sleep_until(std::min(time, now + kSlice));
}

} // namespace command_line
