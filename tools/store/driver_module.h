#pragma once

#include "tools/store/deeds.h"
#include "tools/store/id_source.h"
#include "tools/store/store_text.h"

namespace store_tool
{

/// Adds the driver's software module, which the store must lack, and those published APIs that the store lacks.
/// Sessions that remember a module of this name refer to it again (IVI-3.5: a session outlives its software module).
void addDriverModule(StoreText& store, IdSource& ids, Deeds& deeds);

/// Does what installing the driver does: its software module is made afresh (IVI-3.17), under the id that it had.
Deeds registerDriver(StoreText& store);

/// Does what removing the driver does. Published APIs stay, since other drivers may offer them; sessions stay, without
/// their reference but with the module's name (IVI-3.5).
Deeds unregisterDriver(StoreText& store);

} // namespace store_tool
