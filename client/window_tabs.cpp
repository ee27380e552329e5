#include "client/window_tabs.h"

#include "client/icons.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/handler.h"

#include <QToolButton>

using namespace platform;

namespace client {

WindowTabs::WindowTabs()
{
    setDocumentMode(true);
    setExpanding(false);
    setDrawBase(false);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(QStringLiteral("打开的窗口"));
    handle(this, &QTabBar::tabBarClicked, this, [this](int index) {
        if (index >= 0)
            Q_EMIT chosen(m_forms[index]);
    });
}

void WindowTabs::addClosableTab()
{
    auto *close = new QToolButton;
    close->setAutoRaise(true);
    close->setIcon(commandIcon("close"));
    close->setIconSize(QSize(12, 12));
    close->setToolTip(QStringLiteral("关闭窗口 (Ctrl+F4)"));
    close->setAccessibleName(QStringLiteral("关闭窗口"));
    setTabButton(addTab({}), RightSide, close);
    handle(close, &QToolButton::clicked, this, [this, close] {
        for (int index = 0; index < count(); ++index) {
            if (tabButton(index, RightSide) == close)
                return Q_EMIT closeWanted(m_forms[index]);
        }
    });
}

void WindowTabs::showForms(const QList<TForm *> &forms, const TForm *active)
{
    m_forms = forms;
    while (count() > forms.size())
        removeTab(count() - 1);
    for (int index = 0; index < forms.size(); ++index) {
        if (index == count())
            addClosableTab();
        setTabText(index, forms[index]->caption());
        if (forms[index] == active)
            setCurrentIndex(index);
    }
}

} // namespace client
