#pragma once

#include "client/unattended/report_day.h"

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QWidget>

class TForm;

namespace client {

/// A condition of a screen as people call it.
struct CaptionedCondition {
    QString box; ///< the caption of the box around it; "" for none
    QString label; ///< its own; "" where the box has the only one
    QPointer<QWidget> widget;

    QString name() const; ///< "扫描时间范围.开始", "扫描网点"
};

/// What a condition has become by being set.
struct SetCondition {
    CaptionedCondition condition;
    QString text;
};

/// The visible conditions of a screen, in the order in which they stand.
class ConditionsByCaption {
public:
    explicit ConditionsByCaption(const TForm &screen);
    const QList<CaptionedCondition> &all() const { return m_conditions; }

    /// Gives a condition its value as a person would. `caption` is its label, with its box ("扫描时间范围.开始") where several have the
    /// same; that of a box with a range alone sets both ends. Throws WrongRequest that says which captions or values there are, and
    /// Exception when the screen does not take it.
    QList<SetCondition> set(const QString &caption, const QString &value, const ReportDay &day);

private:
    const CaptionedCondition &find(const QString &caption) const;
    const CaptionedCondition *rangeStart(const QString &box) const;

    QList<CaptionedCondition> m_conditions;
};

/// Throws Exception when a condition no longer has the value that it was set to last: another one has changed it.
void requireStill(const QList<SetCondition> &conditions);

/// The values that a condition can take, where it has a list of them; without the codes of a lookup.
QStringList valuesOf(const QWidget &condition);
/// What stands in it now, as people write it.
QString shownValue(const QWidget &condition);

} // namespace client
