#include "virtual_instrument/scpi/status_model.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxvirtual;

TEST(StatusModel, StartsWithThePowerOnBitAndAnEmptyQueue)
{
    StatusModel status;
    EXPECT_EQ(0, status.nextError().code);
    EXPECT_EQ(128U, status.takeEventStatus());
    EXPECT_EQ(0U, status.takeEventStatus());
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
        EXPECT_EQ(bit, status.takeEventStatus()) << code;
    }
}

TEST(StatusModel, OverflowReplacesTheNewestOfTwentyErrors)
{
    StatusModel status;
    status.clear();
    for (int i = 0; i < 22; ++i)
        status.report(-101 - i, "number " + std::to_string(i));
    EXPECT_EQ(32U + 8U, status.takeEventStatus());
    for (int i = 0; i < 19; ++i)
        EXPECT_EQ("number " + std::to_string(i), status.nextError().text);
    const auto last = status.nextError();
    EXPECT_EQ(-350, last.code);
    EXPECT_EQ("Queue overflow", last.text);
    EXPECT_EQ("No error", status.nextError().text);
}

TEST(StatusModel, StatusByteSummarisesQueueAndEnabledEvents)
{
    StatusModel status;
    status.clear();
    EXPECT_EQ(0U, status.statusByte());
    status.report(ErrorCode::UndefinedHeader);
    EXPECT_EQ(4U, status.statusByte());
    status.setEventEnable(32);
    EXPECT_EQ(4U + 32U, status.statusByte());
    status.setServiceEnable(255);
    EXPECT_EQ(191U, status.serviceEnable());
    EXPECT_EQ(4U + 32U + 64U, status.statusByte());
    status.clear();
    EXPECT_EQ(0U, status.statusByte());
    EXPECT_EQ(32U, status.eventEnable());
}

} // namespace
