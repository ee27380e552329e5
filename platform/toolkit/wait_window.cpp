#include "platform/toolkit/wait_window.h"

#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPushButton>

namespace platform {

namespace {
constexpr int millisecondsUntilShown = 400;
constexpr int millisecondsBetweenRefreshes = 200;

/// The window in front. A list that has dropped down does not count: it may be deleted while the work goes on, and would take the wait
/// window with it.
QWidget *lastingWindow()
{
    QWidget *window = QApplication::activeWindow();
    while (window && window->windowType() == Qt::Popup)
        window = window->parentWidget() ? window->parentWidget()->window() : nullptr;
    return window;
}

} // namespace

WaitWindow::WaitWindow(const QString &caption, const WorkProgress &progress)
    : QWidget(lastingWindow(), Qt::Tool | Qt::FramelessWindowHint)
    , m_caption(caption)
    , m_progress(progress)
    , m_label(plainLabel())
{
    auto *cancel = new QPushButton(QStringLiteral("取消(Esc)"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(18, 14, 18, 14);
    layout->setSpacing(18);
    layout->addWidget(m_label, 1);
    layout->addWidget(cancel);
    m_label->setMinimumWidth(280);
    setAutoFillBackground(true);

    m_elapsed.start();
    m_timer.start(millisecondsUntilShown);
    handle(cancel, &QPushButton::clicked, this, [this] { Q_EMIT cancelled(); });
    handle(&m_timer, &QTimer::timeout, this, &WaitWindow::refresh);
}

void WaitWindow::refresh()
{
    QString text = m_caption + QStringLiteral("  %1 秒").arg(m_elapsed.elapsed() / 1000);
    const QString rows = QLocale::c().toString(qlonglong(m_progress.rows));
    if (const std::int64_t total = m_progress.total)
        text += QStringLiteral("，%1 / %2 %3").arg(rows, QLocale::c().toString(qlonglong(total)), m_progress.unit);
    else if (m_progress.rows > 0)
        text += QStringLiteral("，已取 %1 %2").arg(rows, m_progress.unit);
    m_label->setText(text);
    if (isVisible())
        return;
    adjustSize();
    if (const QWidget *parent = parentWidget())
        move(parent->mapToGlobal(parent->rect().center()) - rect().center());
    m_timer.start(millisecondsBetweenRefreshes);
    show();
    activateWindow();
}

void WaitWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT cancelled();
}

} // namespace platform
