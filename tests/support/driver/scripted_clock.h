#pragma once

#include "runtime/tick_clock.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace kvxtest
{

/// Puts itself in place of the tick clock for as long as it lives: gives the times of a list one after the other, and
/// moves on by a tenth of a second with each read behind its end.
class ScriptedClock
{
public:
    explicit ScriptedClock(std::vector<std::int64_t> times = {0}) : system_(drivekit::exchangeTickClock(read))
    {
        script() = {std::move(times), 0, 0};
    }
    ScriptedClock(const ScriptedClock&) = delete;
    ScriptedClock& operator=(const ScriptedClock&) = delete;
    ~ScriptedClock() { drivekit::exchangeTickClock(system_); }

    /// How often the clock has been read.
    static std::size_t reads() { return script().reads; }
    /// The time that was read last.
    static std::int64_t last() { return script().last; }
    /// Lets every read begin with `action`.
    static void whenRead(std::function<void()> action) { script().onRead = std::move(action); }

private:
    struct Script
    {
        std::vector<std::int64_t> times;
        std::size_t reads = 0;
        std::int64_t last = 0;
        std::function<void()> onRead = {};
    };

    static Script& script()
    {
        static Script instance;
        return instance;
    }

    static std::int64_t read()
    {
        Script& current = script();
        if (current.onRead)
            current.onRead();
        const std::size_t index = current.reads++;
        if (index < current.times.size())
            current.last = current.times[index];
        else
            current.last += drivekit::kTicksPerSecond / 10;
        return current.last;
    }

    drivekit::TickClock system_;
};

} // namespace kvxtest
