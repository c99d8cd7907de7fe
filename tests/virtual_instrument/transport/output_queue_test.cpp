#include "virtual_instrument/transport/output_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace
{

using kvxvirtual::OutputQueue;
using testing::ElementsAre;

/// An output whose reader reads only when told to.
class Reader
{
public:
    OutputQueue::Write writer()
    {
        return [state = state_](std::string_view bytes) {
            std::unique_lock guard(state->mutex);
            state->changed.wait(guard, [&] { return state->reads; });
            state->lines.emplace_back(bytes);
        };
    }

    void read()
    {
        const std::lock_guard guard(state_->mutex);
        state_->reads = true;
        state_->changed.notify_all();
    }

    std::vector<std::string> lines()
    {
        const std::lock_guard guard(state_->mutex);
        return state_->lines;
    }

private:
    struct State
    {
        std::mutex mutex;
        std::condition_variable changed;
        std::vector<std::string> lines;
        bool reads = false;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

TEST(OutputQueue, WritesLinesInTheirOrderBeforeItEnds)
{
    Reader reader;
    reader.read();
    {
        OutputQueue queue(reader.writer());
        queue.add("one");
        queue.add("");
        queue.add("two");
    }
    EXPECT_THAT(reader.lines(), ElementsAre("one\n", "\n", "two\n"));
}

TEST(OutputQueue, DropsAndCountsWhatNobodyReads)
{
    Reader reader;
    const std::string large(OutputQueue::kMostBytes / 2 - 1, 'x');
    {
        OutputQueue queue(reader.writer());
        queue.add(large);
        queue.add(large);
        queue.add("lost");
        queue.add("lost as well");
        reader.read();
    }
    EXPECT_THAT(reader.lines(),
                ElementsAre(large + '\n', large + '\n', "(2 lines are lost, as nobody read this output)\n"));
}

TEST(OutputQueue, EndsWhenNobodyReads)
{
    Reader reader;
    {
        OutputQueue queue(reader.writer());
        queue.add("never read");
    }
    EXPECT_THAT(reader.lines(), ElementsAre());
    reader.read();
}

} // namespace
