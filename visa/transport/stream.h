#pragma once

#include "visa/host/deadline.h"

#include <visa.h>

#include <cstddef>
#include <span>
#include <string>

namespace visa
{

/// A connection that moves bytes and knows no messages, of which StreamTransport makes a transport.
///
/// One read and one write
/// may run at the same time, and interrupt() at any time; the destructor runs when no call is under way. Nothing
/// throws.
class Stream
{
public:
    Stream() = default;
    virtual ~Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// Waits for input and takes what is there, at least one byte on success.
    /// @param count bytes stored in buffer, on an error as well
    /// @return VI_ERROR_TMO, VI_ERROR_ABORT, VI_ERROR_CONN_LOST, VI_ERROR_IO, or VI_ERROR_INV_OBJECT after interrupt()
    virtual ViStatus readSome(std::span<ViByte> buffer, const Deadline& deadline, std::size_t& count) noexcept = 0;

    /// Hands all bytes over.
    /// @param count bytes handed over, on an error as well
    virtual ViStatus writeAll(std::span<const ViByte> bytes, const Deadline& deadline, std::size_t& count) noexcept = 0;

    /// Drops the input that has arrived so far. From an instrument that never stops sending it drops as much as can
    /// have arrived, and takes no longer than the deadline.
    /// @return VI_SUCCESS at the end of the stream as well; an error when input may be left
    virtual ViStatus discardInput(const Deadline& deadline) noexcept = 0;

    /// Drops the output that has not left yet and tells the device to forget what it has been sent, where the
    /// connection can do either. No write is under way.
    virtual ViStatus clearDevice(const Deadline&) noexcept { return VI_SUCCESS; }

    /// Bytes that a read could take without waiting, where the connection can tell.
    virtual ViUInt32 available() noexcept { return 0; }

    /// Ends the line's message with a break, where the connection knows one.
    virtual ViStatus sendBreak(const Deadline&) noexcept { return VI_ERROR_NSUP_OPER; }

    /// Brings one of the connection's own settings into force.
    /// @return VI_ERROR_NSUP_ATTR_STATE when the connection cannot have this value, which leaves the old one in force
    virtual ViStatus setAttribute(ViAttr attribute, ViUInt32 value) noexcept = 0;

    /// The attributes that only this connection can tell, where it is not told otherwise.
    virtual ViUInt32 numberFact(ViAttr) noexcept { return static_cast<ViUInt32>(VI_STATE_UNKNOWN); }

    /// The address at the other end as text; empty where there is none.
    virtual std::string address() const { return {}; }

    /// Ends waiting reads and writes for good. May be called from any thread.
    virtual void interrupt() noexcept = 0;
};

} // namespace visa
