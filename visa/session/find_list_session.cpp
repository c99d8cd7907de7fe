#include "visa/session/find_list_session.h"

namespace visa
{

ViStatus FindListSession::findNext(std::string& name)
{
    const std::lock_guard guard(mutex_);
    if (next_ >= names_.size())
        return VI_ERROR_RSRC_NFOUND;
    name = names_[next_];
    ++next_;
    return VI_SUCCESS;
}

} // namespace visa
