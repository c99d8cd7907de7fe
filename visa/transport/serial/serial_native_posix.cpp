#include "visa/transport/serial/serial_native_posix.h"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

namespace visa
{
namespace
{

int descriptor(NativeHandle handle)
{
    return static_cast<int>(handle);
}

TransferState stateOfError(int error)
{
    switch (error) {
    case EAGAIN:
    case EINTR:
        return TransferState::WouldBlock;
    // A terminal whose line hung up, or whose adapter was pulled out.
    case EIO:
    case ENXIO:
    case ENODEV:
        return TransferState::ConnectionLost;
    default:
        return TransferState::Failed;
    }
}

TransferState stateOf(int result)
{
    return result == 0 ? TransferState::Done : stateOfError(errno);
}

ViUInt32 count(NativeHandle handle, unsigned long request)
{
    int bytes = 0;
    return ::ioctl(descriptor(handle), request, &bytes) == 0 && bytes > 0 ? static_cast<ViUInt32>(bytes) : 0;
}

struct ModemLine
{
    ViAttr attribute;
    int bit;
};

constexpr std::array<ModemLine, 6> kModemLines{{
    {VI_ATTR_ASRL_CTS_STATE, TIOCM_CTS},
    {VI_ATTR_ASRL_DCD_STATE, TIOCM_CAR},
    {VI_ATTR_ASRL_DSR_STATE, TIOCM_DSR},
    {VI_ATTR_ASRL_DTR_STATE, TIOCM_DTR},
    {VI_ATTR_ASRL_RI_STATE, TIOCM_RNG},
    {VI_ATTR_ASRL_RTS_STATE, TIOCM_RTS},
}};

/// 0 for an attribute that is no line.
int bitOf(ViAttr attribute)
{
    for (const ModemLine& line : kModemLines) {
        if (line.attribute == attribute)
            return line.bit;
    }
    return 0;
}

} // namespace

std::string serialDevicePath(ViUInt16 board)
{
    const std::string variable = "VISA_ASRL" + std::to_string(board);
    // Only read; setting it while a port is opened is the application's own race.
    const char* const configured = std::getenv(variable.c_str()); // NOLINT(concurrency-mt-unsafe)
    if (configured != nullptr && *configured != '\0')
        return configured;
    return board == 0 ? std::string() : "/dev/ttyS" + std::to_string(board - 1);
}

TransferResult readNow(NativeHandle handle, std::span<ViByte> buffer) noexcept
{
    const ssize_t transferred = ::read(descriptor(handle), buffer.data(), buffer.size());
    if (transferred > 0)
        return {TransferState::Done, static_cast<std::size_t>(transferred)};
    return {transferred == 0 ? TransferState::ConnectionLost : stateOfError(errno), 0};
}

TransferResult writeNow(NativeHandle handle, std::span<const ViByte> bytes) noexcept
{
    const ssize_t transferred = ::write(descriptor(handle), bytes.data(), bytes.size());
    if (transferred > 0)
        return {TransferState::Done, static_cast<std::size_t>(transferred)};
    return {transferred == 0 ? TransferState::WouldBlock : stateOfError(errno), 0};
}

ViUInt32 bytesWaiting(NativeHandle handle) noexcept
{
    return count(handle, FIONREAD);
}

ViUInt32 bytesUnsent(NativeHandle handle) noexcept
{
    return count(handle, TIOCOUTQ);
}

TransferState discardReceived(NativeHandle handle) noexcept
{
    return stateOf(::tcflush(descriptor(handle), TCIFLUSH));
}

TransferState discardUnsent(NativeHandle handle) noexcept
{
    return stateOf(::tcflush(descriptor(handle), TCOFLUSH));
}

ViUInt32 modemLine(NativeHandle handle, ViAttr line) noexcept
{
    int lines = 0;
    const int bit = bitOf(line);
    if (bit == 0 || ::ioctl(descriptor(handle), TIOCMGET, &lines) != 0)
        return static_cast<ViUInt32>(VI_STATE_UNKNOWN);
    return (lines & bit) != 0 ? VI_STATE_ASSERTED : VI_STATE_UNASSERTED;
}

TransferState setModemLine(NativeHandle handle, ViAttr line, bool isAsserted) noexcept
{
    int lines = bitOf(line);
    return stateOf(::ioctl(descriptor(handle), isAsserted ? TIOCMBIS : TIOCMBIC, &lines));
}

TransferState sendLineBreak(NativeHandle handle) noexcept
{
    // The session lets one write at a time through, and nothing else sends breaks on its descriptor.
    return stateOf(::tcsendbreak(descriptor(handle), 0)); // NOLINT(concurrency-mt-unsafe)
}

} // namespace visa
