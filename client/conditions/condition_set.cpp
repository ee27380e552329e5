#include "client/conditions/condition_set.h"

#include "platform/toolkit/clock.h"

#include <QJsonArray>

#include <algorithm>

using namespace platform;

namespace client {

std::optional<NamedRange> rangeNamed(const QString &name)
{
    for (const NamedRange range : namedRanges()) {
        if (rangeName(range) == name)
            return range;
    }
    return std::nullopt;
}

namespace {

QJsonObject toJson(const ConditionValue &value)
{
    QJsonObject json { { QStringLiteral("control"), value.control }, { QStringLiteral("caption"), value.caption },
        { QStringLiteral("text"), value.text } };
    if (!value.rangeEnd.isEmpty())
        json[u"rangeEnd"] = value.rangeEnd;
    if (value.range)
        json[u"range"] = rangeName(*value.range);
    return json;
}

ConditionValue valueFrom(const QJsonObject &json)
{
    return { json[u"control"].toString(), json[u"caption"].toString(), json[u"text"].toString(), json[u"rangeEnd"].toString(),
        rangeNamed(json[u"range"].toString()) };
}

} // namespace

const ConditionValue *ConditionSet::find(QStringView control) const
{
    const auto found
        = std::find_if(values.begin(), values.end(), [control](const ConditionValue &value) { return value.control == control; });
    return found == values.end() ? nullptr : &*found;
}

QList<ConditionValue> ConditionSet::valuesOn(QDate today) const
{
    QList<ConditionValue> all = values;
    for (const ConditionValue &start : values) {
        if (!start.range)
            continue;
        const TimeRange times = rangeOn(*start.range, today);
        for (ConditionValue &value : all) {
            if (value.control == start.control)
                value.text = dateTimeToText(times.start);
            else if (value.control == start.rangeEnd)
                value.text = dateTimeToText(times.end);
        }
    }
    return all;
}

QJsonObject toJson(const ConditionSet &set)
{
    QJsonArray values;
    for (const ConditionValue &value : set.values)
        values.append(toJson(value));
    return { { QStringLiteral("name"), set.name }, { QStringLiteral("kept"), set.kept.toString(Qt::ISODate) },
        { QStringLiteral("values"), values } };
}

ConditionSet conditionSetFrom(const QJsonObject &json)
{
    ConditionSet set { json[u"name"].toString(), QDateTime::fromString(json[u"kept"].toString(), Qt::ISODate), {} };
    for (const QJsonValue &value : json[u"values"].toArray())
        set.values.append(valueFrom(value.toObject()));
    return set;
}

} // namespace client
