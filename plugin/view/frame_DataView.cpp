#include "plugin/view/frame_DataView.h"

#include "platform/grid/grid_colors.h"
#include "platform/grid/number_text.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/handler.h"
#include "plugin/view/layout_file.h"
#include "plugin/view/layout_storage.h"

#include <QEvent>
#include <QFileInfo>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace platform;
using namespace plugin;

namespace {

constexpr QRgb footerColor = 0xffddddff;
const QString numbersSection = QStringLiteral("Numbers"); ///< of all grids
const QString thousandsKey = QStringLiteral("ThousandsMarks");
const QString fieldIndexKey = QStringLiteral("FieldIndex");
// What a person arranged beyond order and widths stands in a section of its own.
const QString arrangementSuffix = QStringLiteral(".Arrangement");
const QString hiddenKey = QStringLiteral("Hidden");
const QString shownKey = QStringLiteral("Shown");
const QString frozenKey = QStringLiteral("Frozen");

/// A column that only the screen has hidden keeps its place for the time when it is shown again.
bool isStored(const TDBGridEh &grid, int index)
{
    const Column &column = grid.column(index);
    const bool shown = column.visible || (grid.isDesignedVisible(index) && !grid.columnChoice(index));
    return shown && !column.fieldName.isEmpty() && !column.caption.isEmpty();
}

bool hasSum(const Column &column)
{
    return std::ranges::any_of(column.footers, [](const ColumnFooter &footer) { return footer.kind == FooterKind::Sum; });
}

void tell(const LayoutFile &file)
{
    if (!file.problem().isEmpty())
        Application->messageLater(file.problem(), QStringLiteral("表格布局"), mbOk | mbIconWarning);
}

/// Once: afterwards the person's menu says how numbers are shown, and the file only keeps it.
void takeNumberSetting(const LayoutFile &file)
{
    static bool taken = false;
    if (!std::exchange(taken, true) && file.value(numbersSection, thousandsKey) == u"0")
        setThousandsMarks(ThousandsMarks::Off);
}

void storeNumberSetting(LayoutFile &file)
{
    if (thousandsMarks() == ThousandsMarks::Off)
        file.setSection(numbersSection, { { thousandsKey, QStringLiteral("0") } });
    else
        file.setSection(numbersSection, {});
}

} // namespace

TDataView::TDataView()
{
    QFont song(QStringLiteral("宋体"));
    song.setPixelSize(12); // the columns' widths are measured in it
    setFont(song);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Panel1);
    layout->addWidget(DataViewGrid);
    Panel1->setTextFormat(Qt::PlainText);
    Panel1->setText(QStringLiteral("在这里描述您下面的表的意义"));
    Panel1->setFixedHeight(16);
    Panel1->setTextFormat(Qt::PlainText);
    Panel1->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    Panel1->hide();

    DataViewPrint->setDBGridEh(DataViewGrid);
    DataViewGrid->setDataSource(DS);
    DataViewGrid->setFooterRowCount(2);
    DataViewGrid->setFooterColor(QColor::fromRgba(footerColor));
    DataViewGrid->setSortLocal(true);
    DataViewGrid->onGetCellParams = [this](int row, int, CellParameters &parameters) { DataViewGridGetCellParams(row, parameters); };
    DataViewGrid->onCellText = [this](int row, int column) { return DataViewGridDrawColumnCell(row, column); };
    handle(DataViewGrid, &TDBGridEh::titleClicked, DataViewGrid, &TDBGridEh::clearSelection);
    handle(DS, &TDataSource::stateChanged, this, &TDataView::DSStateChange);
    handle(DS, &TDataSource::rowsChanged, this, &TDataView::showDescription);
}

TDataView::~TDataView()
{
    if (!m_section.isEmpty())
        guarded([this] { SaveLayout(layoutFileName()); });
}

void TDataView::design(const GridColumns &columns, TDataSet *dataSet, int frozen)
{
    DataViewGrid->setColumns(columns);
    DataViewGrid->setFrozenColumns(frozen);
    DS->setDataSet(dataSet);
}

void TDataView::describeRows(const QString &text, Attention attention)
{
    m_description = text;
    m_attention = attention;
    showDescription();
}

void TDataView::showDescription()
{
    const TDataSet *dataSet = DS->dataSet();
    const bool open = dataSet && dataSet->active();
    const QString notice = open ? dataSet->truncationNotice() : QString();
    const QString text = open ? QStringList({ notice, m_description }).join(u'　').trimmed() : QString();
    QPalette colors;
    if (!notice.isEmpty() || m_attention == Attention::Wanted)
        colors.setColor(QPalette::WindowText, alarmColorOn(palette()));
    Panel1->setPalette(colors);
    Panel1->setText(text);
    Panel1->setToolTip(text.toHtmlEscaped());
    Panel1->setVisible(!text.isEmpty());
}

bool TDataView::event(QEvent *event)
{
    const bool handled = TFrame::event(event);
    if (event->type() == QEvent::Polish && m_section.isEmpty())
        guarded([this] { InitColumns(); });
    return handled;
}

void TDataView::InitColumns()
{
    m_section = componentPath(DataViewGrid);
    LoadLayout(layoutFileName());

    // The count stands beside a sum, not in its place: a person may have put an amount first.
    bool counted = false;
    for (int index = 0; index < DataViewGrid->columnCount(); ++index) {
        Column column = DataViewGrid->column(index);
        if (!counted && column.visible && !column.fieldName.isEmpty() && !hasSum(column)) {
            column.footers
                = { { FooterKind::StaticText, QStringLiteral("记录数"), Qt::AlignHCenter }, { FooterKind::Count, {}, Qt::AlignHCenter } };
            counted = true;
        }
        column.titleButton = column.titleButton || !column.caption.isEmpty();
        DataViewGrid->setColumn(index, column);
    }
}

void TDataView::LoadLayout(const QString &iniFileName)
{
    if (!QFileInfo::exists(iniFileName))
        return;
    const LayoutFile file(iniFileName);
    tell(file);
    takeNumberSetting(file);
    loadArrangement(file);
    const QStringList names = file.value(m_section, fieldIndexKey).split(u';', Qt::SkipEmptyParts);
    for (const QString &name : names) {
        const int index = DataViewGrid->columnIndex(name, ColumnScope::Visible);
        const int width = file.value(m_section, name).toInt();
        if (index >= 0 && width > 0)
            DataViewGrid->setColumnWidth(index, width);
    }
    const int last = DataViewGrid->columnCount() - 1;
    for (qsizetype position = 0; position < names.size(); ++position) {
        const int index = DataViewGrid->columnIndex(names[position], ColumnScope::Visible);
        if (index >= 0)
            DataViewGrid->moveColumn(index, std::min(int(position), last));
    }
}

void TDataView::SaveLayout(const QString &iniFileName) const
{
    QMap<QString, QString> values;
    QString order;
    for (int index = 0; index < DataViewGrid->columnCount(); ++index) {
        const Column &column = DataViewGrid->column(index);
        if (!isStored(*DataViewGrid, index))
            continue;
        order += column.fieldName + u';';
        values.insert(column.fieldName, QString::number(column.width));
    }
    values.insert(fieldIndexKey, order);
    LayoutFile file(iniFileName);
    file.setSection(m_section, values);
    saveArrangement(file);
    storeNumberSetting(file);
    if (!file.save())
        tell(file);
}

void TDataView::loadArrangement(const LayoutFile &file)
{
    const QString section = m_section + arrangementSuffix;
    if (file.value(section, hiddenKey).isNull())
        return;
    const QStringList hidden = file.value(section, hiddenKey).split(u';', Qt::SkipEmptyParts);
    const QStringList shown = file.value(section, shownKey).split(u';', Qt::SkipEmptyParts);
    for (int index = 0; index < DataViewGrid->columnCount(); ++index) {
        const QString name = DataViewGrid->column(index).fieldName;
        if (hidden.contains(name, Qt::CaseInsensitive))
            DataViewGrid->hideColumn(index);
        else if (shown.contains(name, Qt::CaseInsensitive))
            DataViewGrid->showColumn(index);
    }
    DataViewGrid->freezeColumns(file.value(section, frozenKey).toInt());
}

/// Only when the person has changed it, so that a new design reaches everybody else.
void TDataView::saveArrangement(LayoutFile &file) const
{
    const QString section = m_section + arrangementSuffix;
    QString hidden;
    QString shown;
    for (int index = 0; index < DataViewGrid->columnCount(); ++index) {
        const QString &name = DataViewGrid->column(index).fieldName;
        const std::optional<bool> choice = DataViewGrid->columnChoice(index);
        if (choice && !name.isEmpty())
            (*choice ? shown : hidden) += name + u';';
    }
    if (hidden.isEmpty() && shown.isEmpty() && DataViewGrid->isFreezeDesigned())
        return file.setSection(section, {});
    file.setSection(section, { { hiddenKey, hidden }, { shownKey, shown }, { frozenKey, QString::number(DataViewGrid->frozenColumns()) } });
}

void TDataView::DataViewGridGetCellParams(int row, CellParameters &parameters) const
{
    if (Striped)
        parameters.background = rowStripe(DataViewGrid->recordNumber(row));
}

QString TDataView::DataViewGridDrawColumnCell(int row, int column) const
{
    const int number = DataViewGrid->recordNumber(row);
    return DataViewGrid->column(column).caption == u"序号" && number != -1 ? QString::number(number) : QString();
}

void TDataView::DSStateChange()
{
    TDataSet *dataSet = DS->dataSet();
    const bool editing = dataSet && dataSet->isEditing();
    DataViewGrid->setEnabled(!editing);
    if (dataSet && !editing && dataSet->controlsDisabled())
        dataSet->enableControls();
}
