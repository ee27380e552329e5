#include "platform/toolkit/screen.h"

#include "platform/toolkit/application.h"

#include <QGuiApplication>
#include <QWidget>

using namespace platform;

namespace {
TScreen ownScreen;
}

TScreen *Screen = &ownScreen;

void TScreen::registerCursor(int number, const QCursor &cursor) { m_cursors.insert(number, cursor); }

void TScreen::setCursor(int number)
{
    m_cursor = number;
    Application->record(QStringLiteral("cursor"), { { QStringLiteral("number"), number } });
    if (m_overridden)
        QGuiApplication::restoreOverrideCursor();
    m_overridden = m_cursors.contains(number);
    if (m_overridden)
        QGuiApplication::setOverrideCursor(m_cursors.value(number));
}

namespace platform {

void focusControl(QWidget *control)
{
    Application->record(QStringLiteral("focus"), { { QStringLiteral("control"), control->objectName() } });
    control->setFocus(Qt::OtherFocusReason);
}

} // namespace platform
