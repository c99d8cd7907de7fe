#pragma once

#include "visa/resource/name_text.h"
#include "visa/resource/resource_name.h"

namespace visa
{

/// Reads what stands behind the interface in a name of a bus: GPIB, VXI, GPIB-VXI or PXI (VPP-4.3 Table 4.3.1).
/// @param name has its kind and board, and receives its class; its canonical name so far is completed
/// @return false for what does not fit the grammar
bool parseBusName(const NameParts& parts, ResourceName& name);

} // namespace visa
