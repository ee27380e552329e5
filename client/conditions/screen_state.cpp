#include "client/conditions/screen_state.h"

#include "client/conditions/person.h"
#include "client/export/screen_conditions.h"
#include "platform/editors/editors.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/radio_group.h"

#include <QAbstractButton>
#include <QPlainTextEdit>

#include <functional>

using namespace platform;

namespace client {
namespace {

/// More than any list that a screen takes; what is longer is not kept.
constexpr qsizetype longestText = 64 * 1024;

void forEachComponent(
    const TComponentOwner &owner, const QString &prefix, const std::function<void(const QString &path, QWidget *widget)> &visit)
{
    for (QObject *component : owner.components()) {
        const QString path = prefix + component->objectName();
        if (auto *widget = qobject_cast<QWidget *>(component))
            visit(path, widget);
        if (const auto *frame = dynamic_cast<const TComponentOwner *>(component))
            forEachComponent(*frame, path + u'.', visit);
    }
}

QWidget *componentAt(const TForm &screen, const QString &path)
{
    const TComponentOwner *owner = &screen;
    QObject *component = nullptr;
    for (const QString &name : path.split(u'.')) {
        component = owner ? owner->findComponent(name) : nullptr;
        owner = dynamic_cast<TComponentOwner *>(component);
    }
    return qobject_cast<QWidget *>(component);
}

/// The name of the range that two times stand for.
std::optional<NamedRange> namedRange(const TDBDateTimeEditEh &start, const TDBDateTimeEditEh &end)
{
    try {
        return nameOfRange({ textToDateTime(start.dateTimeText()), textToDateTime(end.dateTimeText()) }, Clock::today());
    } catch (const Exception &) {
        return std::nullopt; // one of them is no time
    }
}

/// Whether the list of a lookup still has the text. It never moves the list's current row.
bool isListed(const TDBLookupComboboxEh &lookup, const QString &text)
{
    const TDataSet *list = lookup.listSource() ? lookup.listSource()->dataSet() : nullptr;
    const TField *key = list && list->active() ? list->findField(lookup.keyField()) : nullptr;
    if (!key)
        return true; // nothing to compare with
    for (int row = 0; row < list->recordCount(); ++row) {
        if (list->text(key->index(), row) == text)
            return true;
    }
    return false;
}

bool canBeUsed(const QWidget *widget) { return widget->isVisible() && widget->isEnabled(); }

/// What a person has to know of a condition that was put back; "" when all is well.
QString problemOf(const TForm &screen, const ConditionValue &value)
{
    const QWidget *widget = componentAt(screen, value.control);
    if (!widget)
        return QStringLiteral("%1：这个窗口已没有这个条件").arg(value.caption);
    if (!canBeUsed(widget))
        return {};
    const auto *lookup = qobject_cast<const TDBLookupComboboxEh *>(widget);
    const bool isUnknown = lookup && !value.text.isEmpty() && !isListed(*lookup, value.text);
    if (!isUnknown && conditionText(*widget) == value.text)
        return {};
    return QStringLiteral("%1：“%2”已不在可选的值里").arg(value.caption, value.text.left(40));
}

} // namespace

std::optional<QString> conditionText(const QObject &component)
{
    if (const auto *time = qobject_cast<const TDBDateTimeEditEh *>(&component))
        return time->dateTimeText();
    if (const auto *line = qobject_cast<const QLineEdit *>(&component))
        return line->text();
    if (const auto *combo = qobject_cast<const QComboBox *>(&component))
        return combo->currentText();
    if (const auto *memo = qobject_cast<const QPlainTextEdit *>(&component))
        return memo->toPlainText();
    if (const auto *group = qobject_cast<const TRadioGroup *>(&component))
        return group->items().value(group->itemIndex());
    if (const auto *button = qobject_cast<const QAbstractButton *>(&component); button && button->isCheckable())
        return button->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
    return std::nullopt;
}

void putCondition(QWidget *widget, const QString &text)
{
    person::enter(widget);
    if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
        button->click();
        return;
    }
    if (const auto *combo = qobject_cast<const TDBComboBoxEh *>(widget)) {
        if (const int index = combo->findText(text); index >= 0)
            person::choose(widget, index);
    } else if (const auto *group = qobject_cast<const TRadioGroup *>(widget)) {
        if (const int index = int(group->items().indexOf(text)); index >= 0)
            person::choose(widget, index);
    } else {
        person::type(widget, text);
    }
    person::leave(widget);
}

QList<ConditionValue> conditionsOf(const TForm &screen)
{
    const ConditionCaptions captions(screen);
    QList<ConditionValue> values;
    forEachComponent(screen, {}, [&](const QString &path, QWidget *widget) {
        const std::optional<QString> text = conditionText(*widget);
        if (!text || text->size() > longestText || !widget->isVisibleTo(&screen) || liesInGrid(*widget))
            return;
        ConditionValue value { path, captions.of(*widget), *text };
        const auto *start = qobject_cast<const TDBDateTimeEditEh *>(widget);
        if (start && start->rangeEnd()) {
            value.rangeEnd = path.chopped(widget->objectName().size()) + start->rangeEnd()->objectName();
            value.range = namedRange(*start, *start->rangeEnd());
        }
        values.append(value);
    });
    return values;
}

QStringList putBack(TForm &screen, const QList<ConditionValue> &values)
{
    // A condition can show, enable or change another one: what a first round could not do, or has undone, a second one does.
    for (int round = 0; round < 2; ++round) {
        for (const ConditionValue &value : values) {
            QWidget *widget = componentAt(screen, value.control);
            if (widget && canBeUsed(widget) && conditionText(*widget) && conditionText(*widget) != value.text)
                putCondition(widget, value.text);
        }
    }
    QStringList problems;
    for (const ConditionValue &value : values) {
        if (const QString problem = problemOf(screen, value); !problem.isEmpty())
            problems.append(problem);
    }
    return problems;
}

} // namespace client
