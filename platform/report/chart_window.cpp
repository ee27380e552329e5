#include "platform/report/chart_window.h"

#include "platform/dataset/data_source.h"
#include "platform/files/save_dialog.h"
#include "platform/files/saved_file_label.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/report/chart_view.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

using namespace platform;

namespace report {

ChartWindow::ChartWindow(TDBGridEh &grid, const QString &title)
    : QDialog(&grid)
    , m_grid(grid)
    , m_title(title)
    , m_choice(usualChart(grid))
    , m_view(new ChartView)
    , m_kinds(new QComboBox)
    , m_labels(new QComboBox)
    , m_values(new QToolButton)
    , m_valueMenu(new QMenu(this))
    , m_notice(plainLabel())
    , m_saved(new files::SavedFileLabel)
{
    setWindowTitle(QStringLiteral("图表：") + title);
    setAttribute(Qt::WA_DeleteOnClose);
    buildTools();
    m_later.setSingleShot(true);
    handle(&m_later, &QTimer::timeout, this, &ChartWindow::drawAgain);
    handle(grid.dataSource(), &TDataSource::rowsChanged, this, &ChartWindow::drawLater);
    handle(grid.dataSource(), &TDataSource::rowEdited, this, &ChartWindow::drawLater);
    handle(&grid, &TDBGridEh::columnsChanged, this, &ChartWindow::drawLater);
    handle(&grid, &TDBGridEh::currentCellChanged, this, [this](int row, int) { m_view->markPoint(row); });
    handle(m_view, &ChartView::pointClicked, this, &ChartWindow::selectRow);
    handle(m_view, &ChartView::pointDoubleClicked, this, [this](int row) {
        selectRow(row);
        m_grid.openCurrentCell();
    });
    drawAgain();
}

ChartWindow &ChartWindow::showFor(TDBGridEh &grid, const QString &title)
{
    if (grid.rowCount() == 0 || valueColumns(grid).isEmpty())
        throw Exception(QStringLiteral("这个表格没有可以画的数字，请先查询一个有数字列的汇总。"));
    ChartWindow *window = of(grid);
    if (!window)
        window = new ChartWindow(grid, title);
    window->show();
    window->raise();
    return *window;
}

ChartWindow *ChartWindow::of(const TDBGridEh &grid)
{
    for (ChartWindow *window : grid.findChildren<ChartWindow *>(Qt::FindDirectChildrenOnly)) {
        if (window->isVisible())
            return window;
    }
    return nullptr; // a closed one may still await its deletion
}

void ChartWindow::buildTools()
{
    m_kinds->addItems({ QStringLiteral("柱形图"), QStringLiteral("折线图"), QStringLiteral("占比图") });
    m_kinds->setAccessibleName(QStringLiteral("图形"));
    m_labels->setAccessibleName(QStringLiteral("按列"));
    m_values->setPopupMode(QToolButton::InstantPopup);
    m_values->setMenu(m_valueMenu);
    auto *save = new QPushButton(QStringLiteral("保存图片…"));
    save->setAutoDefault(false);

    auto *tools = new QHBoxLayout;
    tools->addWidget(m_kinds);
    tools->addWidget(plainLabel(QStringLiteral("按：")));
    tools->addWidget(m_labels);
    tools->addWidget(plainLabel(QStringLiteral("数字：")));
    tools->addWidget(m_values);
    tools->addStretch();
    tools->addWidget(save);
    m_notice->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(tools);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_notice);
    layout->addWidget(m_saved);

    handle(m_kinds, &QComboBox::activated, this, [this](int kind) {
        m_choice.kind = ChartKind(kind);
        drawAgain();
    });
    handle(m_labels, &QComboBox::activated, this, [this] {
        m_choice.labelField = m_labels->currentData().toString();
        drawAgain();
    });
    handle(save, &QPushButton::clicked, this, &ChartWindow::savePicture);
}

void ChartWindow::listColumns()
{
    m_kinds->setCurrentIndex(int(m_choice.kind));
    m_labels->clear();
    for (const int column : labelColumns(m_grid))
        m_labels->addItem(plainTitle(m_grid.column(column).caption), m_grid.column(column).fieldName);
    m_labels->setCurrentIndex(m_labels->findData(m_choice.labelField));
    m_valueMenu->clear();
    QStringList chosen;
    for (const int column : valueColumns(m_grid)) {
        const QString field = m_grid.column(column).fieldName;
        const QString title = plainTitle(m_grid.column(column).caption);
        QAction *action = m_valueMenu->addAction(QString(title).replace(u'&', QStringLiteral("&&")));
        action->setCheckable(true);
        action->setChecked(m_choice.valueFields.contains(field));
        if (action->isChecked())
            chosen.append(title);
        handle(action, &QAction::toggled, this, [this, field](bool on) {
            m_choice.valueFields.removeAll(field);
            if (on)
                m_choice.valueFields.append(field);
            drawLater();
        });
    }
    m_values->setText(chosen.isEmpty() ? QStringLiteral("请选择") : chosen.join(u'、').replace(u'&', QStringLiteral("&&")));
}

void ChartWindow::choose(const GridChartChoice &choice)
{
    m_choice = choice;
    drawAgain();
}

GridChart ChartWindow::chart() const { return gridChart(m_grid, m_choice, m_title); }

/// Once, whatever number of changes comes together.
void ChartWindow::drawLater() { m_later.start(0); }

void ChartWindow::drawAgain()
{
    // A new result has other columns; what was chosen for the old one is no guide.
    const bool isOther = m_grid.rowCount() > 0 && !m_grid.dataSet()->findField(m_choice.labelField);
    if (isOther) {
        const ChartKind kind = m_choice.kind;
        m_choice = usualChart(m_grid);
        m_choice.kind = kind;
    }
    listColumns();
    const GridChart drawn = chart();
    m_view->showChart(drawn.data, m_choice.kind);
    m_view->markPoint(m_grid.currentRow());
    m_notice->setText(drawn.notice);
    m_notice->setVisible(!drawn.notice.isEmpty());
}

void ChartWindow::selectRow(int row) { m_grid.setCurrentCell(row, m_grid.currentColumn()); }

void ChartWindow::savePicture()
{
    const auto place = files::askWhereToSave(this, QStringLiteral("保存图片"), files::datedName(m_title),
        { QStringLiteral("PNG 图片 (*.png)"), QStringLiteral("SVG 图片 (*.svg)") });
    if (place)
        saveTo(place->fileName);
}

void ChartWindow::saveTo(const QString &fileName)
{
    m_view->save(fileName);
    m_saved->tell(QStringLiteral("已保存图片"), fileName);
}

} // namespace report
