#include "client/unattended/conditions_by_caption.h"

#include "client/conditions/screen_state.h"
#include "client/export/screen_conditions.h"
#include "client/unattended/caption.h"
#include "platform/editors/editors.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/radio_group.h"

#include <QAbstractButton>
#include <QFile>
#include <QPlainTextEdit>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

const QString yes = QStringLiteral("是");
const QString no = QStringLiteral("否");

QString boxAround(const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        if (const auto *box = qobject_cast<const QGroupBox *>(parent))
            return box->title();
    }
    return {};
}

bool isTicked(const QWidget &widget) { return qobject_cast<const QAbstractButton *>(&widget); }

/// Whether it is a part of another condition: the line of a list, a button of a group.
bool isPart(const QWidget &widget)
{
    return qobject_cast<const QComboBox *>(widget.parentWidget()) || qobject_cast<const TRadioGroup *>(widget.parentWidget());
}

/// The texts of a field in the list of a lookup.
QStringList listed(const TDBLookupComboboxEh &lookup, const QString &fieldName)
{
    const TDataSet *list = lookup.listSource() ? lookup.listSource()->dataSet() : nullptr;
    const TField *field = list && list->active() ? list->findField(fieldName) : nullptr;
    QStringList texts;
    for (int row = 0; field && row < list->recordCount(); ++row)
        texts.append(list->text(field->index(), row));
    return texts;
}

bool endsRange(const TDBDateTimeEditEh &time, const QList<CaptionedCondition> &conditions)
{
    return std::ranges::any_of(conditions, [&time](const CaptionedCondition &condition) {
        const auto *start = qobject_cast<const TDBDateTimeEditEh *>(condition.widget.data());
        return start && start->rangeEnd() == &time;
    });
}

/// "@file": the lines of a file.
QString linesOf(const QString &value)
{
    if (!value.startsWith(u'@'))
        return value;
    QFile file(value.mid(1));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw WrongRequest(QStringLiteral("文件“%1”打不开：%2。").arg(file.fileName(), file.errorString()));
    return QString::fromUtf8(file.readAll());
}

/// What is typed or chosen for a value that a person has written.
QString textFor(const CaptionedCondition &condition, const QString &value)
{
    const QWidget &widget = *condition.widget;
    if (isTicked(widget)) {
        if (value != yes && value != no)
            throw WrongRequest(QStringLiteral("条件“%1”只能写 是 或 否，不能写“%2”。").arg(condition.name(), value));
        return value == yes ? QStringLiteral("1") : QStringLiteral("0");
    }
    if (qobject_cast<const QPlainTextEdit *>(&widget))
        return linesOf(value);
    const QStringList known = valuesOf(widget);
    if (value.isEmpty() || known.isEmpty() || known.contains(value))
        return value;
    if (const auto *lookup = qobject_cast<const TDBLookupComboboxEh *>(&widget)) {
        if (const qsizetype row = listed(*lookup, lookup->indexField()).indexOf(value); row >= 0)
            return known[row];
    }
    throw notAmong(condition.name() + u" 的值", value, known);
}

SetCondition put(const CaptionedCondition &condition, const QString &text)
{
    QWidget *widget = condition.widget;
    if (!widget || !widget->isVisible() || !widget->isEnabled())
        throw Exception(QStringLiteral("条件“%1”现在不能更改：要先设置使它可用的条件，或者登录的网点不能改它。").arg(condition.name()));
    if (conditionText(*widget) != text)
        putCondition(widget, text);
    const QString taken = conditionText(*widget).value_or(QString());
    if (!text.isEmpty() && taken.isEmpty())
        throw Exception(QStringLiteral("条件“%1”不接受“%2”。").arg(condition.name(), text.left(40)));
    return { condition, taken };
}

} // namespace

QString CaptionedCondition::name() const
{
    const QString plainBox = plainCaption(box);
    const QString plainLabel = plainCaption(label);
    return plainBox.isEmpty() ? plainLabel : plainLabel.isEmpty() ? plainBox : QString(plainBox + u'.' + plainLabel);
}

QStringList valuesOf(const QWidget &condition)
{
    if (const auto *lookup = qobject_cast<const TDBLookupComboboxEh *>(&condition))
        return listed(*lookup, lookup->keyField());
    if (const auto *combo = qobject_cast<const TDBComboBoxEh *>(&condition))
        return combo->items();
    if (const auto *group = qobject_cast<const TRadioGroup *>(&condition))
        return group->items();
    return isTicked(condition) ? QStringList { yes, no } : QStringList();
}

QString shownValue(const QWidget &condition)
{
    const QString text = conditionText(condition).value_or(QString());
    return isTicked(condition) ? (text == u"1" ? yes : no) : text;
}

ConditionsByCaption::ConditionsByCaption(const TForm &screen)
{
    const ConditionCaptions captions(screen);
    for (const QWidget *widget = screen.nextInFocusChain(); widget != &screen; widget = widget->nextInFocusChain()) {
        if (!screen.isAncestorOf(widget) || !widget->isVisibleTo(&screen) || liesInGrid(*widget) || !conditionText(*widget)
            || isPart(*widget))
            continue;
        const QString caption = captions.of(*widget);
        const QString box = boxAround(*widget);
        // Here a caption begins with that of its box.
        if (!plainCaption(caption).isEmpty())
            m_conditions.append({ box, plainCaption(caption).mid(plainCaption(box).size()), const_cast<QWidget *>(widget) });
    }
}

const CaptionedCondition &ConditionsByCaption::find(const QString &caption) const
{
    const QString wanted = plainCaption(caption);
    QList<const CaptionedCondition *> found;
    QStringList names;
    for (const CaptionedCondition &condition : m_conditions) {
        names.append(condition.name());
        const QString joined = plainCaption(condition.box) + plainCaption(condition.label);
        if (wanted == plainCaption(condition.label) || wanted == condition.name() || wanted == joined)
            found.append(&condition);
    }
    if (found.isEmpty())
        throw notAmong(QStringLiteral("条件"), caption, names);
    if (found.size() == 1)
        return *found.first();
    QStringList candidates;
    for (const CaptionedCondition *condition : found)
        candidates.append(condition->name());
    throw WrongRequest(QStringLiteral("条件“%1”有 %2 个，请写明是哪一个：%3。").arg(caption).arg(found.size()).arg(candidates.join(u'、')));
}

/// Null when that is no box with a range.
const CaptionedCondition *ConditionsByCaption::rangeStart(const QString &box) const
{
    const auto found = std::ranges::find_if(m_conditions, [&box](const CaptionedCondition &condition) {
        const auto *time = qobject_cast<const TDBDateTimeEditEh *>(condition.widget.data());
        return time && time->rangeEnd() && plainCaption(condition.box) == plainCaption(box);
    });
    return found == m_conditions.end() ? nullptr : &*found;
}

QList<SetCondition> ConditionsByCaption::set(const QString &caption, const QString &value, const ReportDay &day)
{
    if (const CaptionedCondition *start = rangeStart(caption)) {
        // A word, a day, or two times with "至" between.
        const QStringList ends = value.split(QStringLiteral("至"));
        const CaptionedCondition end { start->box, QStringLiteral("结束"), qobject_cast<TDBDateTimeEditEh *>(start->widget)->rangeEnd() };
        return { put(*start, day.timeText(ends.first(), RangeEdge::Start)), put(end, day.timeText(ends.last(), RangeEdge::End)) };
    }
    const CaptionedCondition &condition = find(caption);
    if (const auto *time = qobject_cast<const TDBDateTimeEditEh *>(condition.widget.data()))
        return { put(condition, day.timeText(value, endsRange(*time, m_conditions) ? RangeEdge::End : RangeEdge::Start)) };
    return { put(condition, textFor(condition, value)) };
}

void requireStill(const QList<SetCondition> &conditions)
{
    for (const SetCondition &set : conditions) {
        const QWidget *const widget = set.condition.widget;
        const QString now = widget ? conditionText(*widget).value_or(QString()) : QString();
        const bool isSetAgain = std::ranges::any_of(
            conditions, [&](const SetCondition &other) { return other.condition.widget == widget && other.text == now; });
        if (!isSetAgain)
            throw Exception(QStringLiteral("条件“%1”设为“%2”之后又变成了“%3”，请调整各条件的先后次序。")
                                .arg(set.condition.name(), set.text.left(40), now.left(40)));
    }
}

} // namespace client
