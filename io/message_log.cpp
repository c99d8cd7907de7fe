#include "io/message_log.h"

#include "base/printable.h"
#include "base/visa_statuses.h"

#include <new>
#include <utility>

namespace InstLink
{
namespace
{

constexpr std::string_view kCut = "...";

std::string messageRecord(std::string_view mark, std::string_view message)
{
    std::string record(mark);
    for (const char byte : message) {
        const base::PrintableByte printable(byte);
        if (record.size() + printable.text().size() + kCut.size() > MessageLog::kLongestRecord)
            return record.append(kCut);
        record += printable.text();
    }
    return record;
}

std::string failureRecord(std::string_view what, ViStatus status)
{
    std::string record = "! ";
    record.append(what).append(" failed: 0x");
    const auto bits = static_cast<ViUInt32>(status);
    for (int shift = 28; shift >= 0; shift -= 4)
        record += base::kHexadecimalDigits[(bits >> static_cast<unsigned>(shift)) & 0xFU];
    if (const base::VisaStatus* const known = base::visaStatus(status))
        record.append(" ").append(known->name).append(", ").append(known->meaning);
    return record;
}

std::string lossRecord(std::size_t lost)
{
    return "! " + std::to_string(lost) + (lost == 1 ? " record has been lost" : " records have been lost");
}

} // namespace

template <class Compose>
void MessageLog::add(Compose compose) noexcept
{
    try {
        records_.push_back({compose(), lostLast_});
    } catch (const std::bad_alloc&) {
        ++lostLast_;
        return;
    }
    lostLast_ = 0;
    if (records_.size() <= mostRecords_)
        return;
    const std::size_t lost = records_.front().lostBefore + 1;
    records_.pop_front();
    records_.front().lostBefore += lost;
}

void MessageLog::sent(std::string_view message) noexcept
{
    add([message] { return messageRecord("> ", message); });
}

void MessageLog::received(std::string_view message) noexcept
{
    add([message] { return messageRecord("< ", message); });
}

void MessageLog::sendingFailed(ViStatus status) noexcept
{
    add([status] { return failureRecord("sending", status); });
}

void MessageLog::receivingFailed(ViStatus status) noexcept
{
    add([status] { return failureRecord("receiving", status); });
}

std::string MessageLog::oldest() const
{
    if (lost() > 0)
        return lossRecord(lost());
    return records_.empty() ? std::string() : records_.front().text;
}

void MessageLog::removeOldest() noexcept
{
    if (records_.empty())
        lostLast_ = 0;
    else if (records_.front().lostBefore > 0)
        records_.front().lostBefore = 0;
    else
        records_.pop_front();
}

} // namespace InstLink
