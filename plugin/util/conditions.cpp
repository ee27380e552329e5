#include "plugin/util/conditions.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/refusal.h"
#include "platform/toolkit/screen.h"

using namespace platform;
using namespace plugin;

namespace {

constexpr int secondsOfDay = 86'400;

struct Range {
    QDateTime start;
    QDateTime end;
};

std::optional<Range> readRange(const QString &startText, const QString &endText)
{
    try {
        return Range { textToDateTime(startText), textToDateTime(endText) };
    } catch (const Exception &) {
        return std::nullopt;
    }
}

} // namespace

namespace plugin {

} // namespace plugin

bool CheckDateRange(const QString &StartText, const QString &EndText, int MaxDays, bool ShowMessage)
{
    const auto unacceptable = [ShowMessage](const QString &reason, const QString &title) { return !ShowMessage || refuse(reason, title); };
    const std::optional<Range> range = readRange(StartText, EndText);
    if (!range)
        return unacceptable(QStringLiteral("您所输入的日期时间错误！"), QStringLiteral("日期时间格式"));
    if (range->start > range->end)
        return unacceptable(QStringLiteral("结束日期不能比开始日期还早！"), QStringLiteral("日期时间错误"));
    const int mostSeconds = MaxDays * secondsOfDay;
    if (range->start.secsTo(range->end) > mostSeconds)
        return unacceptable(QStringLiteral("结束日期不能超过开始日期\"%1\"天！").arg(MaxDays), QStringLiteral("日期时间错误"));
    return false;
}

QString GetScanTableName(const QString &ScanType)
{
    if (ScanType == u"收件")
        return QStringLiteral("TAB_SCAN_REC");
    if (ScanType == u"发件")
        return QStringLiteral("TAB_SCAN_SEND");
    if (ScanType == u"到件")
        return QStringLiteral("TAB_SCAN_COME");
    if (ScanType == u"派件")
        return QStringLiteral("TAB_SCAN_DISP");
    return QStringLiteral("TAB_SCAN_OTHER");
}

void DataSetFieldToText(TDataSet *DataSet, const QString &FieldName, const QString &Separator, QString &Text)
{
    Text.clear();
    DataSet->disableControls();
    const TDataSet::Bookmark current = DataSet->bookmark();
    DataSet->first();
    const int count = DataSet->recordCount();
    for (int index = 0; index < count; ++index) {
        Text += DataSet->fieldByName(FieldName)->asString();
        if (index != DataSet->recordCount() - 1)
            Text += Separator;
        DataSet->next();
    }
    DataSet->gotoBookmark(current);
    DataSet->enableControls();
}

void LookupComboTextExit(TDBLookupComboboxEh *Combo)
{
    const TDataSet *edited = Combo->dataSource() ? Combo->dataSource()->dataSet() : nullptr;
    if (Combo->dataSource() && !(edited && edited->isEditing()))
        return;
    if (Combo->text().isEmpty())
        return;
    auto *list = Combo->listSource() ? qobject_cast<TCustomClientDataSet *>(Combo->listSource()->dataSet()) : nullptr;
    if (list) {
        for (const QString &field : { Combo->indexField(), Combo->keyField(), Combo->listField() }) {
            if (list->locate(field, { Combo->text() })) {
                Combo->setText(list->fieldByName(Combo->keyField())->asString());
                return;
            }
        }
    }
    focusControl(Combo);
    Combo->clear();
}

namespace plugin {

QString toDate(const QString &text) { return u"to_date('" + text + u"','yyyy-mm-dd hh24:mi:ss')"; }

QString whereBetween(QStringView column, const TDBDateTimeEditEh *start, const TDBDateTimeEditEh *end)
{
    return u"where " + column + u" between " + toDate(start->text()) + u" and " + toDate(end->text());
}

QString unlessEmpty(QStringView before, const QLineEdit *edit, QStringView after)
{
    return edit->text().isEmpty() ? QString() : QString(before + edit->text() + after);
}

QString unlessAll(QStringView before, const TDBComboBoxEh *list, QStringView after)
{
    return list->text() == allItems ? QString() : QString(before + list->text() + after);
}

QString siteList(TDataSet *sites)
{
    QString names;
    DataSetFieldToText(sites, QStringLiteral("site_name"), QStringLiteral("','"), names);
    return u"('" + names + u"')";
}

void openStatement(TClientDataSetEx *dataSet, const QString &statement, int tag)
{
    dataSet->close();
    dataSet->setCommandText(statement);
    dataSet->setTag(tag);
    dataSet->open();
}

} // namespace plugin
