#pragma once

#include "platform/toolkit/long_work.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class QLabel;

namespace platform {

/// The small window that appears when long work takes longer than 0.4 s: what runs, seconds, rows, and a Cancel button.
class WaitWindow : public QWidget {
    Q_OBJECT

public:
    WaitWindow(const QString &caption, const WorkProgress &progress);

Q_SIGNALS:
    void cancelled();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void refresh();

    QString m_caption;
    const WorkProgress &m_progress;
    QElapsedTimer m_elapsed;
    QTimer m_timer;
    QLabel *m_label;
};

} // namespace platform
