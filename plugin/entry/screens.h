#pragma once

#include "plugin/forms/base/ufrm_Basic.h"

/// Where a screen's rights come from.
enum class Rights { FromName, None };

/// One screen of the library.
struct ScreenEntry {
    QStringView name; ///< as the host passes it, without the rights
    Rights rights;
    Tfrm_Basic **variable = nullptr; ///< the single instance; a row without one is a screen yet to be built, unknown to the host
    Tfrm_Basic *(*create)(TComponentOwner *owner) = nullptr;
};

/// The entry of that name (case counts), or null when the library has no such screen.
const ScreenEntry *findScreen(QStringView name);
