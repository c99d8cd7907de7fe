#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// Lines on their way to an output whose reader may be slow or may not read at all. A thread of its own writes them, so
/// that adding one never waits. Beyond kMostBytes of lines that nobody has taken, further ones are dropped; their
/// number is written once those before them have left.
class OutputQueue
{
public:
    static constexpr std::size_t kMostBytes = std::size_t{1} << 20;

    /// Writes all of the bytes, for as long as that takes. Called in the thread of the queue, which may outlive it.
    using Write = std::function<void(std::string_view)>;

    explicit OutputQueue(Write write);

    /// Waits for the lines that are left, unless a second goes by in which none has gone.
    ~OutputQueue();

    OutputQueue(const OutputQueue&) = delete;
    OutputQueue& operator=(const OutputQueue&) = delete;

    /// Adds a line, given without its line feed.
    void add(std::string line);

private:
    struct Lines;
    std::shared_ptr<Lines> lines_;
};

} // namespace kvxvirtual
