#include "runtime/close_listeners.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

using testing::ElementsAre;

/// What the listeners of this program have seen; they stay for the rest of the process.
std::vector<std::string>& seen()
{
    static std::vector<std::string> instance;
    return instance;
}

TEST(CloseListeners, AreCalledWithTheSessionInTheOrderInWhichTheyWereAdded)
{
    seen().clear();
    for (const char* name : {"first", "second", "third"})
        drivekit::addCloseListener([name](ViSession vi) { seen().push_back(name + (" " + std::to_string(vi))); });
    drivekit::notifyCloseListeners(1234);
    EXPECT_THAT(seen(), ElementsAre("first 1234", "second 1234", "third 1234"));
    drivekit::notifyCloseListeners(5);
    EXPECT_EQ(seen().size(), 6U);
}

TEST(CloseListeners, WithoutListenersNothingHappens)
{
    drivekit::notifyCloseListeners(1);
}

TEST(CloseListenersDeathTest, AnEmptyListenerEndsTheProcess)
{
    EXPECT_DEATH(
        {
            drivekit::addCloseListener({});
            drivekit::notifyCloseListeners(1);
        },
        "");
}

} // namespace
