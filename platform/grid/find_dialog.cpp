#include "platform/grid/find_dialog.h"

#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_filter.h"
#include "platform/grid/grid_finder.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace platform {

namespace {

constexpr int rememberedTexts = 20;
constexpr int textWidth = 260;
constexpr qsizetype mostHits = 500;
constexpr int hitsHeight = 180;

} // namespace

FindDialog::FindDialog(TDBGridEh &grid, GridFinder &finder)
    : QDialog(&grid)
    , m_grid(grid)
    , m_finder(finder)
    , m_text(new QComboBox)
    , m_columns(new QComboBox)
    , m_match(new QComboBox)
    , m_case(new QCheckBox(QStringLiteral("区分大小写(&M)")))
    , m_titles(new QCheckBox(QStringLiteral("也查找列标题(&T)")))
    , m_result(plainLabel())
    , m_hits(new QListWidget)
{
    setWindowTitle(QStringLiteral("查找"));
    m_text->setEditable(true);
    m_text->setMinimumWidth(textWidth);
    m_text->setMaxCount(rememberedTexts);
    m_text->setInsertPolicy(QComboBox::NoInsert);
    m_columns->addItems({ QStringLiteral("全部列"), QStringLiteral("当前列") });
    m_match->addItems({ QStringLiteral("整个内容"), QStringLiteral("开头"), QStringLiteral("任意部分") });
    m_match->setCurrentIndex(int(TextPattern::Match::Anywhere));
    m_titles->setChecked(true);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("查找内容(&N)："), m_text);
    form->addRow(QStringLiteral("范围(&L)："), m_columns);
    form->addRow(QStringLiteral("匹配(&H)："), m_match);
    auto *switches = new QHBoxLayout;
    switches->addWidget(m_case);
    switches->addWidget(m_titles);
    auto *buttons = new QHBoxLayout;
    auto *next = new QPushButton(QStringLiteral("查找下一个(&F)"));
    auto *previous = new QPushButton(QStringLiteral("查找上一个(&B)"));
    auto *close = new QPushButton(QStringLiteral("关闭"));
    next->setDefault(true);
    auto *all = new QPushButton(QStringLiteral("列出全部(&A)"));
    auto *filter = new QPushButton(QStringLiteral("筛选(&O)"));
    buttons->addStretch();
    for (QPushButton *button : { all, filter, previous, next, close })
        buttons->addWidget(button);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(switches);
    layout->addWidget(m_result);
    layout->addWidget(m_hits);
    layout->addLayout(buttons);
    m_hits->setAccessibleName(QStringLiteral("找到的单元格"));
    m_hits->setFixedHeight(hitsHeight);
    m_hits->hide();
    layout->setSizeConstraint(QLayout::SetFixedSize);

    handle(next, &QPushButton::clicked, this, [this] { find(SearchDirection::Forward); });
    handle(previous, &QPushButton::clicked, this, [this] { find(SearchDirection::Backward); });
    handle(all, &QPushButton::clicked, this, &FindDialog::listAll);
    handle(filter, &QPushButton::clicked, this, &FindDialog::keepFound);
    handle(m_hits, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem *item, const QListWidgetItem *) {
        const QPoint cell = item ? item->data(Qt::UserRole).toPoint() : QPoint();
        if (item)
            m_grid.setCurrentCell(cell.y(), cell.x());
    });
    handle(close, &QPushButton::clicked, this, &QDialog::close);
}

void FindDialog::begin()
{
    const int column = m_grid.currentColumn();
    m_columns->setItemText(1, column < 0 ? QStringLiteral("当前列") : u"当前列：" + plainTitle(m_grid.column(column).caption));
    m_result->clear();
    show();
    raise();
    activateWindow();
    m_text->setFocus();
    m_text->lineEdit()->selectAll();
}

GridSearch FindDialog::search() const
{
    return {
        .text = m_text->currentText(),
        .match = TextPattern::Match(m_match->currentIndex()),
        .sensitivity = m_case->isChecked() ? Qt::CaseSensitive : Qt::CaseInsensitive,
        .column = m_columns->currentIndex() == 0 ? -1 : m_grid.currentColumn(),
        .titles = m_titles->isChecked(),
    };
}

std::optional<GridSearch> FindDialog::wantedSearch()
{
    GridSearch wanted = search();
    m_result->setText(wanted.text.isEmpty() ? QStringLiteral("请输入要查找的内容。") : QString());
    if (wanted.text.isEmpty())
        return {};
    remember(wanted.text);
    return wanted;
}

void FindDialog::find(SearchDirection direction)
{
    const auto wanted = wantedSearch();
    if (wanted && !m_finder.find(*wanted, direction))
        m_result->setText(QStringLiteral("表格里没有“%1”。").arg(wanted->text));
}

void FindDialog::listAll()
{
    m_hits->clear();
    disconnect(m_watching);
    const auto wanted = wantedSearch();
    if (!wanted)
        return;
    const FoundCells found = findCells(m_grid, *wanted, mostHits);
    for (const QPoint cell : found.listed) {
        const QString title = plainTitle(m_grid.column(cell.x()).caption);
        auto *item = new QListWidgetItem(
            QStringLiteral("第 %1 行　%2：%3").arg(QString::number(cell.y() + 1), title, m_grid.displayText(cell.y(), cell.x())), m_hits);
        item->setData(Qt::UserRole, cell);
    }
    const QString listed = found.count > mostHits ? QStringLiteral("，只列出前 %1 处").arg(mostHits) : QString();
    m_result->setText(QStringLiteral("共 %L1 处%2。").arg(found.count).arg(listed));
    m_hits->show();
    // Other rows, or the same ones in another order, stand elsewhere.
    if (m_grid.dataSource())
        m_watching = handle(m_grid.dataSource(), &TDataSource::rowsChanged, m_hits, &QListWidget::clear);
}

void FindDialog::keepFound()
{
    if (const auto wanted = wantedSearch())
        m_grid.filter().setText(wanted->text, wanted->column);
}

void FindDialog::remember(const QString &text)
{
    const int known = m_text->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (known >= 0)
        m_text->removeItem(known);
    m_text->insertItem(0, text);
    m_text->setCurrentIndex(0);
}

} // namespace platform
