#pragma once

#include <string>
#include <vector>

namespace store_tool
{

/// Each change tells what it did, one sentence an entry. It throws StoreError when it cannot be made as a whole; the
/// store is then to be thrown away.
using Deeds = std::vector<std::string>;

} // namespace store_tool
