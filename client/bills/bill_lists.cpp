#include "client/bills/bill_lists.h"

#include "client/bills/answered_bills.h"
#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/handler.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScopeGuard>

using namespace platform;

namespace client {
namespace {

QPlainTextEdit *listOf(const TForm &screen)
{
    for (QObject *component : screen.components()) {
        const auto *frame = dynamic_cast<const TFrame *>(component);
        if (auto *memo = frame ? qobject_cast<QPlainTextEdit *>(frame->findComponent(u"Memo1")) : nullptr)
            return memo;
    }
    return nullptr;
}

/// The box beside a list by which a person chooses to ask by it; null where there is none.
QCheckBox *boxOf(const QPlainTextEdit *memo)
{
    const auto *frame = dynamic_cast<const TComponentOwner *>(ownerOf(memo));
    return frame ? qobject_cast<QCheckBox *>(frame->findComponent(u"CheckBox1")) : nullptr;
}

bool asksByList(const QPlainTextEdit *memo)
{
    const QCheckBox *box = boxOf(memo);
    return memo->isVisible() && (!box || box->isChecked());
}

QStringList distinctLines(const QPlainTextEdit *memo)
{
    QStringList numbers;
    for (const QString &line : memo->toPlainText().split(u'\n')) {
        if (!line.trimmed().isEmpty())
            numbers.append(line.trimmed());
    }
    numbers.removeDuplicates();
    return numbers;
}

} // namespace

BillLists::BillLists(const QString &pattern)
    : m_pattern(pattern)
{
}

void BillLists::watch(TForm *screen, QAbstractButton *queryButton, bool splits)
{
    QPlainTextEdit *memo = listOf(*screen);
    if (!memo)
        return;
    if (!m_lists.contains(screen)) {
        auto *line = new BillListLine(memo, m_pattern);
        m_lists.insert(screen, { line, queryButton, nullptr });
        handle(line, &BillListLine::unansweredClicked, this, [this, screen] { offerUnanswered(screen); });
        handle(line, &BillListLine::batchesWanted, this, [this, screen] { askInBatches(screen); });
        handle(screen, &QObject::destroyed, this, [this, screen] { m_lists.remove(screen); });
    }
    m_lists[screen].queryButton = queryButton;
    m_lists[screen].line->setCanSplit(splits);
}

bool BillLists::paste(TForm *screen)
{
    QPlainTextEdit *memo = listOf(*screen);
    if (!memo || !memo->isVisible() || !memo->isEnabled())
        return false;
    memo->setFocus(Qt::ShortcutFocusReason);
    memo->paste();
    QCheckBox *box = boxOf(memo);
    if (box && box->isEnabled() && !box->isChecked())
        box->click();
    return true;
}

void BillLists::compare(const Watched &watched, const TDataSet &rows)
{
    const UnansweredBills unanswered = unansweredBills(watched.line->count().numbers, rows);
    if (!unanswered.unknown.isEmpty())
        watched.line->showUnanswered(unanswered.unknown, QStringLiteral("没有任何记录"));
    else
        watched.line->showUnanswered(unanswered.missing, QStringLiteral("不在结果里"));
}

void BillLists::showAnswer(TForm *screen, TDataSet *rows)
{
    const auto watched = m_lists.find(screen);
    if (watched == m_lists.end() || !rows || !rows->active())
        return;
    watched->rows = rows;
    watched->wasAnswered = true;
    if (m_batching || !asksByList(watched->line->memo()))
        return;
    // The screen leaves the row that it filled in last as the current one; a person expects the first number of the list.
    rows->first();
    compare(*watched, *rows);
}

void BillLists::offerUnanswered(TForm *screen)
{
    BillListLine *line = m_lists[screen].line;
    auto *menu = new QMenu(line);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    handle(menu->addAction(QStringLiteral("复制这些单号")), &QAction::triggered, line, [this, line] {
        QGuiApplication::clipboard()->setText(line->unanswered().join(u'\n'));
        Q_EMIT said(QStringLiteral("已复制 %1 个单号").arg(line->unanswered().size()));
    });
    handle(menu->addAction(QStringLiteral("在列表里标出")), &QAction::triggered, line, [line] { line->markNumbers(line->unanswered()); });
    handle(menu->addAction(QStringLiteral("只查这些单号")), &QAction::triggered, line, [this, screen] { askAgain(screen); });
    menu->popup(line->mapToGlobal(line->rect().bottomLeft()));
}

void BillLists::askAgain(TForm *screen)
{
    const Watched &watched = m_lists[screen];
    watched.line->memo()->setPlainText(watched.line->unanswered().join(u'\n'));
    if (watched.queryButton)
        watched.queryButton->click();
}

void BillLists::askInBatches(TForm *screen)
{
    QPlainTextEdit *memo = m_lists[screen].line->memo();
    const QString whole = memo->toPlainText();
    m_batching = true;
    const auto finish = qScopeGuard([this, memo = QPointer(memo), whole] {
        m_batching = false;
        if (memo)
            memo->setPlainText(whole);
    });
    if (QCheckBox *box = boxOf(memo); box && box->isEnabled() && !box->isChecked())
        box->click();
    askBatches(screen, distinctLines(memo));
}

void BillLists::askBatches(TForm *screen, const QStringList &numbers)
{
    const int batches = int((numbers.size() + mostBills - 1) / mostBills);
    std::vector<packet::PacketPtr> answers;
    for (int batch = 0; batch < batches; ++batch) {
        Q_EMIT said(QStringLiteral("正在查询第 %1 批，共 %2 批").arg(batch + 1).arg(batches));
        const auto watched = m_lists.find(screen);
        watched->wasAnswered = false;
        watched->line->memo()->setPlainText(numbers.mid(qsizetype(batch) * mostBills, mostBills).join(u'\n'));
        watched->queryButton->click();
        const auto *rows = m_lists[screen].wasAnswered ? qobject_cast<const TCustomClientDataSet *>(m_lists[screen].rows) : nullptr;
        if (!rows)
            return Q_EMIT said(QStringLiteral("第 %1 批没有查成，已停止；列表没有改变，可以再试。").arg(batch + 1));
        answers.push_back(rows->data());
    }
    Q_EMIT joined(screen, joinedRows(answers), batches);
}

} // namespace client
