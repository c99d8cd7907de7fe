#include "visa/transport/serial/serial_stream.h"

#include "platform/common/windows_environment.h"
#include "visa/host/host_error.h"
#include "visa/transport/serial/com_port_windows.h"
#include "visa/transport/serial/line_settings_windows.h"

#include <string_view>
#include <system_error>
#include <utility>

namespace visa
{
namespace
{

ViStatus statusOf(TransferEnd end)
{
    switch (end) {
    case TransferEnd::Done:
        return VI_SUCCESS;
    case TransferEnd::TimedOut:
        return VI_ERROR_TMO;
    case TransferEnd::Aborted:
        return VI_ERROR_ABORT;
    case TransferEnd::Interrupted:
        return VI_ERROR_INV_OBJECT;
    case TransferEnd::ConnectionLost:
        return VI_ERROR_CONN_LOST;
    case TransferEnd::Failed:
        break;
    }
    return VI_ERROR_IO;
}

/// A serial port (ASRL INSTR) in raw mode.
class SerialStream : public Stream
{
public:
    explicit SerialStream(Handle port) : port_(std::move(port)) {}

    ViStatus readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept override
    {
        const ComTransfer transfer = port_.read(buffer, deadline);
        count = transfer.count;
        return statusOf(transfer.end);
    }

    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept override
    {
        const ComTransfer transfer = port_.write(bytes, deadline);
        count = transfer.count;
        return statusOf(transfer.end);
    }

    ViStatus discardInput(const Deadline&) noexcept override { return purge(PURGE_RXCLEAR); }
    ViStatus clearDevice(const Deadline& deadline) noexcept override
    {
        const ViStatus status = purge(PURGE_TXABORT | PURGE_TXCLEAR);
        return status < 0 ? status : sendBreak(deadline);
    }
    ViUInt32 available() noexcept override { return port_.received(); }
    ViStatus sendBreak(const Deadline&) noexcept override;

    ViStatus setAttribute(ViAttr attribute, ViUInt32 value) noexcept override
    {
        return applyLineSetting(port_.handle(), attribute, value);
    }

    ViUInt32 numberFact(ViAttr attribute) noexcept override { return lineState(port_.handle(), attribute); }
    void interrupt() noexcept override { port_.interrupt(); }

private:
    ViStatus purge(DWORD queues) const noexcept
    {
        if (PurgeComm(port_.handle(), queues) != 0)
            return VI_SUCCESS;
        // A port's driver that knows no such request keeps nothing that could be dropped.
        const DWORD error = GetLastError();
        const bool isUnknown = error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
        return isUnknown ? VI_SUCCESS : statusOf(endOf(error));
    }

    ComPort port_;
};

ViStatus SerialStream::sendBreak(const Deadline&) noexcept
{
    // A write has ended when the last bytes are in the port's own memory, and a break would cut them off. The message
    // has gone by then: on a slow line it must not end as one that was given up.
    constexpr DWORD kLargestPortMemory = 64;
    constexpr int kBreakMs = 250;
    const auto drainMs = static_cast<int>(durationMs(port_.handle(), kLargestPortMemory));
    if (port_.pause(drainMs) == TransferEnd::Interrupted)
        return VI_ERROR_INV_OBJECT;
    if (SetCommBreak(port_.handle()) == 0)
        return VI_ERROR_IO;
    const TransferEnd end = port_.pause(kBreakMs);
    return ClearCommBreak(port_.handle()) != 0 ? statusOf(end) : VI_ERROR_IO;
}

/// The device of "ASRL<board>": the environment variable VISA_ASRL<board> when it is set, otherwise COM<board>; empty
/// when there is none.
std::wstring deviceOf(ViUInt16 board)
{
    const std::wstring number = std::to_wstring(board);
    std::wstring device = platform::environmentVariable(L"VISA_ASRL" + number).value_or(L"");
    return device.empty() && board != 0 ? L"COM" + number : device;
}

/// The name that opens a device: without its prefix only the first nine ports have one.
std::wstring pathOf(const std::wstring& device)
{
    return device.starts_with(L"\\\\") ? device : L"\\\\.\\" + device;
}

ViStatus openStatus(DWORD number)
{
    const std::error_code error(static_cast<int>(number), std::system_category());
    if (isExhaustion(error))
        return VI_ERROR_ALLOC;
    return isOccupied(error) ? VI_ERROR_RSRC_BUSY : VI_ERROR_RSRC_NFOUND;
}

} // namespace

ViStatus openSerialStream(const ResourceName& name, const Deadline&, std::unique_ptr<Stream>& stream)
{
    // A device that the resource names itself is one of a POSIX host.
    const std::wstring device = name.address.empty() ? deviceOf(name.board) : std::wstring();
    if (device.empty())
        return VI_ERROR_RSRC_NFOUND;
    Handle port = platform::owned(CreateFileW(pathOf(device).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                              OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
    if (port == nullptr)
        return openStatus(GetLastError());
    if (!makeRaw(port.get()))
        return VI_ERROR_RSRC_NFOUND;
    stream = std::make_unique<SerialStream>(std::move(port));
    return VI_SUCCESS;
}

} // namespace visa
