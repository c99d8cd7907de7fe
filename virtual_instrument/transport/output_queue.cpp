#include "virtual_instrument/transport/output_queue.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace kvxvirtual
{
namespace
{

constexpr std::chrono::seconds kLongestSilence{1};

std::string lossText(std::uint64_t count)
{
    return '(' + std::to_string(count) + " lines are lost, as nobody read this output)\n";
}

} // namespace

/// What the queue and its thread share, in the hands of whichever ends last.
struct OutputQueue::Lines
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::string> waiting;
    std::size_t bytes = 0; ///< of those waiting and the one being written
    std::uint64_t lost = 0;
    std::uint64_t written = 0;
    bool ending = false;
    bool ended = false;

    void add(std::string line)
    {
        const std::lock_guard guard(mutex);
        line += '\n';
        if (lost > 0 || bytes + line.size() > kMostBytes) {
            ++lost;
            return;
        }
        bytes += line.size();
        waiting.push_back(std::move(line));
        changed.notify_all();
    }

    /// The next text to be written, once there is one; nothing at the end.
    std::optional<std::string> next()
    {
        std::unique_lock guard(mutex);
        changed.wait(guard, [this] { return !waiting.empty() || lost > 0 || ending; });
        if (!waiting.empty()) {
            auto line = std::move(waiting.front());
            waiting.pop_front();
            return line;
        }
        if (lost > 0)
            return lossText(std::exchange(lost, 0));
        ended = true;
        changed.notify_all();
        return std::nullopt;
    }

    void hasWritten(std::size_t count)
    {
        const std::lock_guard guard(mutex);
        bytes -= std::min(count, bytes);
        ++written;
        changed.notify_all();
    }

    void end()
    {
        std::unique_lock guard(mutex);
        ending = true;
        changed.notify_all();
        auto before = written;
        while (!changed.wait_for(guard, kLongestSilence, [this] { return ended; }) && written != before)
            before = written;
    }
};

OutputQueue::OutputQueue(Write write) : lines_(std::make_shared<Lines>())
{
    std::thread([lines = lines_, write = std::move(write)] {
        while (const auto text = lines->next()) {
            write(*text);
            lines->hasWritten(text->size());
        }
    }).detach();
}

OutputQueue::~OutputQueue()
{
    lines_->end();
}

void OutputQueue::add(std::string line)
{
    lines_->add(std::move(line));
}

} // namespace kvxvirtual
