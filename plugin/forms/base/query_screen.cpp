#include "plugin/forms/base/query_screen.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/screen.h"
#include "plugin/data/host_data.h"
#include "plugin/util/conditions.h"

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

void QueryScreen::FormShow() { SetWorkContext(m_view, m_dataSet, Button1, nullptr); }

bool QueryScreen::refuse(const QString &text, QWidget *control)
{
    Application->messageBox(text, caption(), mbIconWarning);
    if (control)
        focusControl(control);
    return true;
}

void QueryScreen::completeOnExit(const QList<TDBLookupComboboxEh *> &combos)
{
    for (TDBLookupComboboxEh *combo : combos)
        handle(combo, &TDBLookupComboboxEh::exited, this, [combo] { LookupComboTextExit(combo); });
}

void QueryScreen::completeOnEnter(const QList<TDBLookupComboboxEh *> &combos)
{
    for (TDBLookupComboboxEh *combo : combos)
        handle(combo, &TDBLookupComboboxEh::keyPressed, this, [combo](int key) {
            if (key == Qt::Key_Return || key == Qt::Key_Enter)
                LookupComboTextExit(combo);
        });
}

void QueryScreen::loginSiteOnExit(TDBLookupComboboxEh *combo)
{
    handle(combo, &TDBLookupComboboxEh::exited, this, [combo] {
        if (combo->text().trimmed().isEmpty())
            combo->setText(GlobalValueAddr(QStringLiteral("site")));
    });
}

QueryRun::QueryRun(QueryScreen *screen)
    : m_screen(screen)
{
    Screen->setCursor(crQueryBusy);
    focusControl(screen->WorkPanel1);
}

QueryRun::~QueryRun()
{
    m_screen->showFirstPage();
    Screen->setCursor(crDefault);
}

void fillFromHost(const QList<TDBComboBoxEh *> &combos, const QString &hostDataSet, const QString &field)
{
    fillFrom(combos, GlobalCdsAddr(hostDataSet), field);
}

void fillScanLists(TDBComboBoxEh *goodsType, TDBComboBoxEh *fastType, TDBComboBoxEh *shift)
{
    fillFromHost({ goodsType }, QStringLiteral("GoodsType"), QStringLiteral("GOODS_NAME"));
    fillFromHost({ fastType }, QStringLiteral("FastType"), QStringLiteral("TYPE_NAME"));
    fillFromHost({ shift }, QStringLiteral("Class"), QStringLiteral("CLASS_NAME"));
}

void fillFrom(const QList<TDBComboBoxEh *> &combos, TDataSet *dataSet, const QString &field)
{
    QString values;
    DataSetFieldToText(dataSet, field, QStringLiteral("\r"), values);
    for (TDBComboBoxEh *combo : combos) {
        combo->setItemsText(allItems + u'\r' + values);
        combo->setKeyItemsText(allItems + u'\r' + values);
        combo->setItemIndex(0);
    }
}

namespace {

void setDay(const QDate &day, TDBDateTimeEditEh *start, TDBDateTimeEditEh *end)
{
    start->setDateTimeText(dateToText(day) + u" 00:00:00");
    end->setDateTimeText(dateToText(day) + u" 23:59:59");
}

void setLookup(const QList<TDBLookupComboboxEh *> &combos, TDataSource *source, const QString &keyField, const QString &codeField,
    const QList<LookupColumn> &columns)
{
    for (TDBLookupComboboxEh *combo : combos) {
        combo->setFields(keyField, keyField, codeField);
        combo->setDropDownColumns(columns);
        combo->setListSource(source);
    }
}

} // namespace

void setYesterday(TDBDateTimeEditEh *start, TDBDateTimeEditEh *end) { setDay(Clock::today().addDays(-1), start, end); }

void setToday(TDBDateTimeEditEh *start, TDBDateTimeEditEh *end) { setDay(Clock::today(), start, end); }

void setSiteLookup(const QList<TDBLookupComboboxEh *> &combos, TDataSource *source)
{
    setLookup(combos, source, QStringLiteral("SITE_NAME"), QStringLiteral("SITE_CODE"),
        { { QStringLiteral("SITE_CODE"), QStringLiteral("网点编号"), 80 }, { QStringLiteral("SITE_NAME"), QStringLiteral("网点名称"), 120 },
            { QStringLiteral("SUPERIOR_SITE"), QStringLiteral("所属网点"), 120 } });
}

void setScanTypeLookup(const QList<TDBLookupComboboxEh *> &combos, TDataSource *source)
{
    setLookup(combos, source, QStringLiteral("TYPE_NAME"), QStringLiteral("TYPE_CODE"),
        { { QStringLiteral("TYPE_CODE"), QStringLiteral("类型编号"), 80 },
            { QStringLiteral("TYPE_NAME"), QStringLiteral("类型名称"), 120 } });
}

void setEmployeeLookup(const QList<TDBLookupComboboxEh *> &combos, TDataSource *source)
{
    setLookup(combos, source, QStringLiteral("EMPLOYEE_NAME"), QStringLiteral("EMPLOYEE_CODE"),
        { { QStringLiteral("EMPLOYEE_CODE"), QStringLiteral("员工编号"), 60 },
            { QStringLiteral("EMPLOYEE_NAME"), QStringLiteral("员工姓名"), 60 },
            { QStringLiteral("OWNER_SITE"), QStringLiteral("所属网点"), 120 },
            { QStringLiteral("DEPT_NAME"), QStringLiteral("所属部门"), 60 } });
}

QString siteList(TDataSet *sites)
{
    QString names;
    DataSetFieldToText(sites, QStringLiteral("site_name"), QStringLiteral("','"), names);
    return u"('" + names + u"')";
}

QString selectedField(const TDataView *view)
{
    const TDBGridEh *grid = view->DataViewGrid;
    return grid->currentColumn() < 0 ? QString() : grid->column(grid->currentColumn()).fieldName;
}

void openStatement(TClientDataSetEx *dataSet, const QString &statement, int tag)
{
    dataSet->close();
    dataSet->setCommandText(statement);
    dataSet->setTag(tag);
    dataSet->open();
}

QString unlessEmpty(QStringView condition, const TDBLookupComboboxEh *combo)
{
    return combo->text().isEmpty() ? QString() : QString(condition + combo->text() + u'\'');
}

QString unlessAll(QStringView condition, const TDBComboBoxEh *combo)
{
    return combo->text() == allItems ? QString() : QString(condition + combo->text() + u'\'');
}

QString whereBetween(QStringView column, const TDBDateTimeEditEh *start, const TDBDateTimeEditEh *end)
{
    return u"where " + column + u" between to_date('" + start->text() + u"','yyyy-mm-dd hh24:mi:ss') and to_date('" + end->text()
        + u"','yyyy-mm-dd hh24:mi:ss')";
}
