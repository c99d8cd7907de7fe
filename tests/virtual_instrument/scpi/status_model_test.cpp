#include "virtual_instrument/scpi/status_model.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxvirtual;

TEST(StatusModel, StartsWithThePowerOnBitAndAnEmptyQueue)
{
    StatusModel status;
    EXPECT_EQ(status.nextError().code, 0);
    EXPECT_EQ(status.takeEventStatus(), 128U);
    EXPECT_EQ(status.takeEventStatus(), 0U);
}

TEST(StatusModel, EveryErrorClassHasItsEventBit)
{
    struct Case
    {
        int code;
        unsigned int bit;
    };
    for (const auto& [code, bit] : {Case{-100, 32}, Case{-199, 32}, Case{-200, 16}, Case{-299, 16}, Case{-300, 8},
                                    Case{-399, 8}, Case{-400, 4}, Case{-499, 4}, Case{1, 8}})
    {
        StatusModel status;
        status.clear();
        status.report(code, "text");
        EXPECT_EQ(status.takeEventStatus(), bit) << code;
    }
}

TEST(StatusModel, OverflowReplacesTheNewestOfTwentyErrors)
{
    StatusModel status;
    status.clear();
    for (int i = 0; i < 22; ++i)
        status.report(-101 - i, "number " + std::to_string(i));
    EXPECT_EQ(status.takeEventStatus(), 32U + 8U);
    for (int i = 0; i < 19; ++i)
        EXPECT_EQ(status.nextError().text, "number " + std::to_string(i));
    const auto last = status.nextError();
    EXPECT_EQ(last.code, -350);
    EXPECT_EQ(last.text, "Queue overflow");
    EXPECT_EQ(status.nextError().text, "No error");
}

TEST(StatusModel, StatusByteSummarisesQueueAndEnabledEvents)
{
    StatusModel status;
    status.clear();
    EXPECT_EQ(status.statusByte(), 0U);
    status.report(ErrorCode::UndefinedHeader);
    EXPECT_EQ(status.statusByte(), 4U);
    status.setEventEnable(32);
    EXPECT_EQ(status.statusByte(), 4U + 32U);
    status.setServiceEnable(255);
    EXPECT_EQ(status.serviceEnable(), 191U);
    EXPECT_EQ(status.statusByte(), 4U + 32U + 64U);
    status.clear();
    EXPECT_EQ(status.statusByte(), 0U);
    EXPECT_EQ(status.eventEnable(), 32U);
}

} // namespace
