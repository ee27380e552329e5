#include "platform/toolkit/user_settings.h"

#include "platform/toolkit/application.h"

#include <QDir>
#include <QMap>
#include <QSettings>

namespace platform {
namespace {

/// By what they are good for.
QMap<Offer, QVariantMap> offers;

QString fileName() { return Application->settingsDirectory() + QStringLiteral("/kelvara-client.ini"); }

} // namespace

QVariant userSetting(const QString &key, const QVariant &otherwise)
{
    const QVariant wanted = offers[Offer::WhateverWasChosen].value(key);
    if (wanted.isValid())
        return wanted;
    return QSettings(fileName(), QSettings::IniFormat).value(key, offers[Offer::WhileNothingIsChosen].value(key, otherwise));
}

void offerUserSetting(const QString &key, const QVariant &value, Offer offer)
{
    if (value.isValid())
        offers[offer].insert(key, value);
    else
        offers[offer].remove(key);
}

void keepUserSetting(const QString &key, const QVariant &value)
{
    offers[Offer::WhateverWasChosen].remove(key);
    QSettings settings(fileName(), QSettings::IniFormat);
    if (settings.value(key) == value)
        return;
    if (value.isValid())
        settings.setValue(key, value);
    else
        settings.remove(key);
    settings.sync();
    if (settings.status() != QSettings::NoError)
        Application->messageLater(QStringLiteral("设置没有保存，下次启动时仍是原来的。请检查文件“%1”的权限和磁盘空间。")
                                      .arg(QDir::toNativeSeparators(fileName())),
            QStringLiteral("设置"), mbOk | mbIconWarning);
}

} // namespace platform
