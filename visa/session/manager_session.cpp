#include "visa/session/manager_session.h"

#include "visa/attribute/attributes.h"

namespace visa
{

ViStatus ManagerSession::getAttribute(ViAttr attribute, void* value)
{
    const AttributeRow* const row = findAttribute(attribute, kManager);
    if (row == nullptr)
        return VI_ERROR_NSUP_ATTR;
    if (row->type == ValueType::Text)
        storeText({}, value);
    else
        storeNumber(row->initial, row->type, value);
    return VI_SUCCESS;
}

ViStatus ManagerSession::setAttribute(ViAttr attribute, ViAttrState)
{
    return findAttribute(attribute, kManager) == nullptr ? VI_ERROR_NSUP_ATTR : VI_ERROR_ATTR_READONLY;
}

} // namespace visa
