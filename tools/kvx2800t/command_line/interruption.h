#pragma once

#include <chrono>

namespace command_line
{

/// Takes Ctrl-C, and a request to end the program, as long as it lives: a command that takes long ends cleanly. A
/// second Ctrl-C ends the program at once. One at a time.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool isRequested() const;

    /// Waits, but no longer than until Ctrl-C.
    void waitUntil(std::chrono::steady_clock::time_point time) const;
};

} // namespace command_line
