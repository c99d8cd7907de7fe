#pragma once

#include "visa/session/manager_session.h"

#include <mutex>
#include <string>
#include <vector>

namespace visa
{

/// The names that a search has found: as passive as a resource manager's session, which opened it and closes it.
class FindListSession : public ManagerSession
{
public:
    /// @param names the first is the one that the search itself has told
    FindListSession(ViSession manager, std::vector<std::string> names) : manager_(manager), names_(std::move(names)) {}

    ViSession manager() const override { return manager_; }
    ViStatus getAttribute(ViAttr, void*) override { return VI_ERROR_NSUP_ATTR; }
    ViStatus setAttribute(ViAttr, ViAttrState) override { return VI_ERROR_NSUP_ATTR; }
    ViStatus findNext(std::string& name) override;

private:
    const ViSession manager_;
    const std::vector<std::string> names_;
    std::mutex mutex_;
    std::size_t next_ = 1;
};

} // namespace visa
