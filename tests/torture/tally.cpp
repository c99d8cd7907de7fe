#include "tests/torture/tally.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <string_view>

namespace kvxtest
{

void conclude(std::string_view attack, const Tally& tally)
{
    EXPECT_GT(tally.injections, 0U);
    EXPECT_EQ(tally.crashes, 0U);
    EXPECT_EQ(tally.leaks, 0U);
    EXPECT_EQ(tally.hangs, 0U);
    EXPECT_EQ(tally.wrong, 0U);
    constexpr int kColumn = 9;
    std::cout << "torture: " << std::left << std::setw(52) << attack << std::right;
    for (const std::size_t number : {tally.injections, tally.crashes, tally.leaks, tally.hangs, tally.wrong})
        std::cout << std::setw(kColumn) << number;
    std::cout << std::endl;
}

bool isWholeTorture()
{
    const char* const wanted = std::getenv("KVX_TORTURE"); // NOLINT(concurrency-mt-unsafe)
    return wanted != nullptr && std::string_view(wanted) == "whole";
}

} // namespace kvxtest
