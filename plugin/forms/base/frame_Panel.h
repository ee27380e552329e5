#pragma once

#include "platform/toolkit/form.h"

#include <QPointer>
#include <QToolButton>

#include <utility>

/// The small frame that collapses and expands the condition panel it stands in.
class TWorkPanel : public TFrame {
    Q_OBJECT

public:
    TWorkPanel();

    PUBLISHED(QToolButton, ShowSpeed);

protected:
    // It looks the same with the focus; each query passes it on from here.
    void focusInEvent(QFocusEvent *) override { }
    void focusOutEvent(QFocusEvent *) override { }

private:
    void ShowSpeedClick();
    void setGlyph(int index);
    void closeToKeyboard(QWidget *panel);
    void openToKeyboard();

    QList<QIcon> ShowHide; ///< 0: shown while collapsed, 1: while expanded
    std::pair<int, int> m_heightsBefore; ///< the least and the greatest of the panel, before it was collapsed
    QList<std::pair<QPointer<QWidget>, Qt::FocusPolicy>> m_tabStops; ///< of the collapsed panel
};
