#include "guest/track_window.h"

#include "guest/bill_fields.h"
#include "guest/track_query.h"
#include "packet/builder.h"
#include "platform/grid/grid_colors.h"
#include "platform/grid/grid_columns.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/published.h"
#include "platform/toolkit/screen.h"

#include <QClipboard>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLineEdit>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

using namespace platform;

namespace guest {
namespace {

constexpr QRgb alarmRowColor = 0xffffc8c8;
constexpr int fieldsPerLine = 4;

QList<TrackWindow *> windows;

QString captionOf(const QStringList &numbers)
{
    return u"客户查询 " + numbers.first() + (numbers.size() > 1 ? QStringLiteral(" 等 %1 票").arg(numbers.size()) : QString());
}

packet::ColumnType typeOf(TrackColumn::Type type)
{
    switch (type) {
    case TrackColumn::Time:
        return packet::ColumnType::Timestamp;
    case TrackColumn::Number:
        return packet::ColumnType::Decimal;
    case TrackColumn::Text:
        break;
    }
    return packet::ColumnType::Text;
}

packet::PacketPtr packetOf(const QList<TrackEvent> &events)
{
    std::vector<packet::Builder::Column> columns;
    for (const TrackColumn &column : trackColumns())
        columns.push_back({ column.field, typeOf(column.type) });
    packet::Builder builder(std::move(columns));
    for (const TrackEvent &event : events) {
        std::size_t index = 0;
        for (const TrackColumn &column : trackColumns())
            builder.addText(index++, (event.*column.value).toStdString());
        builder.endRow();
    }
    return builder.finish();
}

packet::PacketPtr packetOf(const QList<Track> &tracks)
{
    packet::Builder builder(
        { { "BILL_CODE", packet::ColumnType::Text }, { "STATE", packet::ColumnType::Text }, { "GAPS", packet::ColumnType::Int64 } });
    for (const Track &track : tracks) {
        const qsizetype gaps = gapsOf(track).size();
        builder.addText(0, track.number.toStdString());
        builder.addText(1, positionOf(track).state.toStdString());
        gaps > 0 ? builder.addInteger(2, gaps) : builder.addNull(2);
        builder.endRow();
    }
    return builder.finish();
}

Column rowNumbers() { return number("", u"序号", 40); }

Column columnOf(const TrackColumn &track)
{
    return (track.type == TrackColumn::Number ? number : text)(track.field, track.caption, track.width);
}

void raiseAlarm(CellParameters &parameters)
{
    parameters.background = QColor::fromRgba(alarmRowColor);
    parameters.textColor = alarmColor;
}

void design(TDBGridEh *grid, TDataSource *source, TDataSet *dataSet, const GridColumns &columns)
{
    grid->setColumns(columns);
    grid->setFrozenColumns(1);
    source->setDataSet(dataSet);
    grid->setDataSource(source);
    grid->onCellText = [grid](int row, int) { return QString::number(grid->recordNumber(row)); };
}

} // namespace

TrackWindow::TrackWindow(TComponentOwner *owner, const QStringList &numbers, const QList<TCustomRemoteServer *> &servers)
    : TForm(owner, QStringLiteral("frm_QuestQuery"), captionOf(numbers))
    , m_numbers(numbers)
    , m_servers(servers.begin(), servers.end())
    , m_billsSource(new TDataSource(this))
    , m_trackSource(new TDataSource(this))
{
    windows.append(this);
    layOut();
    designGrids();
    handle(refreshButton, &QPushButton::clicked, this, &TrackWindow::refresh);
    handle(copyButton, &QPushButton::clicked, this, &TrackWindow::copyTrack);
    handle(m_billsSource, &TDataSource::recordMoved, this, &TrackWindow::showTrack);
}

TrackWindow::~TrackWindow() { windows.removeOne(this); }

void TrackWindow::layOut()
{
    m_billBox = createBillBox();
    auto *details = new QWidget;
    auto *detailsLayout = new QVBoxLayout(details);
    detailsLayout->setContentsMargins(0, 0, 0, 0);
    detailsLayout->addWidget(m_billBox);
    detailsLayout->addWidget(trackGrid, 1);

    auto *splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(billsGrid);
    splitter->addWidget(details);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({ 310, 950 });
    billsGrid->setVisible(m_numbers.size() > 1);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(createHead());
    layout->addWidget(splitter, 1);
}

QWidget *TrackWindow::createHead()
{
    QFont font = positionLabel->font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    font.setBold(true);
    positionLabel->setFont(font);
    positionLabel->setWordWrap(true);
    positionLabel->setTextFormat(Qt::PlainText);
    positionLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    refreshButton->setText(QStringLiteral("刷新(&R)"));
    refreshButton->setToolTip(QStringLiteral("重新查询 (F5)"));
    copyButton->setText(QStringLiteral("复制全部(&A)"));
    copyButton->setToolTip(QStringLiteral("把整条轨迹复制为文字"));

    auto *head = new QWidget;
    auto *layout = new QHBoxLayout(head);
    layout->setContentsMargins(4, 0, 0, 0);
    layout->addWidget(positionLabel, 1);
    layout->addWidget(refreshButton, 0, Qt::AlignTop);
    layout->addWidget(copyButton, 0, Qt::AlignTop);
    return head;
}

QGroupBox *TrackWindow::createBillBox()
{
    auto *box = new QGroupBox;
    auto *layout = new QGridLayout(box);
    layout->setVerticalSpacing(2);
    int place = 0;
    for (const BillField &field : billFields()) {
        auto *caption = plainLabel(field.caption.toString());
        auto *value = new QLineEdit;
        value->setReadOnly(true);
        value->setFrame(false);
        value->setFocusPolicy(Qt::ClickFocus);
        const int line = place / fieldsPerLine;
        const int column = place % fieldsPerLine * 2;
        layout->addWidget(caption, line, column, Qt::AlignRight | Qt::AlignVCenter);
        layout->addWidget(value, line, column + 1, 1, field.span * 2 - 1);
        layout->setColumnStretch(column + 1, 1);
        m_billValues.append(value);
        place += field.span;
    }
    return box;
}

void TrackWindow::designGrids()
{
    cdsBills->setReadOnly(true);
    cdsTrack->setReadOnly(true);
    design(billsGrid, m_billsSource, cdsBills,
        { rowNumbers(), text("BILL_CODE", u"运单编号", 110), text("STATE", u"状态", 64), number("GAPS", u"未到", 40) });
    billsGrid->onGetCellParams = [this](int row, int, CellParameters &parameters) {
        parameters.background = rowStripe(row + 1);
        if (!cdsBills->isNull(2, row))
            raiseAlarm(parameters);
    };
    GridColumns columns { rowNumbers() };
    for (const TrackColumn &track : trackColumns())
        columns.append(columnOf(track));
    design(trackGrid, m_trackSource, cdsTrack, columns);
    trackGrid->onGetCellParams = [this](int row, int, CellParameters &parameters) { colourTrackCell(row, parameters); };
}

void TrackWindow::refresh()
{
    QList<TCustomRemoteServer *> servers;
    for (const QPointer<TCustomRemoteServer> &server : m_servers) {
        if (server)
            servers.append(server);
    }
    if (servers.isEmpty())
        throw Exception(QStringLiteral("与应用服务器的连接已断开，请重新登录后再查询。"));
    const BusyCursor cursor;
    m_tracks = queryTracks(m_numbers, servers);
    showBills();
}

void TrackWindow::showBills()
{
    const int current = std::max(cdsBills->recordIndex(), 0);
    cdsBills->disableControls();
    cdsBills->setData(packetOf(m_tracks));
    cdsBills->moveTo(current);
    cdsBills->enableControls();
}

const Track *TrackWindow::currentTrack() const
{
    const int index = cdsBills->recordIndex();
    return index >= 0 && index < m_tracks.size() ? &m_tracks[index] : nullptr;
}

void TrackWindow::showTrack()
{
    const Track *track = currentTrack();
    if (!track)
        return;
    QPalette palette = positionLabel->palette();
    palette.setColor(
        QPalette::WindowText, gapsOf(*track).isEmpty() ? this->palette().color(QPalette::WindowText) : alarmColorOn(this->palette()));
    positionLabel->setPalette(palette);
    positionLabel->setText(positionOf(*track).sentence);
    m_billBox->setTitle(u"运单 " + track->number + (track->bill.isEmpty() ? QStringLiteral("（没有录入）") : QString()));
    for (qsizetype field = 0; field < m_billValues.size(); ++field) {
        QLineEdit *value = m_billValues[field];
        value->setText(track->bill.value(field));
        value->setToolTip(plainTip(track->bill.value(field)));
        value->setCursorPosition(0);
    }
    cdsTrack->setData(packetOf(track->events));
}

void TrackWindow::colourTrackCell(int row, CellParameters &parameters) const
{
    parameters.background = rowStripe(row + 1);
    const Track *track = currentTrack();
    if (track && row < track->events.size() && !track->events[row].alarm.isEmpty())
        raiseAlarm(parameters);
}

void TrackWindow::copyTrack() const
{
    if (const Track *track = currentTrack())
        QGuiApplication::clipboard()->setText(textOf(*track));
}

void TrackWindow::FormShow()
{
    notifyHost(this, hostFormCreating);
    trackGrid->setFocus();
}

void TrackWindow::FormActivate()
{
    notifyHost(this, hostFormActivated);
    const PublishedMethod resetSearch(Application->mainForm(), published_by_host::resetSearch);
    if (!resetSearch.isNull())
        resetSearch.call(trackGrid);
}

void TrackWindow::FormClose(TCloseAction &action)
{
    notifyHost(this, hostFormClosed);
    action = TCloseAction::Free;
}

void TrackWindow::FormKeyDown(int key, Qt::KeyboardModifiers modifiers)
{
    if (key == Qt::Key_F5 && modifiers == Qt::NoModifier)
        refreshButton->click();
}

void closeTrackWindows()
{
    while (!windows.isEmpty()) {
        TrackWindow *window = windows.last();
        // Shown, it lies in a window of the host's that goes with it.
        if (QWidget *frame = window->parentWidget())
            delete frame;
        else
            delete window;
    }
}

} // namespace guest
