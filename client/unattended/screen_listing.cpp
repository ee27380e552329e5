#include "client/unattended/screen_listing.h"

#include "client/screen_list.h"
#include "client/unattended/caption.h"
#include "client/unattended/conditions_by_caption.h"
#include "client/unattended/result_pages.h"
#include "platform/editors/editors.h"
#include "platform/toolkit/form.h"

#include <QAbstractButton>
#include <QPlainTextEdit>

#include <algorithm>

namespace client {
namespace {

constexpr qsizetype mostValues = 30; ///< of one condition; some lists have every site of the network

QString choices(const QWidget &condition)
{
    if (qobject_cast<const TDBDateTimeEditEh *>(&condition))
        return QStringLiteral("时间：yyyy-mm-dd [hh:mm:ss]，或 %1").arg(ReportDay::words().join(u'、'));
    if (qobject_cast<const QPlainTextEdit *>(&condition))
        return QStringLiteral("每行一个，或 @文件");
    const QStringList values = valuesOf(condition);
    if (values.isEmpty())
        return QStringLiteral("文字");
    const QString first = values.first(std::min(values.size(), mostValues)).join(u'、');
    return values.size() <= mostValues ? QString(u"可选：" + first) : QStringLiteral("可选 %1 个：%2…").arg(values.size()).arg(first);
}

} // namespace

QString describeScreen(const TForm &screen)
{
    QString text = screen.caption() + u"\n条件（现在的值；可以写的值）：\n";
    const ConditionsByCaption conditions(screen);
    for (const CaptionedCondition &condition : conditions.all()) {
        const QString off = condition.widget->isEnabled() ? QString() : QStringLiteral("（现在不能更改）");
        text += u"  " + condition.name() + u'=' + shownValue(*condition.widget) + u"    " + choices(*condition.widget) + off + u'\n';
    }
    text += QStringLiteral("结果：\n");
    for (const ResultPage &page : resultPages(screen)) {
        const QString name = page.caption.isEmpty() ? QString() : QString(page.caption + u'：');
        text += u"  " + name + columnCaptions(*page.grid).join(u'、') + u'\n';
    }
    QStringList buttons;
    for (const QAbstractButton *button : printButtons(screen))
        buttons.append(button->text().remove(u'&'));
    return buttons.isEmpty() ? text : text + QStringLiteral("打印按钮：") + buttons.join(u'、') + u'\n';
}

QString describeScreens(const std::function<bool(const QString &name)> &isPermitted)
{
    QString text;
    for (const ScreenGroup &group : screenGroups) {
        for (const ScreenItem &item : group.screens) {
            if (isPermitted(item.name.toString()))
                text += item.caption + u'\n';
        }
    }
    return text;
}

} // namespace client
