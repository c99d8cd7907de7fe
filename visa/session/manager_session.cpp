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
        storeText(attribute == VI_ATTR_RSRC_MANF_NAME ? kManufacturerName : "", value);
    else
        storeNumber(values_.get(attribute), row->type, value);
    return VI_SUCCESS;
}

ViStatus ManagerSession::setAttribute(ViAttr attribute, ViAttrState value)
{
    const AttributeRow* const row = findAttribute(attribute, kManager);
    if (row == nullptr)
        return VI_ERROR_NSUP_ATTR;
    if (row->holder != Holder::Session)
        return VI_ERROR_ATTR_READONLY;
    const ViAttrState wanted = reduced(value, row->type);
    if (!row->allowed.contains(wanted))
        return VI_ERROR_NSUP_ATTR_STATE;
    values_.set(attribute, wanted);
    return VI_SUCCESS;
}

} // namespace visa
