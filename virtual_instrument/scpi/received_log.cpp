#include "virtual_instrument/scpi/received_log.h"

namespace kvxvirtual
{
namespace
{

/// An empty line takes memory too.
std::size_t costOf(std::string_view line)
{
    return line.size() + sizeof(std::string);
}

} // namespace

void ReceivedLog::add(std::string_view line)
{
    lines_.emplace_back(line);
    bytes_ += costOf(line);
    while (bytes_ > kMostBytes) {
        bytes_ -= costOf(lines_.front());
        lines_.pop_front();
        ++lost_;
    }
}

void ReceivedLog::clear()
{
    lines_.clear();
    bytes_ = 0;
    lost_ = 0;
}

} // namespace kvxvirtual
