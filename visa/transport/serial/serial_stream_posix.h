#pragma once

#include "visa/host/wait_posix.h"
#include "visa/transport/stream.h"

#include <asio/serial_port.hpp>

namespace visa
{

/// A serial port (ASRL INSTR) in raw mode.
class SerialStream : public Stream
{
public:
    /// Takes over an open port.
    explicit SerialStream(asio::serial_port port);

    ViStatus readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept override;
    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept override;
    void discardInput() noexcept override;
    ViUInt32 available() noexcept override;
    ViStatus sendBreak(const Deadline& deadline) noexcept override;
    ViStatus setAttribute(ViAttr attribute, ViUInt32 value) noexcept override;
    void interrupt() noexcept override;

private:
    NativeHandle handle() noexcept { return static_cast<NativeHandle>(port_.native_handle()); }
    ViStatus wait(Direction direction, const Deadline& deadline) noexcept;

    asio::serial_port port_;
    Interrupter interrupter_;
};

} // namespace visa
