#pragma once

#include <cstddef>
#include <iostream>
#include <string>

namespace kvxtest
{

/// What an attack has done: one row of the table of all of them. A crash ends the program, and with it the row.
struct Verdicts
{
    std::string attack;
    std::size_t injections = 0;
    std::size_t leaks = 0;
    std::size_t hangs = 0;
    std::size_t wrongReplies = 0;

    void print() const
    {
        std::cout << "| attack | injections | crashes | leaks | hangs | wrong replies |\n| " << attack << " | "
                  << injections << " | 0 | " << leaks << " | " << hangs << " | " << wrongReplies << " |\n";
    }
};

} // namespace kvxtest
