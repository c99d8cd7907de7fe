#pragma once

#include <visa.h>

#include <optional>
#include <span>
#include <string>

namespace visa
{

/// What a VISA handle stands for. Calls may come from any thread; the session lives as long as one of them is inside.
class Session
{
public:
    Session() = default;
    virtual ~Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The resource manager session it was opened through; VI_NULL for a resource manager.
    virtual ViSession manager() const = 0;

    virtual ViStatus getAttribute(ViAttr attribute, void* value) = 0;
    virtual ViStatus setAttribute(ViAttr attribute, ViAttrState value) = 0;
    virtual ViStatus read(std::span<ViByte> buffer, std::size_t& count) = 0;
    virtual ViStatus write(std::span<const ViByte> bytes, std::size_t& count) = 0;
    virtual ViStatus lockExclusively(ViUInt32 timeoutMs) = 0;
    /// @param key see ResourceLock::acquireShared
    virtual ViStatus lockShared(ViUInt32 timeoutMs, std::optional<std::string>& key) = 0;
    virtual ViStatus unlock() = 0;
    virtual ViStatus setBuffer(ViUInt16 mask, ViUInt32 size) = 0;
    virtual ViStatus flush(ViUInt16 mask) = 0;
    virtual ViStatus clear() = 0;
    virtual ViStatus trigger() = 0;
    virtual ViStatus readStatusByte(ViUInt16& status) = 0;
    virtual ViStatus controlRemote(ViUInt16 mode) = 0;
    /// Ends a read and a write that wait at this moment.
    virtual ViStatus abort() = 0;

    /// Tells the next name of a find list.
    virtual ViStatus findNext(std::string& /*name*/) { return VI_ERROR_NSUP_OPER; }

    /// Ends the calls that wait inside; the handle has already been taken back.
    virtual void interrupt() noexcept = 0;
};

} // namespace visa
