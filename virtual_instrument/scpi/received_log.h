#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// The lines that clients sent, in the order of their execution, byte for byte without the line feed. Keeps the newest
/// ones up to a fixed number of bytes, so that a program that runs for weeks does not grow.
class ReceivedLog
{
public:
    static constexpr std::size_t kMostBytes = std::size_t{16} * 1024 * 1024;

    void add(std::string_view line);
    void clear();

    const std::deque<std::string>& lines() const { return lines_; }
    /// How many older lines had to go since the last clear().
    std::size_t lost() const { return lost_; }

private:
    std::deque<std::string> lines_;
    std::size_t bytes_ = 0;
    std::size_t lost_ = 0;
};

} // namespace kvxvirtual
