#pragma once

#include "tools/store/store_text.h"

#include <string>

namespace store_tool
{

/// The driver sessions, logical names and software modules for people, in the order of the file.
std::string listing(const StoreText& store);

} // namespace store_tool
