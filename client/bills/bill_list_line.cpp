#include "client/bills/bill_list_line.h"

#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QBoxLayout>
#include <QPlainTextEdit>
#include <QSet>
#include <QTextBlock>

using namespace platform;

namespace client {
namespace {

constexpr int pauseMilliseconds = 120;
constexpr int mostMarks = 500; ///< the toolkit paints each of them at every blink of the cursor
const QColor oddColour(0xff, 0xc9, 0xc9);
const QColor unansweredColour(0xff, 0xe6, 0xa8);

QString link(const char *target, const QString &text)
{
    return QStringLiteral("<a href='%1'>%2</a>").arg(QLatin1String(target), text.toHtmlEscaped());
}

} // namespace

BillListLine::BillListLine(QPlainTextEdit *memo, const BillPattern &pattern)
    : QLabel(memo->parentWidget())
    , m_memo(memo)
    , m_pattern(pattern)
{
    setWordWrap(true);
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    setFocusPolicy(Qt::NoFocus);
    hide();
    if (auto *layout = qobject_cast<QBoxLayout *>(memo->parentWidget()->layout()))
        layout->insertWidget(layout->indexOf(memo) + 1, this);
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseMilliseconds);
    handle(&m_pause, &QTimer::timeout, this, &BillListLine::recount);
    handle(memo, &QPlainTextEdit::textChanged, this, [this] {
        m_unanswered.clear();
        m_pause.start();
    });
    handle(this, &QLabel::linkActivated, this, [this](const QString &target) {
        if (target == u"batches")
            Q_EMIT batchesWanted();
        else
            Q_EMIT unansweredClicked();
    });
    recount();
}

BillCount BillListLine::count() const { return countBills(m_memo->toPlainText().split(u'\n'), m_pattern); }

void BillListLine::recount()
{
    m_pause.stop();
    m_count = count();
    markLines(m_count.oddLines, oddColour);
    showText();
}

void BillListLine::showUnanswered(const QStringList &numbers, const QString &why)
{
    m_unanswered = numbers;
    m_why = why;
    recount();
}

void BillListLine::showText()
{
    QStringList parts;
    if (m_count.lines > 0)
        parts.append(m_count.text());
    if (m_count.lines > mostBills) {
        const QString batches = QStringLiteral("分 %1 批查询").arg((m_count.lines - m_count.duplicates + mostBills - 1) / mostBills);
        parts.append(
            QStringLiteral("超过 %1 个，").arg(mostBills) + (m_canSplit ? link("batches", batches) : QStringLiteral("请分批查询")));
    }
    if (!m_unanswered.isEmpty())
        parts.append(link("unanswered", QStringLiteral("%1 个%2").arg(m_unanswered.size()).arg(m_why)));
    if (!m_count.shortened.isEmpty())
        parts.append(QStringLiteral("“%1”是电子表格缩写的数，末尾几位已经丢失：请在表格里把这一列设为“文本”，再重新复制")
                         .arg(m_count.shortened.first().toHtmlEscaped()));
    setText(parts.join(QStringLiteral("<br>")));
    setVisible(!parts.isEmpty());
}

void BillListLine::markLines(const QList<int> &lines, const QColor &colour)
{
    QList<QTextEdit::ExtraSelection> marks;
    for (const int line : lines.mid(0, mostMarks)) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(m_memo->document()->findBlockByNumber(line));
        mark.format.setBackground(colour);
        mark.format.setForeground(Qt::black);
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        marks.append(mark);
    }
    m_memo->setExtraSelections(marks);
}

void BillListLine::markNumbers(const QStringList &numbers)
{
    const QSet<QString> wanted(numbers.begin(), numbers.end());
    QList<int> lines;
    for (QTextBlock block = m_memo->document()->begin(); block.isValid(); block = block.next()) {
        if (wanted.contains(block.text().trimmed()))
            lines.append(block.blockNumber());
    }
    markLines(lines, unansweredColour);
    if (lines.isEmpty())
        return;
    m_memo->setTextCursor(QTextCursor(m_memo->document()->findBlockByNumber(lines.first())));
    m_memo->ensureCursorVisible();
}

} // namespace client
