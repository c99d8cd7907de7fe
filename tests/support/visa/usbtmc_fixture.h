#pragma once

#include "tests/support/visa/usbtmc_device.h"
#include "visa/transport/usb/usbtmc_transport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace kvxtest
{

/// What a read gave.
using UsbRead = std::pair<ViStatus, std::string>;

/// A transport on a device of the test's own, which must not break a rule of USBTMC.
class UsbtmcTest : public testing::Test
{
protected:
    using Request = UsbtmcDevice::Request;
    using Status = UsbtmcDevice::Status;
    using Outcome = visa::TransferOutcome;

    void TearDown() override { EXPECT_THAT(device_.violations, testing::IsEmpty()); }

    /// Makes the transport; what the device is has been said before. The log begins anew.
    void open()
    {
        const visa::Deadline deadline(kTimeoutMs);
        ASSERT_EQ(visa::makeUsbtmcTransport(std::move(owned_), deadline, transport_), VI_SUCCESS);
        device_.log.clear();
        device_.transfers = 0;
    }

    void set(ViAttr attribute, ViAttrState value) { attributes_.set(attribute, value); }
    void endAt(char end)
    {
        set(VI_ATTR_TERMCHAR_EN, VI_TRUE);
        set(VI_ATTR_TERMCHAR, static_cast<ViByte>(end));
    }

    template <class Operation>
    ViStatus run(Operation operation)
    {
        const visa::Deadline deadline(static_cast<ViUInt32>(attributes_.get(VI_ATTR_TMO_VALUE)));
        return operation(visa::Terms{attributes_, deadline});
    }

    UsbRead read(std::size_t size = 100)
    {
        std::string buffer(size + 1, kUntouched);
        std::size_t count = 0;
        const ViStatus status = run([&](const visa::Terms& terms) {
            return transport_->read({reinterpret_cast<ViByte*>(buffer.data()), size}, terms, count);
        });
        EXPECT_LE(count, size);
        EXPECT_EQ(buffer.at(count), kUntouched) << "bytes were stored that the count does not tell of";
        return {status, buffer.substr(0, count)};
    }

    ViStatus write(const std::string& bytes, std::size_t* written = nullptr)
    {
        std::size_t count = 0;
        const ViStatus status = run([&](const visa::Terms& terms) {
            return transport_->write({reinterpret_cast<const ViByte*>(bytes.data()), bytes.size()}, terms, count);
        });
        (written != nullptr ? *written : count) = count;
        return status;
    }

    ViStatus clear()
    {
        return run([&](const visa::Terms& terms) { return transport_->clear(terms); });
    }
    ViStatus trigger()
    {
        return run([&](const visa::Terms& terms) { return transport_->trigger(terms); });
    }
    ViStatus controlRemote(ViUInt16 mode)
    {
        return run([&](const visa::Terms& terms) { return transport_->controlRemote(terms, mode); });
    }
    std::pair<ViStatus, ViUInt16> statusByte()
    {
        ViUInt16 byte = 0xEEEE;
        const ViStatus status = run([&](const visa::Terms& terms) { return transport_->readStatusByte(terms, byte); });
        return {status, byte};
    }

    static constexpr char kUntouched = '\xEE';
    static constexpr ViUInt32 kTimeoutMs = 2000;

    UsbtmcDevice& device_ = *new UsbtmcDevice;
    std::unique_ptr<visa::UsbInterface> owned_{&device_};
    std::unique_ptr<visa::Transport> transport_;
    visa::AttributeValues attributes_;
};

} // namespace kvxtest
