#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace store_tool
{

/// What a command cannot do, in words for the person who gave it.
class StoreError : public std::runtime_error
{
public:
    explicit StoreError(const std::string& what, std::string remedy = {})
        : std::runtime_error(what), remedy_(std::move(remedy))
    {
    }

    /// What that person can do about it; empty where the complaint says it.
    const std::string& remedy() const { return remedy_; }

private:
    std::string remedy_;
};

} // namespace store_tool
