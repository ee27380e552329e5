#include "platform/toolkit/page_control.h"

#include "platform/toolkit/handler.h"

#include <QSignalBlocker>

using namespace platform;

TPageControl::TPageControl(QWidget *parent)
    : QTabWidget(parent)
{
    handle(this, &QTabWidget::currentChanged, this, [this] {
        if (TTabSheet *sheet = activePage())
            Q_EMIT sheet->shown();
    });
}

void TPageControl::addPage(TTabSheet *sheet, const QString &caption)
{
    // The tab widget makes its first page current by itself; nobody turned to it.
    const QSignalBlocker silent(this);
    addTab(sheet, caption);
}

TTabSheet *TPageControl::activePage() const { return qobject_cast<TTabSheet *>(currentWidget()); }

void TPageControl::setTabVisible(TTabSheet *sheet, bool visible) { QTabWidget::setTabVisible(indexOf(sheet), visible); }
