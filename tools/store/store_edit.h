#pragma once

#include "tools/store/deeds.h"
#include "tools/store/session_entry.h"
#include "tools/store/store_text.h"

#include <string>

namespace store_tool
{

/// Adds a driver session with its logical names and, when the store lacks them, its hardware asset and the software
/// module KVX2800T. With `replaces`, what has the names of the session and its logical names is removed before.
Deeds addSession(StoreText& store, const SessionEntry& entry, bool replaces);

/// Removes the driver session of this name with its logical names and, when nothing else refers to it, its hardware
/// asset; otherwise the logical name.
Deeds removeNamed(StoreText& store, const std::string& name);

/// Removes the logical name only.
Deeds removeLogicalName(StoreText& store, const std::string& name);

} // namespace store_tool
