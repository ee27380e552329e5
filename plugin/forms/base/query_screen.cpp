#include "plugin/forms/base/query_screen.h"

#include "platform/toolkit/refusal.h"
#include "platform/toolkit/screen.h"

using namespace platform;

namespace plugin {

QueryScreen::QueryScreen(TComponentOwner *owner, const QString &name, QStringView caption)
    : Tfrm_BasicBoot(owner, name, caption.toString())
    , m_row(new QHBoxLayout(this))
    , m_column(new QVBoxLayout)
{
    for (QBoxLayout *layout : { static_cast<QBoxLayout *>(m_row), static_cast<QBoxLayout *>(m_column) }) {
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
    }
    m_row->addLayout(m_column, 1);
    m_column->addWidget(Panel1);
    Button1->setText(QStringLiteral("查询"));
    Button1->hide();
    handle(Button1, &QPushButton::clicked, this, &QueryScreen::Button1Click);
}

void QueryScreen::result(TDataView *view, TClientDataSetEx *dataSet, const GridColumns &columns, int frozen)
{
    dataSet->setReadOnly(true);
    view->design(columns, dataSet, frozen);
    placeBelow(view);
    m_view = view;
    m_dataSet = dataSet;
}

void QueryScreen::arrange(const QList<ConditionLine> &lines)
{
    plugin::arrange(this, Panel1, WorkPanel1, lines);
    forEachRow(lines, [this](const ConditionRow &row) { m_onCreate += row.onCreate; });
}

void QueryScreen::placeLeft(TInputList *list)
{
    m_row->insertWidget(0, list);
    askByList(list);
}

void QueryScreen::FormCreate()
{
    Tfrm_BasicBoot::FormCreate();
    for (const auto &fill : m_onCreate)
        fill();
}

void QueryScreen::FormShow() { SetWorkContext(m_view, m_dataSet, Button1, nullptr); }

void QueryScreen::Button1Click()
{
    const QueryRun run(this);
    if (!m_list || !m_list->CheckBox1->isChecked())
        return queryByConditions();
    QString bills;
    m_list->GetBillList(bills);
    if (!bills.isEmpty())
        queryByList(bills);
}

bool QueryScreen::refuse(QStringView reason, QWidget *control)
{
    platform::refuse(reason, caption());
    if (control)
        focusControl(control);
    return true;
}

bool QueryScreen::refuseEmpty(TDBLookupComboboxEh *combo, QStringView reason) { return combo->text().isEmpty() && refuse(reason, combo); }

bool QueryScreen::refuseRange(int mostDays) { return CheckDateRange(DBDateTimeEditEh1->text(), DBDateTimeEditEh2->text(), mostDays, true); }

QueryRun::QueryRun(QueryScreen *screen)
    : m_screen(screen)
{
    focusControl(screen->WorkPanel1);
}

QueryRun::~QueryRun() { m_screen->showFirstPage(); }

} // namespace plugin
