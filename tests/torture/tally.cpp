#include "tests/torture/tally.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <string_view>
#include <utility>

namespace kvxtest
{

Tally::Tally(std::string attack) : attack_(std::move(attack)) {}

Tally::~Tally()
{
    EXPECT_GT(injections, 0U) << attack_;
    EXPECT_EQ(crashes, 0U) << attack_;
    EXPECT_EQ(leaks, 0U) << attack_;
    EXPECT_EQ(hangs, 0U) << attack_;
    EXPECT_EQ(wrongResults, 0U) << attack_;
    constexpr int kAttackColumn = 52;
    constexpr int kColumn = 9;
    std::cout << "torture: " << std::left << std::setw(kAttackColumn) << attack_ << std::right;
    for (const std::size_t number : {injections, crashes, leaks, hangs, wrongResults})
        std::cout << std::setw(kColumn) << number;
    std::cout << std::endl;
}

void Tally::expect(bool isRight, const std::string& what)
{
    if (isRight)
        return;
    ++wrongResults;
    ADD_FAILURE() << what;
}

bool isWholeTorture()
{
    const char* const wanted = std::getenv("KVX_TORTURE"); // NOLINT(concurrency-mt-unsafe)
    return wanted != nullptr && std::string_view(wanted) == "whole";
}

} // namespace kvxtest
