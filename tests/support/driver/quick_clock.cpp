#include "tests/support/driver/scripted_clock.h"

#include <gtest/gtest.h>

#include <optional>

// Nothing in this program waits for the instrument to settle.

namespace
{

class QuickClock : public testing::Environment
{
public:
    void SetUp() override { clock_.emplace(); }
    void TearDown() override { clock_.reset(); }

private:
    std::optional<kvxtest::ScriptedClock> clock_;
};

const testing::Environment* const quickClock = testing::AddGlobalTestEnvironment(new QuickClock);

} // namespace
