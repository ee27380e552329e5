#include "client/status_line.h"

#include "platform/dataset/client_data_set.h"
#include "platform/files/saved_file_label.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_colors.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/plain_text.h"
#include "platform/toolkit/plugin_interface.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QLocale>
#include <QSet>

#include <iterator>

using namespace platform;

namespace client {
namespace {

// More would be felt at every step of a dragged selection.
constexpr qint64 mostSummedCells = 200'000;
constexpr qint64 mostComparedCells = 50'000;

QString alarming(const QWidget &field) { return QStringLiteral("color: %1; font-weight: bold").arg(alarmColorOn(field.palette()).name()); }

QString counted(qint64 number) { return QLocale(QLocale::Chinese, QLocale::China).toString(number); }

/// The field of a column whose values can be added, or -1.
int summableField(const TDBGridEh &grid, int column)
{
    const TField *field = grid.column(column).isCheckBox() ? nullptr : grid.dataSet()->findField(grid.column(column).fieldName);
    return field && field->type() != FieldType::Text && field->type() != FieldType::DateTime ? field->index() : -1;
}

qint64 visibleCells(const TDBGridEh &grid, const QRect &range)
{
    int columns = 0;
    for (int column = range.left(); column <= range.right(); ++column)
        columns += grid.column(column).visible ? 1 : 0;
    return qint64(columns) * range.height();
}

bool isWholeHeight(const TDBGridEh &grid, const QRect &range) { return range.height() == grid.rowCount(); }

struct Sum {
    packet::Decimal total;
    qint64 numbers = 0;
};

void addColumn(const TDBGridEh &grid, const QRect &range, int column, Sum &sum)
{
    const int field = grid.column(column).visible ? summableField(grid, column) : -1;
    if (field < 0)
        return;
    const auto *dataSet = qobject_cast<const TCustomClientDataSet *>(grid.dataSet());
    if (dataSet && isWholeHeight(grid, range)) {
        sum.total = sum.total + dataSet->sum(field);
        for (int row = range.top(); row <= range.bottom(); ++row)
            sum.numbers += dataSet->isNull(field, row) ? 0 : 1;
        return;
    }
    for (int row = range.top(); row <= range.bottom(); ++row) {
        if (const auto number = grid.dataSet()->number(field, row)) {
            sum.total = sum.total + *number;
            ++sum.numbers;
        }
    }
}

qsizetype differentTexts(const TDBGridEh &grid, const QList<QRect> &ranges)
{
    QSet<QString> texts;
    for (const QRect &range : ranges) {
        for (int column = range.left(); column <= range.right(); ++column) {
            for (int row = range.top(); grid.column(column).visible && row <= range.bottom(); ++row)
                texts.insert(grid.cellText(row, column));
        }
    }
    texts.remove(QString()); // what is blank is no value
    return texts.size();
}

/// Shows a field with its text, or hides it without one.
void fill(QLabel *field, const QString &text)
{
    field->setText(text);
    field->setVisible(!text.isEmpty());
}

} // namespace

SelectionSummary selectionSummary(const TDBGridEh &grid)
{
    const QList<QRect> ranges = grid.selectedRanges();
    qint64 cells = 0;
    qint64 single = 0; // cells that have to be added one by one
    for (const QRect &range : ranges) {
        cells += visibleCells(grid, range);
        single += isWholeHeight(grid, range) ? 0 : visibleCells(grid, range);
    }
    if (cells < 2 || !grid.dataSet() || !grid.dataSet()->active())
        return {};
    QString count = QStringLiteral("已选 %1 格").arg(counted(cells));
    if (cells <= mostComparedCells)
        count += QStringLiteral("  不同 %1").arg(counted(differentTexts(grid, ranges)));
    if (single > mostSummedCells)
        return { count };
    Sum sum;
    for (const QRect &range : ranges) {
        for (int column = range.left(); column <= range.right(); ++column)
            addColumn(grid, range, column, sum);
    }
    if (sum.numbers == 0)
        return { count };
    const QString total = QString::fromStdString(sum.total.toString());
    const QString average = QString::number(sum.total.toDouble() / double(sum.numbers), 'f', 2);
    return { count + QStringLiteral("  合计 %1  平均 %2").arg(total, average), total };
}

StatusLine::StatusLine()
    : m_saved(new files::SavedFileLabel)
    , m_selection(addField())
    , m_rows(addField())
    , m_conditions(addField())
    , m_asked(addField())
    , m_rights(addField())
    , m_login(addField())
    , m_server(addField())
    , m_time(addField())
{
    addWidget(m_saved, 1);
    m_saved->hide();
    m_conditions->setStyleSheet(alarming(*this));
    m_conditions->setToolTip(QStringLiteral("表格里仍是上次查询的结果，请重新查询"));
    m_selection->installEventFilter(this);
    m_rights->setToolTip(QStringLiteral("您的帐户在当前窗口的权限：除查询外还有三项，由管理员授予"));
    m_time->setToolTip(QStringLiteral("服务器时间"));
}

void StatusLine::showLogin(const QString &user, const QString &loginSite)
{
    m_login->setText(QStringLiteral("用户：%1　网点：%2").arg(user, loginSite));
    m_login->show();
}

void StatusLine::showServer(const QString &address)
{
    const bool offline = address.isEmpty();
    m_server->setText(offline ? QStringLiteral("● 离线") : QStringLiteral("● ") + address);
    m_server->setToolTip(offline ? QStringLiteral("服务器都连不上；再次查询时会重新连接") : QStringLiteral("正在使用的服务器"));
    m_server->setStyleSheet(offline ? alarming(*this) : QStringLiteral("color: %1").arg(isDark(palette()) ? u"#6cc48c" : u"#1b7a3d"));
    m_server->show();
}

QLabel *StatusLine::addField()
{
    auto *field = plainLabel();
    field->setContentsMargins(8, 0, 8, 0);
    field->hide();
    addPermanentWidget(field);
    return field;
}

void StatusLine::showRows(const TDBGridEh *grid)
{
    const auto *dataSet = grid ? qobject_cast<const TCustomClientDataSet *>(grid->dataSet()) : nullptr;
    if (!dataSet || !dataSet->active())
        return fill(m_rows, {});
    const bool narrowed = dataSet->unnarrowedCount() != dataSet->recordCount();
    const QString rows = counted(dataSet->recordCount()) + (narrowed ? u" / " + counted(dataSet->unnarrowedCount()) : QString());
    fill(m_rows, dataSet->truncated() ? QStringLiteral("已取 %1 行（已截断）").arg(rows) : QStringLiteral("共 %1 行").arg(rows));
    m_rows->setStyleSheet(dataSet->truncated() ? alarming(*this) : QString());
}

void StatusLine::showConditions(ConditionState state)
{
    const QString texts[] = { {}, QStringLiteral("条件已改"), QStringLiteral("旧结果，上次查询没有完成") };
    fill(m_conditions, texts[int(state)]);
}

void StatusLine::showAsked(const std::optional<AskedConditions::Times> &times)
{
    fill(m_asked,
        times ? QStringLiteral("查询于 %1，%2 秒")
                    .arg(times->asked.toString(QStringLiteral("HH:mm")), QString::number(double(times->milliseconds) / 1000, 'f', 2))
              : QString());
}

void StatusLine::showSelection(const TDBGridEh *grid)
{
    const SelectionSummary summary = grid ? selectionSummary(*grid) : SelectionSummary();
    fill(m_selection, summary.text);
    m_sum = summary.sum;
    m_selection->setCursor(m_sum.isEmpty() ? Qt::ArrowCursor : Qt::PointingHandCursor);
    m_selection->setToolTip(m_sum.isEmpty() ? QString() : QStringLiteral("单击复制合计"));
}

bool StatusLine::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_selection || event->type() != QEvent::MouseButtonRelease || m_sum.isEmpty())
        return QStatusBar::eventFilter(watched, event);
    QGuiApplication::clipboard()->setText(m_sum);
    showMessage(QStringLiteral("已复制合计 %1").arg(m_sum), messageMilliseconds);
    return true;
}

void StatusLine::showRights(const TForm *form)
{
    QStringList granted;
    for (std::size_t index = 0; form && index < std::size(published_by_screen::rights); ++index) {
        if (form->property(published_by_screen::rights[index]).toBool())
            granted.append(QString::number(index + 1));
    }
    const bool hasRights = form && form->property(published_by_screen::rights[0]).isValid();
    const bool all = granted.size() == qsizetype(std::size(published_by_screen::rights));
    const QString words = all ? QStringLiteral("全部")
        : granted.isEmpty()   ? QStringLiteral("只查询")
                              : QStringLiteral("查询和第 %1 项").arg(granted.join(u'、'));
    fill(m_rights, hasRights ? u"权限：" + words : QString());
}

void StatusLine::showSavedFile(const QString &words, const QString &fileName)
{
    clearMessage();
    m_saved->tell(words, fileName);
}

void StatusLine::showTime(const QString &time) { fill(m_time, time); }

} // namespace client
