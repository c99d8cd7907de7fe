/**
 * @file IviVisaType.h
 * The scalar types under the name that the IVI components use (IVI-3.1 Appendix C). May be included together with
 * visatype.h, in either order.
 */
#ifndef KVX_IVI_VISA_TYPE_H
#define KVX_IVI_VISA_TYPE_H

#include "visatype.h"

#endif
