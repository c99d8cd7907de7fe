#include "simulator/virtual_connection.h"

#include <algorithm>
#include <utility>

namespace TSRO
{

VirtualConnection::VirtualConnection(kvxvirtual::InstrumentClock::Source time)
    : instrument_({.keepsLog = false}, std::move(time))
{
}

ViStatus VirtualConnection::close()
{
    open_ = false;
    return VI_SUCCESS;
}

ViStatus VirtualConnection::send(std::string_view bytes)
{
    if (!open_)
        return VI_ERROR_INV_OBJECT;
    if (answers_.size() >= kMostWaitingBytes)
        return VI_ERROR_TMO;
    lines_.append(bytes);
    while (const auto line = lines_.next())
        execute(*line);
    return VI_SUCCESS;
}

void VirtualConnection::execute(const kvxvirtual::LineAssembler::Line& line)
{
    if (line.overrun)
        return instrument_.inputOverrun();
    if (const auto response = instrument_.receive(line.bytes))
        answers_ += response->bytes;
}

ViStatus VirtualConnection::receive(std::span<ViByte> buffer, ViUInt32& count)
{
    count = 0;
    if (!open_)
        return VI_ERROR_INV_OBJECT;
    if (answers_.empty())
        return VI_ERROR_TMO;
    // Every answer ends in a line feed.
    const std::size_t length = answers_.find('\n') + 1;
    const std::size_t taken = std::min(length, buffer.size());
    std::copy_n(answers_.begin(), taken, buffer.begin());
    answers_.erase(0, taken);
    count = static_cast<ViUInt32>(taken);
    return taken == length ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS_MAX_CNT;
}

} // namespace TSRO
