#include "client/navigation.h"

#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/page_control.h"
#include "platform/toolkit/plugin_interface.h"

#include <QAbstractButton>
#include <QPlainTextEdit>

namespace client {
namespace {

bool liesIn(const QWidget *widget, const QWidget *parent) { return widget && parent && (widget == parent || parent->isAncestorOf(widget)); }

/// Results and their tabs.
bool belongsToResult(const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (qobject_cast<const TDBGridEh *>(widget) || qobject_cast<const TPageControl *>(widget))
            return true;
    }
    return false;
}

bool isList(const QWidget *widget) { return qobject_cast<const QPlainTextEdit *>(widget); }

QWidget *firstCondition(TForm &form)
{
    for (QWidget *widget = form.nextInFocusChain(); widget != &form; widget = widget->nextInFocusChain()) {
        if (form.isAncestorOf(widget) && isTabStop(*widget) && !belongsToResult(widget) && !isList(widget))
            return widget;
    }
    return nullptr;
}

/// Expands the conditions when they are collapsed: then the keyboard reaches none of them.
QWidget *conditionToEnter(TForm &form)
{
    if (!firstCondition(form))
        toggleConditions(form);
    return firstCondition(form);
}

QWidget *waybillList(const TForm &form)
{
    for (auto *list : form.findChildren<QPlainTextEdit *>()) {
        if (list->isVisible() && list->isEnabled() && !list->isReadOnly())
            return list;
    }
    return nullptr;
}

QList<int> shownTabs(const TPageControl &pages)
{
    QList<int> shown;
    for (int index = 0; index < pages.count(); ++index) {
        if (pages.isTabVisible(index) && pages.isTabEnabled(index))
            shown.append(index);
    }
    return shown;
}

} // namespace

bool isTabStop(const QWidget &widget)
{
    return (widget.focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget.isEnabled() && widget.isVisible() && !widget.focusProxy();
}

void switchFocus(TForm &form, TDBGridEh *grid)
{
    QWidget *here = form.window()->focusWidget();
    if (!liesIn(here, &form) && grid)
        return grid->setFocus(Qt::ShortcutFocusReason);
    QWidget *list = waybillList(form);
    const bool inList = liesIn(here, list);
    const bool inConditions = here && !inList && isTabStop(*here) && !belongsToResult(here);
    QWidget *next = inConditions ? list : nullptr;
    if (!next && !inConditions && !inList)
        next = conditionToEnter(form);
    if (!next)
        next = grid;
    if (next)
        next->setFocus(Qt::ShortcutFocusReason);
}

void toggleConditions(const TForm &form)
{
    if (auto *button = form.property(published_by_screen::panelButton).value<QAbstractButton *>())
        button->click();
}

bool showPage(TForm &form, int number)
{
    auto *pages = form.findChild<TPageControl *>();
    const QList<int> shown = pages ? shownTabs(*pages) : QList<int>();
    if (number < 1 || number > shown.size())
        return false;
    pages->setActivePageIndex(shown[number - 1]);
    return true;
}

bool turnPage(TForm &form, int step)
{
    const auto *pages = form.findChild<const TPageControl *>();
    const int count = pages ? int(shownTabs(*pages).size()) : 0;
    return count > 0 && showPage(form, (pageNumber(form) - 1 + step + count) % count + 1);
}

int pageNumber(const TForm &form)
{
    const auto *pages = form.findChild<const TPageControl *>();
    return pages ? int(shownTabs(*pages).indexOf(pages->activePageIndex())) + 1 : 0;
}

} // namespace client
