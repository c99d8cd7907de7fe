#pragma once

#include "tools/store/store_text.h"

#include <string>
#include <vector>

namespace store_tool
{

/// Something in a store that does not follow the rules of the file format.
struct Finding
{
    std::size_t line;  ///< from 1 on
    std::string place; ///< the element, from the root's children down
    std::string text;
};

/// Every finding, in the order of the file.
std::vector<Finding> check(const StoreText& store);

/// The findings after a change that were not there before it, wherever their lines are now.
std::vector<Finding> newFindings(const std::vector<Finding>& before, const std::vector<Finding>& after);

} // namespace store_tool
