#pragma once

#include <QString>

namespace platform {

/// Tells the user, under this title, why something is refused; `reason` says what to do. Always true.
bool refuse(QStringView reason, const QString &title);

} // namespace platform
