// What a HiSLIP device sends on both of its channels, in reply to any calls: messages that fit and that do not, lies
// about lengths and numbers, bytes that are no message. Each call ends in a status, with a count that fits, and the
// session sends nothing but messages. The input says how the device answers and what is called.
#include "fuzz/input.h"
#include "fuzz/transport_calls.h"
#include "visa/transport/hislip/hislip_transport.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace visa;
using kvxfuzz::Input;
using kvxfuzz::require;

constexpr std::size_t kHeader = 16;

/// A number of so many bytes, the highest first.
std::string bigEndian(std::uint64_t number, unsigned bytes)
{
    std::string text;
    for (unsigned i = bytes; i-- > 0;)
        text += static_cast<char>(number >> (8 * i));
    return text;
}

std::string message(std::uint8_t type, std::uint8_t control, std::uint32_t parameter, const std::string& payload)
{
    return "HS" + bigEndian(type, 1) + bigEndian(control, 1) + bigEndian(parameter, 4) + bigEndian(payload.size(), 8) +
           payload;
}

/// What the session has sent on one of its channels.
class SentMessages
{
public:
    void add(std::span<const ViByte> bytes)
    {
        unread_.insert(unread_.end(), bytes.begin(), bytes.end());
        for (;;) {
            const std::size_t dropped = static_cast<std::size_t>(std::min<std::uint64_t>(payload_, unread_.size()));
            unread_.erase(unread_.begin(), unread_.begin() + static_cast<std::ptrdiff_t>(dropped));
            payload_ -= dropped;
            if (payload_ > 0 || unread_.size() < kHeader)
                return;
            require(unread_[0] == 'H' && unread_[1] == 'S');
            lastNumber_ = static_cast<std::uint32_t>(numberAt(4, 4));
            payload_ = numberAt(8, 8);
            unread_.erase(unread_.begin(), unread_.begin() + kHeader);
        }
    }

    std::uint32_t lastNumber() const { return lastNumber_; }

private:
    std::uint64_t numberAt(std::size_t begin, std::size_t bytes) const
    {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            number = number << 8U | unread_[begin + i];
        return number;
    }

    std::vector<ViByte> unread_;
    std::uint64_t payload_ = 0;
    std::uint32_t lastNumber_ = 0;
};

/// One of a device's channels.
class Channel : public Stream
{
public:
    Channel(Input& input, std::string welcome) : input_(input), arrived_(std::move(welcome)) {}

    ViStatus readSome(std::span<ViByte> buffer, const Deadline&, std::size_t& count) noexcept override
    {
        count = 0;
        if (isOver_)
            return VI_ERROR_INV_OBJECT;
        if (arrived_.empty())
            arrived_ = next();
        const std::size_t piece = input_.isOver() ? arrived_.size() : std::size_t{1} + input_.number();
        count = std::min({piece, arrived_.size(), buffer.size()});
        std::copy_n(arrived_.begin(), count, buffer.begin());
        arrived_.erase(0, count);
        return count > 0 ? VI_SUCCESS : VI_ERROR_TMO;
    }

    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline&, std::size_t& count) noexcept override
    {
        count = 0;
        if (isOver_)
            return VI_ERROR_INV_OBJECT;
        const bool isSlow = !input_.isOver() && input_.number() % 16 == 15;
        count = isSlow ? std::min<std::size_t>(input_.number(), bytes.size()) : bytes.size();
        sent_.add(bytes.first(count));
        return count == bytes.size() ? VI_SUCCESS : VI_ERROR_TMO;
    }

    ViStatus discardInput(const Deadline&) noexcept override { return VI_SUCCESS; }
    ViStatus setAttribute(ViAttr, ViUInt32) noexcept override { return VI_SUCCESS; }
    void interrupt() noexcept override { isOver_ = true; }

private:
    std::string next()
    {
        if (input_.isOver())
            return {};
        const std::uint8_t how = input_.number();
        if (how % 32 == 31)
            return input_.take<std::string>(input_.number());
        // The types of the standard, and now and then another.
        constexpr std::uint8_t kTypes = 28;
        const std::uint8_t type = how % 32 < kTypes ? how % 32 : input_.number();
        const std::uint8_t control = input_.number();
        const std::uint32_t parameter = number(how >> 5U);
        std::string bytes = message(type, control, parameter, input_.take<std::string>(input_.number() % 64));
        if (how >> 5U == 7)
            bytes[8 + input_.number() % 8] = static_cast<char>(input_.number());
        return bytes;
    }

    /// Mostly that of the question.
    std::uint32_t number(unsigned how)
    {
        constexpr std::uint32_t kUnknown = 0xFFFFFFFF;
        if (how == 5)
            return kUnknown;
        if (how == 6)
            return input_.number();
        return sent_.lastNumber();
    }

    Input& input_;
    std::string arrived_;
    SentMessages sent_;
    bool isOver_ = false;
};

class Session
{
public:
    explicit Session(Input& input)
    {
        const std::uint8_t how = input.number();
        const bool isWelcome = how % 8 != 7;
        std::array<std::string, 2> welcomes{message(1, how & 1U, 0x01000001, {}), message(18, 0, 0, {})};
        std::size_t channels = 0;
        const auto connect = [&](const Deadline&, std::unique_ptr<Stream>& stream) {
            stream = std::make_unique<Channel>(input, isWelcome ? welcomes.at(channels) : std::string());
            ++channels;
            return VI_SUCCESS;
        };
        const ViStatus status = openHislip(connect, "hislip0", Deadline(VI_TMO_INFINITE), transport_);
        require((status >= 0) == (transport_ != nullptr));
    }

    bool isOpen() const { return transport_ != nullptr; }

    void step(Input& input)
    {
        const Deadline deadline(VI_TMO_INFINITE);
        perform(input, {attributes_, deadline});
    }

private:
    void perform(Input& input, const Terms& terms)
    {
        ViUInt16 status = 0;
        switch (input.number() % 14) {
        case 0:
        case 1:
        case 2:
            return kvxfuzz::readChecked(*transport_, terms, input.number());
        case 3:
        case 4:
            return kvxfuzz::writeChecked(*transport_, terms, input.number() * std::size_t{33});
        case 5:
            transport_->trigger(terms);
            return;
        case 6:
            transport_->readStatusByte(terms, status);
            return require(status <= 0xFF);
        case 7:
            transport_->clear(terms);
            return;
        case 8:
            transport_->controlRemote(terms, input.number() % 7);
            return;
        case 9:
            transport_->lock(terms, {input.number() % 2 == 0, "key"});
            return;
        case 10:
            transport_->unlock(terms, false);
            return;
        case 11:
            transport_->lockState(terms);
            transport_->discardInput(terms);
            return;
        case 12:
            transport_->setAttribute(VI_ATTR_TCPIP_HISLIP_OVERLAP_EN, input.number() % 2);
            transport_->setAttribute(VI_ATTR_TCPIP_HISLIP_MAX_MESSAGE_KB, input.number());
            return;
        default:
            kvxfuzz::setEnds(attributes_, input);
        }
    }

    std::unique_ptr<Transport> transport_;
    AttributeValues attributes_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kvxfuzz::runSession<Session>({data, size});
    return 0;
}
