#include "platform/grid/find_dialog.h"

#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_finder.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace platform {

namespace {

constexpr int rememberedTexts = 20;
constexpr int textWidth = 260;

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
    buttons->addStretch();
    for (QPushButton *button : { previous, next, close })
        buttons->addWidget(button);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(switches);
    layout->addWidget(m_result);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    handle(next, &QPushButton::clicked, this, [this] { find(SearchDirection::Forward); });
    handle(previous, &QPushButton::clicked, this, [this] { find(SearchDirection::Backward); });
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

void FindDialog::find(SearchDirection direction)
{
    const GridSearch wanted = search();
    if (wanted.text.isEmpty())
        return m_result->setText(QStringLiteral("请输入要查找的内容。"));
    remember(wanted.text);
    m_result->setText(m_finder.find(wanted, direction) ? QString() : QStringLiteral("表格里没有“%1”。").arg(wanted.text));
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
