#include "plugin/forms/base/frame_Panel.h"

#include "platform/toolkit/handler.h"

#include <QPainter>

using namespace platform;

namespace {

constexpr QSize panelSize(106, 10);
constexpr QSize glyphSize(16, 6);

/// A flat arrow head: down when the panel can be opened, up when it can be closed.
QIcon arrowGlyph(bool down)
{
    QPixmap pixmap(glyphSize * 2);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(96, 110, 130));
    const qreal base = down ? 1 : 5;
    const qreal tip = down ? 5 : 1;
    painter.drawPolygon(QPolygonF({ { 3, base }, { 13, base }, { 8, tip } }));
    return pixmap;
}

} // namespace

TWorkPanel::TWorkPanel()
    : ShowHide { arrowGlyph(true), arrowGlyph(false) }
{
    setFixedSize(panelSize);
    setFocusPolicy(Qt::ClickFocus);
    ShowSpeed->setGeometry(QRect(QPoint(0, 0), panelSize));
    ShowSpeed->setAutoRaise(true);
    ShowSpeed->setFocusPolicy(Qt::NoFocus);
    ShowSpeed->setIconSize(glyphSize);
    setGlyph(1);
    handle(ShowSpeed, &QToolButton::clicked, this, &TWorkPanel::ShowSpeedClick);
}

void TWorkPanel::ShowSpeedClick()
{
    QWidget *target = ShowSpeed->parentWidget()->parentWidget();
    if (target->height() != ShowSpeed->height()) {
        setGlyph(0);
        closeToKeyboard(target);
        m_heightsBefore = { target->minimumHeight(), target->maximumHeight() };
        target->setFixedHeight(ShowSpeed->height());
    } else {
        setGlyph(1);
        target->setMinimumHeight(m_heightsBefore.first);
        target->setMaximumHeight(m_heightsBefore.second);
        openToKeyboard();
    }
}

/// Nobody types into what cannot be seen.
void TWorkPanel::closeToKeyboard(QWidget *panel)
{
    if (panel->isAncestorOf(panel->window()->focusWidget()))
        setFocus();
    for (QWidget *control : panel->findChildren<QWidget *>()) {
        if (!(control->focusPolicy() & Qt::TabFocus))
            continue;
        m_tabStops.append({ control, control->focusPolicy() });
        control->setFocusPolicy(Qt::FocusPolicy(control->focusPolicy() & ~Qt::TabFocus));
    }
}

void TWorkPanel::openToKeyboard()
{
    for (const auto &[control, policy] : std::exchange(m_tabStops, {})) {
        if (control)
            control->setFocusPolicy(policy);
    }
}

void TWorkPanel::setGlyph(int index)
{
    const QString action = index == 0 ? QStringLiteral("最大化面板") : QStringLiteral("最小化面板");
    ShowSpeed->setIcon(ShowHide[index]);
    ShowSpeed->setToolTip(action);
    ShowSpeed->setAccessibleName(action);
}
