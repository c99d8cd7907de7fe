#pragma once

#include "visa/find/find_expression.h"

#include <string>
#include <vector>

namespace visa
{

/// What can be told of this host's ports and the instruments on its networks, as it is now, in the order found and
/// without duplicates.
///
/// Only those interfaces are asked whose names the expression can fit: "ASRL?*" sends nothing. Asking the network takes
/// half a second. May throw std::bad_alloc and std::system_error; where there is no network nothing is found there.
std::vector<std::string> findResources(const FindExpression& expression);

} // namespace visa
