#pragma once

#include "visa/attribute/attributes.h"
#include "visa/session/session.h"

namespace visa
{

/// A session of the resource manager: it opens others and moves no data itself.
class ManagerSession : public Session
{
public:
    ViSession manager() const override { return VI_NULL; }
    ViStatus getAttribute(ViAttr attribute, void* value) override;
    ViStatus setAttribute(ViAttr attribute, ViAttrState value) override;
    ViStatus read(std::span<ViByte>, std::size_t&) override { return VI_ERROR_NSUP_OPER; }
    ViStatus write(std::span<const ViByte>, std::size_t&) override { return VI_ERROR_NSUP_OPER; }
    ViStatus lockExclusively(ViUInt32) override { return VI_ERROR_NSUP_OPER; }
    ViStatus lockShared(ViUInt32, std::optional<std::string>&) override { return VI_ERROR_NSUP_OPER; }
    ViStatus unlock() override { return VI_ERROR_NSUP_OPER; }
    ViStatus setBuffer(ViUInt16, ViUInt32) override { return VI_ERROR_NSUP_OPER; }
    ViStatus flush(ViUInt16) override { return VI_ERROR_NSUP_OPER; }
    ViStatus clear() override { return VI_ERROR_NSUP_OPER; }
    ViStatus trigger() override { return VI_ERROR_NSUP_OPER; }
    ViStatus readStatusByte(ViUInt16&) override { return VI_ERROR_NSUP_OPER; }
    ViStatus controlRemote(ViUInt16) override { return VI_ERROR_NSUP_OPER; }
    ViStatus abort() override { return VI_ERROR_NSUP_OPER; }
    void interrupt() noexcept override {}

private:
    AttributeValues values_;
};

} // namespace visa
