#include "io/message_log.h"

#include "tests/support/allocation_failure.h"
#include "tests/support/driver/message_records.h"
#include "tests/support/driver/visa_statuses.h"

#include <string>
#include <string_view>

#include <gmock/gmock.h>

// What a log does without memory.

namespace
{

using InstLink::MessageLog;
using kvxtest::kTimedOut;
using kvxtest::recordsOf;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(MessageLogWithoutMemory, WhatThereIsNoMemoryForIsLostAndCountedInItsPlace)
{
    MessageLog log(4);
    const std::string message(100, 'x');
    log.sent("a");
    for (std::size_t n = 1;; ++n) {
        std::size_t allocations = 0;
        {
            const kvxtest::NthAllocationFailure failure(n, true);
            log.received(message);
            log.sendingFailed(kTimedOut);
            allocations = kvxtest::NthAllocationFailure::count();
        }
        if (allocations < n)
            break;
        log.sent("b");
        const auto records = recordsOf(log);
        ASSERT_GE(records.size(), 2U) << n;
        EXPECT_EQ(records.back(), "> b");
        EXPECT_EQ(records[records.size() - 2].substr(0, 2), "! ") << n;
        if (n == 1) {
            EXPECT_THAT(records, ElementsAre("> a", "! 2 records have been lost", "> b"));
        }
    }
}

TEST(MessageLogWithoutMemory, ALossAtTheEndIsToldOnce)
{
    MessageLog log(2);
    {
        const kvxtest::NthAllocationFailure failure(1, true);
        log.sent(std::string_view("a message that is too long to stand in a text without an allocation of its own"));
    }
    EXPECT_THAT(recordsOf(log), ElementsAre("! 1 record has been lost"));
    EXPECT_THAT(recordsOf(log), IsEmpty());
}

} // namespace
