#pragma once

#include <QString>
#include <QVariant>

namespace platform {

/// A choice of the person's, kept in kelvara-client.ini of the settings directory; while nothing was chosen what was offered, or
/// `otherwise`.
QVariant userSetting(const QString &key, const QVariant &otherwise = {});
/// Keeps a choice at once; an invalid one is forgotten. When the file cannot be written the person is told, once.
void keepUserSetting(const QString &key, const QVariant &value);

enum class Offer {
    WhileNothingIsChosen,
    WhateverWasChosen, ///< until something else is chosen
};
/// What userSetting() tells from now on. Nothing is written; an invalid value takes the offer back.
void offerUserSetting(const QString &key, const QVariant &value, Offer offer = Offer::WhileNothingIsChosen);

} // namespace platform
