#include "client/main_window.h"

#include "client/navigation.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"

#include <QAbstractButton>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>

#include <algorithm>

using namespace platform;

namespace client {

void MainWindow::query()
{
    auto *button = qobject_cast<QAbstractButton *>(queryButton());
    if (!button)
        throw Exception(QStringLiteral("当前没有可以查询的窗口，请先从菜单打开一个。"));
    const QPointer<TForm> screen = activeForm();
    const QPointer<QWidget> before = screen->focusWidget();
    const int openings = m_asked.openings();
    const int failures = m_failures;
    button->click();
    if (!screen || screen != activeForm())
        return;
    if (m_failures > failures)
        tellFailure(*screen);
    const bool answered = m_asked.openings() > openings;
    enterAnswer(before, answered ? Answer::Came : Answer::None);
}

/// What the screen left of its earlier result is not what was asked for now.
void MainWindow::tellFailure(const TForm &screen)
{
    m_asked.markOld(screen);
    for (TDBGridEh *grid : screen.findChildren<TDBGridEh *>()) {
        if (grid->rowCount() == 0)
            grid->setClosedNote(QStringLiteral("查询没有完成，没有记录可显示，请重新查询"));
    }
    showRows();
}

/// After a query the keys go on in the rows; without rows in the condition where the person was. Where the screen itself has sent the
/// person, there the person stays.
void MainWindow::enterAnswer(QWidget *before, Answer answer)
{
    const QWidget *now = activeForm()->focusWidget();
    if (now && isTabStop(*now))
        return;
    if (answer == Answer::Came && m_grid && m_grid->rowCount() > 0)
        m_grid->setFocus();
    else if (before && isTabStop(*before))
        before->setFocus();
}

/// The keys go on in the rows.
void MainWindow::enterRows()
{
    if (m_grid)
        m_grid->setFocus();
}

void MainWindow::enterFoundRows()
{
    if (m_grid && m_grid->rowCount() > 0 && !m_waybillBox->hasFocus())
        m_grid->setFocus();
}

void MainWindow::showResultPage(int number)
{
    if (showPage(*activeForm(), number))
        enterRows();
}

void MainWindow::turnResultPage(int step)
{
    if (turnPage(*activeForm(), step))
        enterRows();
}

void MainWindow::openCell()
{
    const TForm *screen = activeForm();
    m_grid->openCurrentCell();
    if (screen == activeForm())
        enterRows();
}

/// From a detail to its summary, and from there to the window that was in front before.
void MainWindow::goBack()
{
    if (pageNumber(*activeForm()) > 1)
        return showResultPage(1);
    const QList<QMdiSubWindow *> windows = mdiArea()->subWindowList(QMdiArea::ActivationHistoryOrder);
    auto *before = windows.size() > 1 ? qobject_cast<TForm *>(windows[windows.size() - 2]->widget()) : nullptr;
    if (before)
        before->showForm();
}

void MainWindow::enterWaybillBox()
{
    const QStringList waybills = m_grid && m_grid->hasFocus() ? waybillsOf(*m_grid) : QStringList();
    m_waybillBox->enter(waybills.value(0));
}

void MainWindow::openTracks(const QStringList &numbers)
{
    if (numbers.isEmpty())
        throw Exception(QStringLiteral("这里没有运单号。请先选中有运单编号的行，或按 Ctrl+G 输入运单号。"));
    m_tracks.open(numbers, { &m_host, &m_second });
}

/// At a counter one number follows the other: the next track takes the place of the one before, and the keyboard stays in the box.
void MainWindow::openBoxedTrack(const QStringList &numbers)
{
    const TForm *before = activeForm();
    openTracks(numbers);
    if (activeForm() == before)
        return;
    if (m_boxedTrack)
        m_boxedTrack->parentWidget()->close();
    m_boxedTrack = activeForm();
    m_waybillBox->enter({});
}

void MainWindow::offerTracks(QMenu *menu)
{
    if (!m_grid || m_grid->columnIndex(u"BILL_CODE") < 0 || m_grid->currentRow() < 0)
        return;
    QAction *first = menu->actions().value(0);
    const auto tracks = std::ranges::find_if(m_actions, [](const auto &row) { return row.first->text() == trackCommand; });
    menu->insertAction(first, tracks->first);
    menu->insertSeparator(first);
}

} // namespace client
