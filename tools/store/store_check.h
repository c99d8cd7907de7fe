#pragma once

#include "tools/store/store_text.h"

#include <string>
#include <vector>

namespace store_tool
{

/// What a finding is about.
enum class FindingKind
{
    Format, ///< the rules of the file format are not followed
    Use,    ///< they are, but what is there fails or has no effect when a program uses it
};

/// Something in a store that is not as it should be.
struct Finding
{
    FindingKind kind;
    std::size_t line;  ///< from 1 on
    std::string place; ///< the element, from the root's children down
    std::string text;
};

/// Every finding, in the order of the file.
std::vector<Finding> check(const StoreText& store);

/// The findings after a change that were not there before it, wherever their lines are now.
std::vector<Finding> newFindings(const std::vector<Finding>& before, const std::vector<Finding>& after);

} // namespace store_tool
