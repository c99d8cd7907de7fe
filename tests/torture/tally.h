#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <string>

namespace kvxtest
{

/// What an attack has brought about. Prints its row of the table at its end, in which all but the injections is to be
/// 0.
class Tally
{
public:
    explicit Tally(std::string attack) : attack_(std::move(attack)) {}
    ~Tally()
    {
        std::cout << "| " << attack_ << " | " << injections << " | " << crashes << " | " << leaks << " | " << hangs
                  << " | " << wrongResults << " |\n";
        EXPECT_GT(injections, 0);
        EXPECT_EQ(crashes, 0);
        EXPECT_EQ(leaks, 0);
        EXPECT_EQ(hangs, 0);
        EXPECT_EQ(wrongResults, 0);
    }
    Tally(const Tally&) = delete;
    Tally& operator=(const Tally&) = delete;

    /// Counts a result that is not what it should be, and says which.
    void expect(bool isRight, const std::string& what)
    {
        if (isRight)
            return;
        ++wrongResults;
        std::cout << attack_ << ": " << what << '\n';
    }

    int injections = 0;
    int crashes = 0;
    int leaks = 0;
    int hangs = 0;
    int wrongResults = 0;

private:
    std::string attack_;
};

} // namespace kvxtest
