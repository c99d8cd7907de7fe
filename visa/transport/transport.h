#pragma once

#include "visa/attribute/attributes.h"
#include "visa/host/deadline.h"

#include <visa.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace visa
{

/// What an operation follows: the attributes of the session as they are now, and the time that it may take.
struct Terms
{
    const AttributeValues& attributes;
    const Deadline& deadline;
};

/// What a lock is asked for.
struct LockRequest
{
    bool isShared = false;
    std::string key{}; ///< of a shared lock
};

/// The seam between the session, which knows VISA's rules for handles, attributes and locks, and a kind of connection,
/// which moves messages. All of its functions but interrupt() may throw std::bad_alloc and std::system_error.
///
/// A transport is a folder beside this file, with a function that opens one, and a row in transports.cpp. Calls come
/// from any thread: of the reads and of the writes one at a time, while others wait; a read, a write and any other
/// function beside each other. A protocol that has only one of them under way lets the others wait, no longer than
/// their deadlines. The destructor runs when no call is under way.
///
/// The functions that most protocols lack answer VI_ERROR_NSUP_OPER here.
class Transport
{
public:
    Transport() = default;
    virtual ~Transport() = default;
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    /// Reads until the message ends, the termination character comes (where the attributes ask for it) or the buffer
    /// is full (VPP-4.3 section 6.1.1).
    /// @param count bytes stored, on an error as well
    /// @return VI_SUCCESS at the end of the message, VI_SUCCESS_TERM_CHAR, VI_SUCCESS_MAX_CNT; VI_ERROR_TMO,
    ///         VI_ERROR_CONN_LOST, VI_ERROR_IO, VI_ERROR_INP_PROT_VIOL; VI_ERROR_ABORT when the deadline
    ///         or abort() says so, VI_ERROR_INV_OBJECT after interrupt()
    virtual ViStatus read(std::span<ViByte> buffer, const Terms& terms, std::size_t& count) = 0;

    /// Hands all bytes over and, where VI_ATTR_SEND_END_EN says so and the protocol knows it, ends the message.
    /// @param count bytes handed over, on an error as well
    virtual ViStatus write(std::span<const ViByte> bytes, const Terms& terms, std::size_t& count) = 0;

    /// Clears the device by the protocol's own message, and drops what was under way to and from it.
    virtual ViStatus clear(const Terms& terms) = 0;

    /// Drops the input that has arrived and waits to be read.
    /// @return an error when input may be left
    virtual ViStatus discardInput(const Terms&) { return VI_SUCCESS; }

    /// Stores the status byte, in the low 8 bits.
    virtual ViStatus readStatusByte(const Terms&, ViUInt16&) { return VI_ERROR_NSUP_OPER; }
    virtual ViStatus trigger(const Terms&) { return VI_ERROR_NSUP_OPER; }
    /// @param mode one of VI_GPIB_REN_...
    virtual ViStatus controlRemote(const Terms&, ViUInt16 /*mode*/) { return VI_ERROR_NSUP_OPER; }

    /// Gets or gives back the device's own lock, which other hosts see too. The session asks for at most one exclusive
    /// and one shared lock at a time. Without locks of the protocol those among this process's sessions suffice.
    /// @return VI_ERROR_TMO while another holds it
    virtual ViStatus lock(const Terms&, const LockRequest&) { return VI_SUCCESS; }
    virtual ViStatus unlock(const Terms&, bool /*isShared*/) { return VI_SUCCESS; }
    /// VI_NO_LOCK, VI_EXCLUSIVE_LOCK or VI_SHARED_LOCK, where the device tells of the locks that others hold.
    virtual std::optional<ViAccessMode> lockState(const Terms&) { return std::nullopt; }

    /// Brings one of the connection's own settings into force.
    /// @return VI_ERROR_NSUP_ATTR_STATE when the connection cannot have this value, which leaves the old one in force
    virtual ViStatus setAttribute(ViAttr, ViAttrState) { return VI_ERROR_NSUP_ATTR_STATE; }

    /// The attributes that only the connection can tell (Holder::ConnectionFact), or suggests.
    virtual ViUInt32 numberFact(ViAttr) { return 0; }
    virtual std::string textFact(ViAttr) { return {}; }

    /// Ends what is under way at this moment with VI_ERROR_ABORT, where that does not look at its deadline by itself;
    /// the deadline says so already.
    virtual ViStatus abort() { return VI_SUCCESS; }

    /// Ends waiting calls for good. May be called from any thread.
    virtual void interrupt() noexcept = 0;
};

} // namespace visa
