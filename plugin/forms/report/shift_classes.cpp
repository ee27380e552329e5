#include "plugin/forms/report/shift_classes.h"

using namespace platform;
using namespace plugin;

namespace plugin {

namespace {

/// The three columns of a class of shifts.
GridColumns classColumns(const char *count, const char *weight, const char *fee, QStringView title)
{
    return {
        number(count, QString(title + u"|票数"), 70).sum(u"总票数"),
        number(weight, QString(title + u"|重量"), 70).sum(u"总重量"),
        money(fee, QString(title + u"|中转费"), 80).sum(u"总金额"),
    };
}

QString sumsOfClass(const QString &shift, QStringView code)
{
    return u"sum((case nvl(a.class,'*') when '" + shift
        + u"' then nvl(case when SUB_BILL_CODE is null then a.WEIGHT else 0 end,0) else 0 "
          "end)) as WEIGHT"
        + code + u",sum((case nvl(a.class,'*') when '" + shift + u"' then  1  else 0 end)) as bill_count" + code
        + u",sum((case nvl(a.class,'*') when '" + shift
        + u"' then  nvl(TRANSFER_OR_DISPATCH_FEE,0) else 0 end)) as TRANSFER_OR_DISPATCH_FEE" + code + u',';
}

} // namespace

GridColumns shiftClassColumns()
{
    return classColumns("bill_count64", "WEIGHT64", "TRANSFER_OR_DISPATCH_FEE64", u"班车")
        + classColumns("bill_count61", "WEIGHT61", "TRANSFER_OR_DISPATCH_FEE61", u"航班")
        + classColumns("bill_count62", "WEIGHT62", "TRANSFER_OR_DISPATCH_FEE62", u"铁路")
        + classColumns("bill_count63", "WEIGHT63", "TRANSFER_OR_DISPATCH_FEE63", u"其他")
        + GridColumns {
              number("sum_bill65", u"合计|票数", 70).sum(u"总票数"),
              number("sum_weight65", u"合计|重量", 80).sum(u"总重量"),
              money("sum_fee65", u"合计|金额", 90).sum(u"总金额"),
          };
}

QString shiftClassSums()
{
    return sumsOfClass(QStringLiteral("班车"), u"64") + sumsOfClass(QStringLiteral("航班"), u"61")
        + sumsOfClass(QStringLiteral("铁路"), u"62")
        + u"sum(( case when nvl(a.class,'&') not in ('铁路','航班','班车') then nvl(case when SUB_BILL_CODE is null then a.WEIGHT else 0 "
          "end,0) else 0 end )) as WEIGHT63,sum(( case when nvl(a.class,'&') not in ('铁路','航班','班车') then  1 else 0 end)) as "
          "bill_count63,sum(( case when nvl(a.class,'&') not in ('铁路','航班','班车') then  nvl(TRANSFER_OR_DISPATCH_FEE,0) else 0 end)) "
          "as TRANSFER_OR_DISPATCH_FEE63,sum(1) as sum_bill65 ,sum(nvl(a.WEIGHT,0)) as sum_weight65,"
          "sum(nvl(a.TRANSFER_OR_DISPATCH_FEE,0)) as sum_fee65  from tab_scan_come a ";
}

QChar shiftClassOf(const QString &field)
{
    const qsizetype place = field.indexOf(u'6') + 1;
    return place > 0 && place < field.size() ? field[place] : QChar();
}

QString ofShiftClass(QChar code)
{
    switch (code.unicode()) {
    case u'1':
        return QStringLiteral(" and a.class =  '航班'");
    case u'2':
        return QStringLiteral(" and a.class = '铁路'");
    case u'3':
        return QStringLiteral(" and nvl(a.class,'*') not in ('铁路','航班','班车')");
    case u'4':
        return QStringLiteral(" and a.class = '班车'");
    default:
        return {};
    }
}

} // namespace plugin
