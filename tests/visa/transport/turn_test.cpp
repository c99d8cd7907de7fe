#include "visa/transport/turn.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

namespace
{

using visa::Deadline;
using visa::Turn;
using visa::TurnTaken;

constexpr ViUInt32 kMomentMs = 20;
constexpr ViUInt32 kPatienceMs = 60000;

/// Another thread that waits for a turn, and gives it back if it gets it.
class Waiting
{
public:
    explicit Waiting(Turn& turn)
        : thread_([this, &turn] {
              status_ = TurnTaken(turn, Deadline(kPatienceMs)).status();
              isOver_ = true;
          })
    {
    }
    ~Waiting() { end(); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    bool isOver() const { return isOver_; }

    ViStatus end()
    {
        if (thread_.joinable())
            thread_.join();
        return status_;
    }

private:
    std::atomic<bool> isOver_ = false;
    std::atomic<ViStatus> status_ = VI_ERROR_SYSTEM_ERROR;
    std::thread thread_;
};

TEST(Turn, IsOneOperationsUntilItGivesItBack)
{
    Turn turn;
    EXPECT_EQ(turn.take(Deadline(kPatienceMs)), VI_SUCCESS);
    EXPECT_EQ(turn.take(Deadline(VI_TMO_IMMEDIATE)), VI_ERROR_TMO);
    EXPECT_EQ(turn.take(Deadline(kMomentMs)), VI_ERROR_TMO);
    EXPECT_FALSE(turn.takeIfFree());
    turn.give();
    EXPECT_TRUE(turn.takeIfFree());
    EXPECT_EQ(turn.take(Deadline(VI_TMO_IMMEDIATE)), VI_ERROR_TMO);
}

TEST(Turn, GoesToWhoWaitsForIt)
{
    Turn turn;
    ASSERT_EQ(turn.take(Deadline(kPatienceMs)), VI_SUCCESS);
    Waiting waiting(turn);
    turn.give();
    EXPECT_EQ(waiting.end(), VI_SUCCESS);
    EXPECT_TRUE(turn.takeIfFree());
}

TEST(Turn, LastActionComesBeforeTheNextHasIt)
{
    Turn turn;
    ASSERT_EQ(turn.take(Deadline(kPatienceMs)), VI_SUCCESS);
    bool isOver = false;
    turn.give([&] { isOver = true; });
    EXPECT_TRUE(isOver);
    EXPECT_TRUE(turn.takeIfFree());
}

TEST(Turn, AbortEndsTheWaitingOfThisMomentAndTellsWhoHasIt)
{
    Turn turn;
    int actions = 0;
    const auto onUse = [&actions] { ++actions; };
    EXPECT_FALSE(turn.abort(onUse));
    EXPECT_EQ(turn.take(Deadline(kPatienceMs)), VI_SUCCESS);
    EXPECT_EQ(turn.status(), VI_SUCCESS);
    {
        Waiting waiting(turn);
        int aborts = 0;
        // The first may come before the other thread waits.
        for (; !waiting.isOver(); std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
            EXPECT_TRUE(turn.abort(onUse));
            ++aborts;
        }
        EXPECT_EQ(waiting.end(), VI_ERROR_ABORT);
        EXPECT_EQ(actions, aborts);
    }
    EXPECT_EQ(turn.status(), VI_ERROR_ABORT);

    turn.give();
    EXPECT_EQ(turn.take(Deadline(kPatienceMs)), VI_SUCCESS);
    EXPECT_EQ(turn.status(), VI_SUCCESS);
}

TEST(Turn, WaitingEndsWhereItsDeadlineIsAborted)
{
    Turn turn;
    ASSERT_EQ(turn.take(Deadline(kPatienceMs)), VI_SUCCESS);
    visa::Aborts aborts = 0;
    const Deadline deadline(kPatienceMs, aborts);
    std::thread aborting([&] { ++aborts; });
    EXPECT_EQ(turn.take(deadline), VI_ERROR_ABORT);
    aborting.join();
    EXPECT_EQ(turn.status(), VI_SUCCESS);
}

TEST(Turn, InterruptEndsItForGood)
{
    Turn turn;
    int actions = 0;
    ASSERT_EQ(turn.take(Deadline(kPatienceMs)), VI_SUCCESS);
    {
        Waiting waiting(turn);
        turn.interrupt([&actions] { ++actions; });
        EXPECT_EQ(waiting.end(), VI_ERROR_INV_OBJECT);
    }
    EXPECT_EQ(actions, 1);
    EXPECT_EQ(turn.status(), VI_ERROR_INV_OBJECT);
    turn.give();
    EXPECT_EQ(turn.take(Deadline(kPatienceMs)), VI_ERROR_INV_OBJECT);
    EXPECT_FALSE(turn.takeIfFree());
    turn.interrupt([&actions] { ++actions; });
    EXPECT_EQ(actions, 1);
}

TEST(Turn, EndsWithItsScope)
{
    Turn turn;
    {
        const TurnTaken taken(turn, Deadline(kPatienceMs));
        EXPECT_EQ(taken.status(), VI_SUCCESS);
        EXPECT_EQ(TurnTaken(turn, Deadline(VI_TMO_IMMEDIATE)).status(), VI_ERROR_TMO);
        EXPECT_EQ(TurnTaken(turn, std::try_to_lock).status(), VI_ERROR_TMO);
        EXPECT_FALSE(turn.takeIfFree());
    }
    const TurnTaken taken(turn, std::try_to_lock);
    EXPECT_EQ(taken.status(), VI_SUCCESS);
    EXPECT_FALSE(turn.takeIfFree());
}

} // namespace
