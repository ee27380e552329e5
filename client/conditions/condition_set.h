#pragma once

#include "platform/editors/time_range.h"

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

namespace client {

/// What stands in one condition of a screen.
struct ConditionValue {
    QString control; ///< its component path on the screen
    QString caption; ///< as a person knows it
    QString text; ///< what is typed or chosen; "1" or "0" for what is ticked
    QString rangeEnd {}; ///< the path of the other time, for one that starts a range
    std::optional<platform::NamedRange> range {}; ///< which range that is, whatever day it is; `text` is its day when it was kept

    bool operator==(const ConditionValue &) const = default;
};

/// All conditions of a screen as they were at one moment.
struct ConditionSet {
    QString name; ///< "" for those of the last query
    QDateTime kept;
    QList<ConditionValue> values;

    const ConditionValue *find(QStringView control) const; ///< null when it is not among them
    /// The values with the days that the named ranges mean on `today`.
    QList<ConditionValue> valuesOn(QDate today) const;
};

QJsonObject toJson(const ConditionSet &set);
/// Unknown members and values of wrong types count as missing.
ConditionSet conditionSetFrom(const QJsonObject &json);

/// The range with a name that people read, "昨天" say; nothing when there is none.
std::optional<platform::NamedRange> rangeNamed(const QString &name);

} // namespace client
