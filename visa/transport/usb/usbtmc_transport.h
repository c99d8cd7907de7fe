#pragma once

#include "visa/transport/end_finder.h"
#include "visa/transport/transport.h"
#include "visa/transport/turn.h"
#include "visa/transport/usb/status_byte.h"
#include "visa/transport/usb/usb_interface.h"
#include "visa/transport/usb/usbtmc_messages.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace visa
{

/// Messages to and from an instrument of USB's test and measurement class (USBTMC 1.0, USB488).
///
/// Reads, writes, triggers and clears have the bulk pipes one at a time, and a clear ends the others first. Whatever
/// ends a message early is taken back with the device before the call returns, so that the next message finds it in
/// order.
class UsbtmcTransport : public Transport
{
public:
    UsbtmcTransport(std::unique_ptr<UsbInterface> usb, const usbtmc::Capabilities& capabilities);

    ViStatus read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count) override;
    ViStatus write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count) override;
    ViStatus clear(const Terms& terms) override;
    ViStatus discardInput(const Terms& terms) override;
    ViStatus readStatusByte(const Terms& terms, ViUInt16& status) override;
    ViStatus trigger(const Terms& terms) override;
    ViStatus controlRemote(const Terms& terms, ViUInt16 mode) override;
    ViUInt32 numberFact(ViAttr attribute) override;
    std::string textFact(ViAttr attribute) override;
    ViStatus abort() override;
    void interrupt() noexcept override;

private:
    template <class Operation>
    ViStatus inTurn(Turn& turn, const Deadline& deadline, Operation operation);
    void endTurn(Turn& turn);

    ViByte takeTag();
    ViStatus send(const usbtmc::Header& header, std::span<const ViByte> data, const Deadline& deadline,
                  std::size_t& dataSent);
    ViStatus writeMessage(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count);

    bool isStale(std::span<const ViByte> transfer) const;
    Transfer receive(std::span<ViByte> room, const Deadline& deadline);
    ViStatus fetch(std::size_t wanted, const Terms& terms);
    std::span<ViByte> scratch();
    std::optional<ViStatus> deliver(std::span<ViByte> buffer, const Terms& terms, std::size_t& count);
    void forgetReceived();
    ViStatus readMessage(std::span<ViByte> buffer, const Terms& terms, std::size_t& count);
    void endBulk();

    const std::unique_ptr<UsbInterface> usb_;
    const usbtmc::Capabilities capabilities_;

    Turn bulkTurn_; ///< guards what follows
    ViByte tag_ = 0;
    std::vector<ViByte> outgoing_; ///< room for a message's part
    std::vector<ViByte> incoming_;
    std::span<const ViByte> received_; ///< of incoming_, what no read has taken yet
    bool endsMessage_ = false;         ///< END is behind what was received
    std::optional<ViByte> staleSince_; ///< tag of the first request that was given up and may be answered yet

    Turn statusTurn_; ///< guards statusByte_, and the order of commands to it
    usbtmc::StatusByte statusByte_;
};

/// Asks the device for its capabilities.
/// @param transport receives it on success
ViStatus makeUsbtmcTransport(std::unique_ptr<UsbInterface> usb, const Deadline& deadline,
                             std::unique_ptr<Transport>& transport);

} // namespace visa
