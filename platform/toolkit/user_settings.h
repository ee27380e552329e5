#pragma once

#include <QString>
#include <QVariant>

namespace platform {

/// A choice of the person's, kept in kelvara-client.ini of the settings directory; `otherwise` while nothing was chosen.
QVariant userSetting(const QString &key, const QVariant &otherwise = {});
/// Keeps a choice at once; an invalid one is forgotten. When the file cannot be written the person is told, once.
void keepUserSetting(const QString &key, const QVariant &value);

} // namespace platform
