#pragma once

#include "visa/transport/transport.h"
#include "visa/transport/turn.h"
#include "visa/transport/vxi11/portmapper.h"
#include "visa/transport/vxi11/rpc_channel.h"

#include <memory>
#include <mutex>
#include <string>

namespace visa
{

/// How much longer than the device itself the library waits for an answer: for its way, and a device that is busy.
inline constexpr ViUInt32 kAnswerAllowanceMs = 1000;

/// What the device has said of a link when it created it, and the allowance for its answers.
struct Vxi11Link
{
    int number = 0;
    ViUInt16 abortPort = 0;
    std::size_t mostSent = 0; ///< bytes of data in one write
    ViUInt32 allowanceMs = kAnswerAllowanceMs;
};

/// A link of VXI-11: messages by calls of the core channel, one at a time, and a channel beside it to end one that
/// takes its time. Each call tells the device how long it may take, and is given up a moment after that.
class Vxi11Transport : public Transport
{
public:
    Vxi11Transport(std::unique_ptr<RpcChannel> core, Vxi11Link link);
    /// Destroys the link, unless interrupt() has met a call under way: a device gives up the links of a connection that
    /// ends.
    ~Vxi11Transport() override;
    Vxi11Transport(const Vxi11Transport&) = delete;
    Vxi11Transport& operator=(const Vxi11Transport&) = delete;

    ViStatus read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count) override;
    ViStatus write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count) override;
    ViStatus clear(const Terms& terms) override;
    ViStatus readStatusByte(const Terms& terms, ViUInt16& status) override;
    ViStatus trigger(const Terms& terms) override;
    ViStatus controlRemote(const Terms& terms, ViUInt16 mode) override;
    /// VXI-11 has exclusive locks only; shared ones stay among this process's sessions.
    ViStatus lock(const Terms& terms, const LockRequest& request) override;
    ViStatus unlock(const Terms& terms, bool isShared) override;
    std::string textFact(ViAttr attribute) override;
    ViStatus abort() override;
    void interrupt() noexcept override;

private:
    template <class Operation>
    ViStatus inTurn(const Deadline& deadline, Operation operation);
    ViStatus readMessage(std::span<ViByte> buffer, const Terms& terms, std::size_t& count);
    ViStatus readPart(std::span<ViByte> room, const Terms& terms, std::size_t& count, int& reason);
    ViStatus writePart(std::span<const ViByte> part, bool isLast, const Terms& terms, std::size_t& count);
    ViStatus callGeneric(std::uint32_t procedure, const Terms& terms);
    /// When a call is given up that the device may take so long for.
    Deadline answerDeadline(ViUInt32 deviceMs) const;
    ViStatus connectAbortChannel(const Deadline& deadline);

    const std::unique_ptr<RpcChannel> core_;
    const Vxi11Link link_;
    const std::string address_;

    Turn turn_; ///< taken for an operation on core_

    std::mutex abortMutex_; ///< guards abortChannel_
    std::unique_ptr<RpcChannel> abortChannel_;
};

/// Where a host's core channel is.
ViStatus findVxi11Core(const std::string& host, const Deadline& deadline, RpcPlace& core);

/// Creates a link to a device behind a core channel.
ViStatus openVxi11Link(const RpcPlace& core, const std::string& device, const Deadline& deadline,
                       std::unique_ptr<Transport>& transport, ViUInt32 allowanceMs = kAnswerAllowanceMs);

/// The same on a connection that is there already.
ViStatus openVxi11Link(std::unique_ptr<Stream> connection, const std::string& device, const Deadline& deadline,
                       std::unique_ptr<Transport>& transport, ViUInt32 allowanceMs = kAnswerAllowanceMs);

} // namespace visa
