#include "client/automation/automation.h"

#include "client/conditions/person.h"
#include "client/export/screen_conditions.h"
#include "platform/dataset/data_set.h"
#include "platform/editors/editors.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/page_control.h"
#include "platform/toolkit/radio_group.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>

namespace client {
namespace {

TPageControl *pagesOf(const QWidget *sheet)
{
    for (QWidget *parent = sheet ? sheet->parentWidget() : nullptr; parent; parent = parent->parentWidget()) {
        if (auto *pages = qobject_cast<TPageControl *>(parent))
            return pages;
    }
    return nullptr;
}

QString captionOf(const QWidget &widget)
{
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return button->text();
    if (const auto *box = qobject_cast<const QGroupBox *>(&widget))
        return box->title();
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return label->text();
    if (const TPageControl *pages = qobject_cast<const TTabSheet *>(&widget) ? pagesOf(&widget) : nullptr)
        return pages->tabText(pages->indexOf(&widget));
    return {};
}

void describeValue(const QWidget &widget, QJsonObject &description)
{
    if (const auto *line = qobject_cast<const QLineEdit *>(&widget))
        description[u"text"] = line->text();
    if (const auto *memo = qobject_cast<const QPlainTextEdit *>(&widget))
        description[u"text"] = memo->toPlainText();
    if (const auto *combo = qobject_cast<const TDBComboBoxEh *>(&widget)) {
        description[u"text"] = combo->text();
        description[u"items"] = QJsonArray::fromStringList(combo->items());
        description[u"itemIndex"] = combo->itemIndex();
    }
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget); button && button->isCheckable())
        description[u"checked"] = button->isChecked();
    if (const auto *box = qobject_cast<const QGroupBox *>(&widget); box && box->isCheckable())
        description[u"checked"] = box->isChecked();
    if (const auto *group = qobject_cast<const TRadioGroup *>(&widget)) {
        description[u"items"] = QJsonArray::fromStringList(group->items());
        description[u"itemIndex"] = group->itemIndex();
    }
    if (const auto *pages = qobject_cast<const TPageControl *>(&widget))
        description[u"itemIndex"] = pages->activePageIndex();
}

QJsonObject describe(const QObject &component, const ConditionCaptions &captions)
{
    QJsonObject description {
        { QStringLiteral("name"), component.objectName() },
        { QStringLiteral("class"), QString::fromLatin1(component.metaObject()->className()).section(u':', -1) }, // without namespaces
    };
    if (const auto *dataSet = qobject_cast<const TDataSet *>(&component))
        description[u"active"] = dataSet->active();
    if (const auto *widget = qobject_cast<const QWidget *>(&component)) {
        description[u"caption"] = captionOf(*widget);
        if (const QString label = qobject_cast<const QLabel *>(widget) ? QString() : captions.of(*widget); !label.isEmpty())
            description[u"label"] = label;
        description[u"enabled"] = widget->isEnabled();
        description[u"visible"] = widget->isVisible();
        description[u"focused"] = widget->hasFocus();
        describeValue(*widget, description);
    }
    return description;
}

void describeAll(const TComponentOwner &owner, const QString &prefix, const ConditionCaptions &captions, QJsonArray &descriptions)
{
    for (QObject *component : owner.components()) {
        QJsonObject description = describe(*component, captions);
        const QString path = prefix + component->objectName();
        description[u"name"] = path;
        descriptions.append(description);
        if (const auto *frame = dynamic_cast<TComponentOwner *>(component))
            describeAll(*frame, path + u'.', captions, descriptions);
    }
}

QString joinedLines(const QJsonArray &lines)
{
    QStringList texts;
    for (const QJsonValue &line : lines)
        texts.append(line.toString());
    return texts.join(u'\n');
}

} // namespace

QJsonObject Automation::controls(const QJsonObject &arguments)
{
    QJsonArray descriptions;
    describeAll(*form(arguments), {}, ConditionCaptions(*form(arguments)), descriptions);
    return { { QStringLiteral("controls"), descriptions } };
}

QJsonObject Automation::get(const QJsonObject &arguments) { return describe(*component(arguments), ConditionCaptions(*form(arguments))); }

QJsonObject Automation::set(const QJsonObject &arguments)
{
    QWidget *widget = controlInFront(arguments);
    person::enter(widget);
    if (arguments.contains(u"checked")) {
        auto *button = qobject_cast<QAbstractButton *>(widget);
        if (!button || !button->isCheckable())
            throw Exception(QStringLiteral("控件“%1”不能勾选").arg(widget->objectName()));
        if (button->isChecked() != arguments[u"checked"].toBool())
            button->click();
    }
    if (arguments.contains(u"itemIndex"))
        person::choose(widget, arguments[u"itemIndex"].toInt(-2));
    if (arguments.contains(u"lines"))
        person::type(widget, joinedLines(arguments[u"lines"].toArray()));
    if (arguments.contains(u"text"))
        person::type(widget, arguments[u"text"].toString());
    if (arguments[u"leave"].toBool(true))
        person::leave(widget);
    return {};
}

QJsonObject Automation::key(const QJsonObject &arguments)
{
    const QKeySequence keys(requiredText(arguments, u"key"));
    if (keys.isEmpty() || keys[0].key() == Qt::Key_unknown)
        throw Exception(QStringLiteral("不认识的按键“%1”").arg(arguments[u"key"].toString()));
    QWidget *widget = controlInFront(arguments);
    person::enter(widget);
    person::pressKey(widget, QKeyCombination(keys[0].keyboardModifiers() | modifiersOf(arguments), keys[0].key()));
    return {};
}

QJsonObject Automation::click(const QJsonObject &arguments)
{
    auto *button = qobject_cast<QAbstractButton *>(controlInFront(arguments));
    if (!button)
        throw Exception(QStringLiteral("控件“%1”不是按钮").arg(arguments[u"control"].toString()));
    person::press(button);
    return {};
}

QJsonObject Automation::page(const QJsonObject &arguments)
{
    auto *sheet = qobject_cast<TTabSheet *>(controlInFront(arguments));
    TPageControl *pages = pagesOf(sheet);
    if (!pages)
        throw Exception(QStringLiteral("控件“%1”不是页").arg(arguments[u"control"].toString()));
    const int index = pages->indexOf(sheet);
    if (!pages->isTabVisible(index) || !pages->isTabEnabled(index))
        throw Exception(QStringLiteral("页“%1”现在没有标签").arg(sheet->objectName()));
    pages->setActivePage(sheet);
    return {};
}

} // namespace client
