#include "plugin/view/udm_Print.h"

#include "platform/toolkit/handler.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/refusal.h"
#include "platform/toolkit/screen.h"
#include "plugin/data/host_data.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>

using namespace platform;

Tdm_Print *dm_Print = nullptr;

namespace {

const QString refusalTitle = QStringLiteral("打印报表");

void record(const QString &fileName, const report::PreparedReport &prepared)
{
    QVariantMap memos;
    const QMap<QString, QString> texts = prepared.namedTexts();
    for (auto text = texts.begin(); text != texts.end(); ++text)
        memos.insert(text.key(), text.value());
    Application->record(QStringLiteral("print"), { { QStringLiteral("file"), fileName }, { QStringLiteral("memos"), memos } });
}

} // namespace

Tdm_Print::Tdm_Print()
{
    frReport->setDataSet(frDBDataSet);
    frReport->setPreviewButtons(report::allPreviewButtons);
    frReport->setAddIns({ frBarCodeObject, frChartObject });
    frReport->setExportFilters({ frTextExport, frCSVExport, frOLEExcelExport, frRtfAdvExport, frJPEGExport, frHTMLTableExport });
    DataModuleCreate();
}

void Tdm_Print::DataModuleCreate()
{
    Site = GlobalValueAddr(QStringLiteral("site"));
    EmployeeName = GlobalValueAddr(QStringLiteral("employeeName"));
    EmployeeCode = GlobalValueAddr(QStringLiteral("employeeCode"));
    CompanyName = GlobalValueAddr(QStringLiteral("CompanyName"));
}

void Tdm_Print::PrintReport(TDataSet *DataSet, const QString &FileName, const std::function<void()> &Hook)
{
    if (!DataSet->active() || DataSet->isEmpty()) {
        refuse(u"没有可打印的数据！", refusalTitle);
        return;
    }
    const QString path = QDir::toNativeSeparators(Application->directory() + u"/Report/" + FileName);
    if (!QFileInfo::exists(path)) {
        refuse(QStringLiteral("报表文件\"%1\"不存在！").arg(path), refusalTitle);
        return;
    }
    const BusyCursor busy;
    DataSet->disableControls();
    const TDataSet::Bookmark current = DataSet->bookmark();
    const auto finish = qScopeGuard([&] {
        guarded([&] { DataSet->gotoBookmark(current); });
        DataSet->enableControls();
    });
    guarded([&] {
        frDBDataSet->setDataSet(DataSet);
        frReport->loadFromFile(path);
        if (const QString summaryRow = DataSet->property(published_by_screen::summaryRow).toString(); !summaryRow.isEmpty())
            frReport->addNote(u"汇总行：" + summaryRow);
        FillReportHeader();
        if (Hook)
            Hook();
        frReport->prepareReport();
        frReport->showPreview(QApplication::activeWindow());
        record(FileName, *frReport->prepared());
    });
}

void Tdm_Print::append(QStringView object, const QString &value)
{
    if (report::ReportObject *memo = frReport->findObject(object))
        memo->setText(memo->text().trimmed() + report::ReportObject::literal(value));
}

void Tdm_Print::FillReportHeader()
{
    if (report::ReportObject *title = frReport->findObject(u"ReportTitle"))
        title->setText(report::ReportObject::literal(CompanyName) + title->text().trimmed());
    QString pageNumber = QStringLiteral("第[PAGE#]页/共[TOTALPAGES]页");
    if (const QString notice = frDBDataSet->dataSet()->truncationNotice(); !notice.isEmpty()) {
        append(u"ReportTitle", u"（" + notice + u'）');
        pageNumber.prepend(report::ReportObject::literal(notice) + u'　');
    }
    append(u"PrintMan", EmployeeName + u'(' + EmployeeCode + u')');
    append(u"PrintSite", Site);
    append(u"PrintDateTime", GetServerDateTime().toString(u"yyyy-MM-dd hh:mm:ss"));
    if (report::ReportObject *page = frReport->findObject(u"PrintPage"))
        page->setText(pageNumber);
}
