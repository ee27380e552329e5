#include "plugin/forms/scan/ufrm_GuestSignQuery.h"

#include "platform/toolkit/handler.h"
#include "platform/toolkit/screen.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/util/conditions.h"

#include <QHBoxLayout>
#include <QScopeGuard>

using namespace platform;
using namespace plugin;

Tfrm_Basic *frm_GuestSignQuery = nullptr;

namespace {

constexpr int splitterWidth = 6;
constexpr int listWidth = 130;
constexpr int narrowestList = 30;
constexpr int positionWidth = 100; ///< characters of the column for the present position

const GridColumns resultColumns {
    text("BILL_CODE", u"运单编号", 100).readOnly(),
    text("bl_sign", u"签收", 28).checkBox(),
    text("bl_bill", u"录单", 28).checkBox(),
    text("bl_problem", u"问题", 28).checkBox(),
    text("BILL_NOW_POS", u"当前状态", 200).readOnly(),
    text("STATE_NAME", u"签收状态", 52).readOnly(),
    text("SIGN_MAN", u"签收人", 60).dropDown({ QStringLiteral("EMPLOYEE_CODE"), QStringLiteral("EMPLOYEE_NAME") }),
    time("SIGN_DATE", u"签收时间", 120),
    text("DISPATCH_NAME", u"派件员", 60).ellipsis().dropDown({ QStringLiteral("EMPLOYEE_CODE"), QStringLiteral("EMPLOYEE_NAME") }),
    time("RECORD_DATE", u"录入时间", 120).readOnly(),
    text("RECORD_SITE", u"录入站点", 70).readOnly(),
    text("RECORD_MAN", u"录入人", 60).readOnly(),
    text("RECORD_MAN_CODE", u"录入人编号").readOnly(),
    text("SEND_SITE", u"寄件网点", 70),
    time("send_date", u"寄件日期", 120),
    text("dispatch_site", u"派件网点", 70),
    text("GOODS_TYPE", u"物品类别", 60),
    number("SETTLEMENT_WEIGHT", u"结算重量", 60),
    money("topayment", u"到付款", 70),
    text("REMARK", u"备注", 200),
    text("MODIFY_SITE", u"修改网点", 70),
    text("MODIFIER", u"修改人", 60),
    text("MODIFIER_CODE", u"修改人编号"),
};

QString signatures(const QString &bills)
{
    return u"select /*+index(a,TAB_SIGN_I1)*/a.BILL_CODE,a.STATE_NAME||'' as STATE_NAME,a.SIGN_MAN||'' as SIGN_MAN,"
           "to_char(a.SIGN_DATE,'yyyy-mm-dd hh24:mi:ss') as SIGN_DATE,a.DISPATCH_NAME||'' as DISPATCH_NAME,"
           "to_char(a.RECORD_DATE,'yyyy-mm-dd hh24:mi:ss') as RECORD_DATE,a.RECORD_SITE||'' as RECORD_SITE,"
           "a.RECORD_MAN||'' as RECORD_MAN,a.RECORD_MAN_CODE||'' as RECORD_MAN_CODE,a.REMARK,a.MODIFY_SITE,a.MODIFIER,a.MODIFIER_CODE,"
           "b.GOODS_TYPE,b.SEND_SITE,b.dispatch_site,b.SETTLEMENT_WEIGHT,b.topayment,b.send_date,1 as bl_sign,"
           "(case when exists(select /*+index(e,TAB_PROBLEM_I)*/1 from TAB_PROBLEM e where bill_code=a.bill_code) then 1 else 0 end) "
           "as bl_problem,(case when b.bill_code is null then 0 else 1 end) as bl_bill,'"
        + QString(positionWidth, u' ')
        + u"' as BILL_NOW_POS from tab_sign a left join (select /*+index(b,TAB_BILL_P)*/b.bill_code,b.GOODS_TYPE,b.SEND_SITE,"
          "b.dispatch_site,b.SETTLEMENT_WEIGHT,b.topayment,b.send_date from tab_bill b where b.bill_code in "
        + bills + u") b on a.bill_code=b.bill_code where a.bill_code in " + bills;
}

QString problems(const QString &bills)
{
    return u"select /*+index(a,TAB_PROBLEM_I)*/distinct a.bill_code from TAB_PROBLEM a where a.bill_code in " + bills;
}

QString entries(const QString &bills)
{
    return u"select /*+index(a,TAB_BILL_P)*/a.bill_code,a.GOODS_TYPE,a.SEND_SITE,a.dispatch_site,a.SETTLEMENT_WEIGHT,a.topayment,"
           "a.send_date,1 as bl_bill from TAB_BILL a where a.bill_code in "
        + bills;
}

QString positions(const QString &bills)
{
    return u"select /*+index(a,TAB_BILL_STATUS_P)*/ a.bill_code,a.BILL_NOW_POS from TAB_BILL_STATUS a where a.bill_code in " + bills;
}

} // namespace

Tfrm_GuestSignQuery::Tfrm_GuestSignQuery(TComponentOwner *owner)
    : Tfrm_BasicBoot(owner, QStringLiteral("frm_GuestSignQuery"), QStringLiteral("客服签收查询"))
{
    DataView1->design(resultColumns, cds);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Splitter1);
    InputList1->setMaximumWidth(QWIDGETSIZE_MAX);
    InputList1->setMinimumWidth(0);
    InputList1->CheckBox1->setChecked(true);
    InputList1->CheckBox1->setEnabled(false);
    Splitter1->addWidget(InputList1);
    Splitter1->addWidget(DataView1);
    Splitter1->setHandleWidth(splitterWidth);
    Splitter1->setStretchFactor(1, 1);
    Splitter1->setSizes({ listWidth, 10 * listWidth });
    Button1->setText(QStringLiteral("查询"));
    Button1->hide();
    cds1->setReadOnly(true);
    handle(Button1, &QPushButton::clicked, this, &Tfrm_GuestSignQuery::Button1Click);
    handle(Splitter1, &QSplitter::splitterMoved, this, &Tfrm_GuestSignQuery::Splitter1Moved);
}

void Tfrm_GuestSignQuery::FormCreate()
{
    Tfrm_BasicBoot::FormCreate();
    cds1->setRemoteServer(dm_GlobalData->SecondConnection);
}

void Tfrm_GuestSignQuery::FormShow() { SetWorkContext(DataView1, cds, Button1, nullptr); }

void Tfrm_GuestSignQuery::Splitter1Moved()
{
    if (InputList1->width() < narrowestList)
        Splitter1->setSizes({ narrowestList, Splitter1->width() - narrowestList });
}

void Tfrm_GuestSignQuery::Button1Click()
{
    const BusyCursor busy;
    cds->disableControls();
    const auto finish = qScopeGuard([this] {
        // The rows were put together here: they are the result, not edits of it.
        guarded([this] {
            if (cds->changeCount() > 0)
                cds->mergeChangeLog();
        });
        cds->enableControls();
    });
    QString bills;
    if (InputList1->CheckBox1->isChecked())
        InputList1->GetBillList(bills);
    if (bills.isEmpty())
        return;
    openStatement(cds1, signatures(bills));
    listLines();
    takeEach([](const TField &answer, const TField &) { return !answer.isNull(); });
    openStatement(cds1, problems(bills));
    markProblems();
    openStatement(cds1, entries(bills));
    takeEach([](const TField &answer, const TField &listed) { return answer.asString() != listed.asString(); });
    openStatement(cds1, positions(bills));
    takeEach([](const TField &answer, const TField &) { return answer.fieldName().compare(u"BILL_NOW_POS", Qt::CaseInsensitive) == 0; });
}

/// One row for each line that is not blank, as it stands, in the structure of the answer.
void Tfrm_GuestSignQuery::listLines()
{
    cds->setData(cds1->data());
    cds->emptyDataSet();
    for (const QString &line : InputList1->Memo1->lines()) {
        if (line.trimmed().isEmpty())
            continue;
        cds->append();
        cds->fieldByName(u"bill_code")->setAsString(line);
        cds->fieldByName(u"bl_problem")->setAsString(QStringLiteral("0"));
        cds->post();
    }
}

bool Tfrm_GuestSignQuery::locateAnswered()
{
    return cds->locate(QStringLiteral("bill_code"), { cds1->fieldByName(u"bill_code")->asString() });
}

void Tfrm_GuestSignQuery::takeEach(const std::function<bool(const TField &answer, const TField &listed)> &wanted)
{
    for (cds1->first(); !cds1->eof(); cds1->next()) {
        if (!locateAnswered())
            continue;
        cds->edit();
        for (int index = 0; index < cds1->fieldCount(); ++index) {
            const TField &answer = *cds1->field(index);
            TField &listed = *cds->fieldByName(answer.fieldName());
            if (wanted(answer, listed))
                listed.setAsString(answer.asString());
        }
        cds->post();
    }
}

void Tfrm_GuestSignQuery::markProblems()
{
    for (cds1->first(); !cds1->eof(); cds1->next()) {
        if (!locateAnswered() || cds->fieldByName(u"bl_problem")->asString() != u"0")
            continue;
        cds->edit();
        cds->fieldByName(u"bl_problem")->setAsString(QStringLiteral("1"));
        cds->post();
    }
}
