#pragma once

#include "plugin/forms/base/ufrm_Basic.h"

namespace plugin {

/// Where a screen's rights come from.
enum class Rights { FromName, None };

/// One screen of the library.
struct ScreenEntry {
    QStringView name; ///< as the host passes it, without the rights
    Rights rights;
    Tfrm_Basic **variable; ///< the single instance, null until it is created
    Tfrm_Basic *(*create)(TComponentOwner *owner);
};

/// The entry of that name (case counts), or null when the library has no such screen.
const ScreenEntry *findScreen(QStringView name);

} // namespace plugin
