#include "visa/transport/serial/com_port_windows.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace visa
{
namespace
{

/// A write is handed over in pieces, so that one that times out can tell what went out however its driver counts.
constexpr std::size_t kLargestWrite = 4096;

constexpr int kMomentMs = 50;

} // namespace

TransferEnd endOf(DWORD error) noexcept
{
    switch (error) {
    // What drivers of adapters say when theirs is gone. Nothing here aborts transfers except the wait for them.
    case ERROR_ACCESS_DENIED:
    case ERROR_BAD_COMMAND:
    case ERROR_BROKEN_PIPE:
    case ERROR_DEVICE_NOT_CONNECTED:
    case ERROR_DEVICE_REMOVED:
    case ERROR_GEN_FAILURE:
    case ERROR_HANDLE_EOF:
    case ERROR_NOT_READY:
    case ERROR_OPERATION_ABORTED:
        return TransferEnd::ConnectionLost;
    default:
        return TransferEnd::Failed;
    }
}

Handle makeEvent()
{
    Handle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (event == nullptr)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    return event;
}

ComPort::ComPort(Handle port) : port_(std::move(port)) {}

/// Waits until a transfer has ended.
/// @return Done when it has, with whatever success
TransferEnd ComPort::await(HANDLE ended, const Deadline& deadline) const noexcept
{
    const std::array<HANDLE, 2> events{interrupted_.get(), ended};
    for (;;) {
        const auto waitMs = static_cast<DWORD>(deadline.remainingMs(Deadline::kLookMs));
        switch (WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(), FALSE, waitMs)) {
        case WAIT_OBJECT_0:
            return TransferEnd::Interrupted;
        case WAIT_OBJECT_0 + 1:
            return TransferEnd::Done;
        case WAIT_TIMEOUT:
            if (deadline.isAborted())
                return TransferEnd::Aborted;
            // The host's clock, or the next look, may have ended this one early.
            if (deadline.remainingMs(1) == 0)
                return TransferEnd::TimedOut;
            break;
        default:
            return TransferEnd::Failed;
        }
    }
}

/// Runs one overlapped transfer to its end; start(OVERLAPPED*) hands it over. Nothing of it is under way afterwards.
template <class Start>
ComTransfer ComPort::run(HANDLE ended, const Deadline& deadline, Start start) const noexcept
{
    OVERLAPPED transfer{};
    transfer.hEvent = ended;
    if (!start(&transfer) && GetLastError() != ERROR_IO_PENDING)
        return {endOf(GetLastError()), 0};
    const TransferEnd end = await(ended, deadline);
    if (end != TransferEnd::Done)
        CancelIoEx(port_.get(), &transfer);
    DWORD count = 0;
    const bool succeeded = GetOverlappedResult(port_.get(), &transfer, &count, TRUE) != 0;
    if (end != TransferEnd::Done || succeeded)
        return {end, count};
    return {endOf(GetLastError()), count};
}

ComTransfer ComPort::read(std::span<ViByte> buffer, const Deadline& deadline) noexcept
{
    // A read ends when it is full: it asks for what is there, or for the one byte to wait for.
    const DWORD there = received();
    const auto wanted = static_cast<DWORD>(std::clamp<std::size_t>(there, 1, buffer.size()));
    // What is there comes with no time left as well, but a driver may take a moment to hand it over.
    const Deadline moment(kMomentMs);
    const bool needsMoment = there > 0 && deadline.remainingMs(kMomentMs) < kMomentMs;
    const ComTransfer transfer = run(readEnded_.get(), needsMoment ? moment : deadline, [&](OVERLAPPED* overlapped) {
        return ReadFile(port_.get(), buffer.data(), wanted, nullptr, overlapped) != 0;
    });
    if (transfer.end == TransferEnd::Done && transfer.count == 0)
        return {TransferEnd::ConnectionLost, 0};
    // The byte may have come while the wait for it was given up.
    return {transfer.end == TransferEnd::TimedOut && transfer.count > 0 ? TransferEnd::Done : transfer.end,
            transfer.count};
}

ComTransfer ComPort::write(std::span<const ViByte> bytes, const Deadline& deadline) noexcept
{
    ComTransfer whole{TransferEnd::Done, 0};
    while (whole.end == TransferEnd::Done && whole.count < bytes.size()) {
        const auto piece = bytes.subspan(whole.count, std::min(kLargestWrite, bytes.size() - whole.count));
        const ComTransfer transfer = run(writeEnded_.get(), deadline, [&](OVERLAPPED* overlapped) {
            return WriteFile(port_.get(), piece.data(), static_cast<DWORD>(piece.size()), nullptr, overlapped) != 0;
        });
        // The last bytes may have gone while the wait for them was given up.
        const bool isLate = transfer.end == TransferEnd::TimedOut && transfer.count == piece.size();
        whole = {isLate ? TransferEnd::Done : transfer.end, whole.count + std::min(transfer.count, piece.size())};
    }
    return whole;
}

TransferEnd ComPort::pause(int pauseMs) const noexcept
{
    const bool interrupted = WaitForSingleObject(interrupted_.get(), static_cast<DWORD>(pauseMs)) == WAIT_OBJECT_0;
    return interrupted ? TransferEnd::Interrupted : TransferEnd::Done;
}

DWORD ComPort::received() const noexcept
{
    COMSTAT state{};
    return ClearCommError(port_.get(), nullptr, &state) != 0 ? state.cbInQue : 0;
}

void ComPort::interrupt() noexcept
{
    SetEvent(interrupted_.get());
}

} // namespace visa
