#pragma once

#include "platform/toolkit/prop_storage.h"

/// The library's storage manager, which every screen's Prop uses and whose INI file keeps the grids' layouts.
extern TIniPropStorageManEh *IniStorageManager;

namespace plugin {

/// The INI file of the grids' layouts.
inline QString layoutFileName() { return IniStorageManager->iniFileName(); }

} // namespace plugin
