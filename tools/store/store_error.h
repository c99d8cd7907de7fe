#pragma once

#include <stdexcept>

namespace store_tool
{

/// What a command cannot do, in words for the person who gave it.
class StoreError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace store_tool
