// A USBTMC session with a device that answers what the input says, on each of its pipes: outcomes, headers right and
// wrong, lies about sizes, statuses. Nothing is stored beyond a buffer, no read asks for more than it has room for, and
// no operation takes more transfers than are bounded.
#include "fuzz/input.h"
#include "fuzz/transport_calls.h"
#include "visa/transport/usb/usbtmc_transport.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace
{

using kvxfuzz::Input;
using kvxfuzz::require;

class Device : public visa::UsbInterface
{
public:
    explicit Device(Input& input) : input_(input)
    {
        const std::uint8_t traits = input.number();
        usb_.protocol = traits & 1U;
        usb_.bulkOutAddress = 1;
        usb_.bulkInAddress = 0x82;
        usb_.bulkInPacketSize = std::size_t{1} << (traits >> 1U & 7U);
        usb_.interruptInSize = traits >> 4U & 1U;
    }

    const visa::UsbDescription& description() const noexcept override { return usb_; }

    visa::Transfer controlIn(const visa::ControlRequest&, std::span<ViByte> answer,
                             const visa::TransferLimit&) noexcept override
    {
        return filled(answer);
    }

    visa::Transfer bulkOut(std::span<const ViByte> bytes, const visa::TransferLimit&) noexcept override
    {
        require(bytes.size() >= 12 && bytes.size() % 4 == 0 && (bytes[1] ^ bytes[2]) == 0xFF && bytes[1] != 0);
        header_.assign(bytes.begin(), bytes.begin() + 12);
        if (bytes[0] == 2)
            require(asked() > 0 && asked() <= room);
        const visa::Transfer transfer = next();
        const std::size_t cut = transfer.outcome == visa::TransferOutcome::Complete ? 0 : input_.number();
        return {transfer.outcome, bytes.size() - std::min(cut, bytes.size())};
    }

    visa::Transfer bulkIn(std::span<ViByte> space, const visa::TransferLimit&) noexcept override
    {
        require(!space.empty() && space.size() % usb_.bulkInPacketSize == 0);
        const std::uint8_t kind = input_.number() % 4;
        if (kind == 0)
            return filled(space);
        const auto data = takeBlock(asked());
        std::vector<ViByte> reply(header_);
        reply.resize(12);
        reply[0] = 2;
        const std::size_t size = kind == 1 ? data.size() : input_.number();
        reply[4] = static_cast<ViByte>(size);
        reply[5] = reply[6] = 0;
        reply[7] = kind == 3 ? ViByte{0xFF} : ViByte{0};
        reply[8] = input_.number();
        reply.insert(reply.end(), data.begin(), data.end());
        return copied(reply, space);
    }

    visa::Transfer interruptIn(std::span<ViByte> space, const visa::TransferLimit&) noexcept override
    {
        return filled(space);
    }

    visa::TransferOutcome clearHalt(std::uint8_t) noexcept override { return next().outcome; }
    void cancelBulk() noexcept override {}
    void resumeBulk() noexcept override {}
    void cancelAll() noexcept override {}
    void pause(int) noexcept override {}

    std::size_t room = 0; ///< of the read under way
    int transfers = 0;

private:
    std::size_t asked() const
    {
        std::size_t size = 0;
        for (std::size_t i = 0; i < 4 && header_.size() >= 12; ++i)
            size |= std::size_t{header_[4 + i]} << (8 * i);
        return size;
    }

    visa::Transfer next()
    {
        ++transfers;
        if (input_.isOver())
            return {visa::TransferOutcome::Gone};
        const std::uint8_t outcome = input_.number();
        return {outcome < 7 ? static_cast<visa::TransferOutcome>(outcome) : visa::TransferOutcome::Complete};
    }

    visa::Transfer copied(std::span<const ViByte> bytes, std::span<ViByte> space)
    {
        const std::size_t count = std::min(bytes.size(), space.size());
        std::copy_n(bytes.begin(), count, space.begin());
        return {next().outcome, count};
    }

    std::vector<ViByte> takeBlock(std::size_t most)
    {
        return input_.take<std::vector<ViByte>>(std::min<std::size_t>(input_.number(), most));
    }

    visa::Transfer filled(std::span<ViByte> space) { return copied(takeBlock(space.size()), space); }

    Input& input_;
    visa::UsbDescription usb_;
    std::vector<ViByte> header_;
};

class Session
{
public:
    explicit Session(Input& input) : device_(new Device(input))
    {
        const visa::Deadline deadline(VI_TMO_INFINITE);
        visa::makeUsbtmcTransport(std::unique_ptr<visa::UsbInterface>(device_), deadline, transport_);
    }

    bool isOpen() const { return transport_ != nullptr; }

    void step(Input& input)
    {
        device_->transfers = 0;
        // Without an end of the time only what the device is bounded by ends an operation.
        const visa::Deadline deadline(VI_TMO_INFINITE);
        perform(input, {attributes_, deadline});
        require(device_->transfers < 20000);
    }

private:
    void perform(Input& input, const visa::Terms& terms)
    {
        ViUInt16 status = 0;
        switch (input.number() % 8) {
        case 0:
        case 1:
            device_->room = input.number();
            return kvxfuzz::readChecked(*transport_, terms, device_->room);
        case 2:
            return kvxfuzz::writeChecked(*transport_, terms, input.number());
        case 3:
            transport_->trigger(terms);
            return;
        case 4:
            transport_->readStatusByte(terms, status);
            return;
        case 5:
            transport_->clear(terms);
            return;
        case 6:
            transport_->controlRemote(terms, input.number());
            return;
        default:
            kvxfuzz::setEnds(attributes_, input);
        }
    }

    Device* const device_;
    std::unique_ptr<visa::Transport> transport_;
    visa::AttributeValues attributes_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kvxfuzz::runSession<Session>({data, size});
    return 0;
}
