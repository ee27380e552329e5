#pragma once

#include "platform/toolkit/form.h"

#include <QToolButton>

/// The small frame that collapses and expands the condition panel it stands in.
class TWorkPanel : public TFrame {
    Q_OBJECT

public:
    TWorkPanel();

    PUBLISHED(QToolButton, ShowSpeed);

private:
    void ShowSpeedClick();
    void setGlyph(int index);

    QList<QIcon> ShowHide; ///< 0: shown while collapsed, 1: while expanded
    int m_heightBefore = 0; ///< of the panel, before it was collapsed
};
