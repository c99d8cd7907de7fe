#pragma once

#include "store_text.h"

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

/// The findings of a changed store that it did not have before, wherever their lines are now.
std::vector<Finding> newFindings(const StoreText& before, const StoreText& after);

} // namespace store_tool
