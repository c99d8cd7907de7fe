#include "visa/transport/serial/serial_stream.h"

#include "visa/host/close_on_exec_posix.h"
#include "visa/host/host_error.h"
#include "visa/host/io_context.h"
#include "visa/host/wait_status_posix.h"
#include "visa/transport/serial/serial_native_posix.h"

#include <asio/serial_port.hpp>

#include <termios.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace visa
{
namespace
{

using asio::serial_port;

ViStatus openStatus(const asio::error_code& error)
{
    if (isExhaustion(error))
        return VI_ERROR_ALLOC;
    return isOccupied(error) ? VI_ERROR_RSRC_BUSY : VI_ERROR_RSRC_NFOUND;
}

ViStatus statusOf(TransferState state)
{
    if (state == TransferState::Done)
        return VI_SUCCESS;
    return state == TransferState::ConnectionLost ? VI_ERROR_CONN_LOST : VI_ERROR_IO;
}

/// One value of an attribute as Asio has it. What is missing here, neither Asio nor the host can do: mark and space
/// parity, and DTR/DSR or combined flow control.
template <class Option>
struct Choice
{
    ViUInt32 value;
    Option option;
};

constexpr std::array<Choice<serial_port::parity::type>, 3> kParities{{
    {VI_ASRL_PAR_NONE, serial_port::parity::none},
    {VI_ASRL_PAR_ODD, serial_port::parity::odd},
    {VI_ASRL_PAR_EVEN, serial_port::parity::even},
}};

constexpr std::array<Choice<serial_port::stop_bits::type>, 3> kStopBits{{
    {VI_ASRL_STOP_ONE, serial_port::stop_bits::one},
    {VI_ASRL_STOP_ONE5, serial_port::stop_bits::onepointfive},
    {VI_ASRL_STOP_TWO, serial_port::stop_bits::two},
}};

constexpr std::array<Choice<serial_port::flow_control::type>, 3> kFlowControls{{
    {VI_ASRL_FLOW_NONE, serial_port::flow_control::none},
    {VI_ASRL_FLOW_XON_XOFF, serial_port::flow_control::software},
    {VI_ASRL_FLOW_RTS_CTS, serial_port::flow_control::hardware},
}};

template <class Option>
ViStatus apply(serial_port& port, const Option& option)
{
    asio::error_code error;
    port.set_option(option, error);
    return error ? VI_ERROR_NSUP_ATTR_STATE : VI_SUCCESS;
}

template <class Option, class Choices>
ViStatus applyChoice(serial_port& port, const Choices& choices, ViUInt32 value)
{
    const auto choice =
        std::find_if(choices.begin(), choices.end(), [value](const auto& row) { return row.value == value; });
    return choice == choices.end() ? VI_ERROR_NSUP_ATTR_STATE : apply(port, Option(choice->option));
}

/// The line's own flow control character with this index.
struct ControlCharacter
{
    std::size_t index;
    cc_t character;

    void store(termios& line, asio::error_code&) const { line.c_cc[index] = character; }
};

template <std::size_t index>
ViStatus applyCharacter(serial_port& port, ViUInt32 value)
{
    return apply(port, ControlCharacter{index, static_cast<cc_t>(value)});
}

template <ViAttr line>
ViStatus applyModemLine(serial_port& port, ViUInt32 value)
{
    const auto handle = static_cast<NativeHandle>(port.native_handle());
    const TransferState state = setModemLine(handle, line, value == VI_STATE_ASSERTED);
    return state == TransferState::Done ? VI_SUCCESS : VI_ERROR_NSUP_ATTR_STATE;
}

struct Setting
{
    ViAttr attribute;
    ViStatus (*apply)(serial_port& port, ViUInt32 value);
};

constexpr std::array<Setting, 10> kSettings{{
    {VI_ATTR_ASRL_BAUD, [](serial_port& port, ViUInt32 value) { return apply(port, serial_port::baud_rate(value)); }},
    {VI_ATTR_ASRL_DATA_BITS,
     [](serial_port& port, ViUInt32 value) { return apply(port, serial_port::character_size(value)); }},
    {VI_ATTR_ASRL_PARITY,
     [](serial_port& port, ViUInt32 value) { return applyChoice<serial_port::parity>(port, kParities, value); }},
    {VI_ATTR_ASRL_STOP_BITS,
     [](serial_port& port, ViUInt32 value) { return applyChoice<serial_port::stop_bits>(port, kStopBits, value); }},
    {VI_ATTR_ASRL_FLOW_CNTRL,
     [](serial_port& port, ViUInt32 value) {
         return applyChoice<serial_port::flow_control>(port, kFlowControls, value);
     }},
    {VI_ATTR_ASRL_XON_CHAR, applyCharacter<VSTART>},
    {VI_ATTR_ASRL_XOFF_CHAR, applyCharacter<VSTOP>},
    // Characters with errors are marked in ways of the host's own here.
    {VI_ATTR_ASRL_REPLACE_CHAR,
     [](serial_port&, ViUInt32 value) { return value == 0 ? VI_SUCCESS : VI_ERROR_NSUP_ATTR_STATE; }},
    {VI_ATTR_ASRL_DTR_STATE, applyModemLine<VI_ATTR_ASRL_DTR_STATE>},
    {VI_ATTR_ASRL_RTS_STATE, applyModemLine<VI_ATTR_ASRL_RTS_STATE>},
}};

/// A serial port (ASRL INSTR) in raw mode.
class SerialStream : public Stream
{
public:
    explicit SerialStream(serial_port port) : port_(std::move(port)) {}

    ViStatus readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept override;
    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept override;
    ViStatus discardInput(const Deadline&) noexcept override { return statusOf(discardReceived(handle())); }
    ViStatus clearDevice(const Deadline& deadline) noexcept override;
    ViUInt32 available() noexcept override { return bytesWaiting(handle()); }
    ViStatus sendBreak(const Deadline& deadline) noexcept override;
    ViStatus setAttribute(ViAttr attribute, ViUInt32 value) noexcept override;
    ViUInt32 numberFact(ViAttr attribute) noexcept override { return modemLine(handle(), attribute); }
    void interrupt() noexcept override { interrupter_.interrupt(); }

private:
    NativeHandle handle() noexcept { return static_cast<NativeHandle>(port_.native_handle()); }
    ViStatus wait(Direction direction, const Deadline& deadline) noexcept
    {
        return visa::statusOf(interrupter_.wait(handle(), direction, deadline));
    }
    /// Whether a transfer that ended in this state is tried again. The host may have promised that it would not block,
    /// and another reader of the port been faster, any number of times.
    static ViStatus retryStatus(TransferState state, const Deadline& deadline)
    {
        if (state != TransferState::WouldBlock)
            return statusOf(state);
        if (deadline.isAborted())
            return VI_ERROR_ABORT;
        return deadline.remainingMs(1) == 0 ? VI_ERROR_TMO : VI_SUCCESS;
    }

    serial_port port_;
    Interrupter interrupter_;
};

ViStatus SerialStream::readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept
{
    for (;;) {
        ViStatus status = wait(Direction::Read, deadline);
        if (status < 0)
            return status;
        const TransferResult transfer = readNow(handle(), buffer);
        count = transfer.count;
        if (transfer.state == TransferState::Done)
            return VI_SUCCESS;
        status = retryStatus(transfer.state, deadline);
        if (status < 0)
            return status;
    }
}

ViStatus SerialStream::writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept
{
    count = 0;
    while (count < bytes.size()) {
        const TransferResult transfer = writeNow(handle(), bytes.subspan(count));
        count += transfer.count;
        if (transfer.state == TransferState::Done)
            continue;
        ViStatus status = retryStatus(transfer.state, deadline);
        if (status == VI_SUCCESS)
            status = wait(Direction::Write, deadline);
        if (status < 0)
            return status;
    }
    return VI_SUCCESS;
}

ViStatus SerialStream::sendBreak(const Deadline& deadline) noexcept
{
    // The host would wait without limit for output that flow control holds back, so wait here first.
    constexpr int kPauseMs = 2;
    while (bytesUnsent(handle()) > 0) {
        const int pauseMs = deadline.remainingMs(kPauseMs);
        if (pauseMs == 0)
            return VI_ERROR_TMO;
        const WaitResult pause = interrupter_.pause(pauseMs);
        if (pause != WaitResult::TimedOut)
            return visa::statusOf(pause);
        if (deadline.isAborted())
            return VI_ERROR_ABORT;
    }
    for (;;) {
        const TransferState state = sendLineBreak(handle());
        if (state == TransferState::Done)
            return VI_SUCCESS;
        const ViStatus status = retryStatus(state, deadline);
        if (status < 0)
            return status;
    }
}

ViStatus SerialStream::clearDevice(const Deadline& deadline) noexcept
{
    const ViStatus status = statusOf(discardUnsent(handle()));
    return status < 0 ? status : sendBreak(deadline);
}

ViStatus SerialStream::setAttribute(ViAttr attribute, ViUInt32 value) noexcept
{
    const auto* const setting = std::find_if(kSettings.begin(), kSettings.end(),
                                             [attribute](const Setting& row) { return row.attribute == attribute; });
    return setting == kSettings.end() ? VI_ERROR_NSUP_ATTR : setting->apply(port_, value);
}

} // namespace

ViStatus openSerialStream(const ResourceName& name, const Deadline&, std::unique_ptr<Stream>& stream)
{
    const std::string path = name.address.empty() ? serialDevicePath(name.board) : name.address;
    if (path.empty())
        return VI_ERROR_RSRC_NFOUND;
    serial_port port(ioContext());
    asio::error_code error;
    port.open(path, error);
    if (error)
        return openStatus(error);
    closeOnExec(port.native_handle());
    stream = std::make_unique<SerialStream>(std::move(port));
    return VI_SUCCESS;
}

} // namespace visa
