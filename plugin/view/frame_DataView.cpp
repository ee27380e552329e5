#include "plugin/view/frame_DataView.h"

#include "platform/grid/grid_colors.h"
#include "platform/grid/number_text.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/handler.h"
#include "plugin/view/grid_layout.h"
#include "plugin/view/layout_file.h"
#include "plugin/view/layout_storage.h"
#include "plugin/view/named_layouts.h"

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
    new NamedLayouts(*DataViewGrid, m_section);
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
    loadGridLayout(*DataViewGrid, file, m_section);
}

void TDataView::SaveLayout(const QString &iniFileName) const
{
    LayoutFile file(iniFileName);
    storeGridLayout(*DataViewGrid, file, m_section);
    storeNumberSetting(file);
    if (!file.save())
        tell(file);
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
