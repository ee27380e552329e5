#include "tests/plugin/fake_host.h"

#include "packet/builder.h"

#include <algorithm>

using namespace platform;

packet::PacketPtr textColumn(const char *field, const QStringList &values)
{
    packet::Builder builder({ { field, packet::ColumnType::Text } });
    for (const QString &value : values) {
        builder.addText(0, value.toStdString());
        builder.endRow();
    }
    return builder.finish();
}

FakeHost::FakeHost()
{
    Application->setMainForm(this);
    Application->setMessageResponder([this](const MessageRequest &request) {
        log.append(QStringLiteral("message %1|%2|%3").arg(request.text, request.title).arg(request.flags));
        return answer;
    });
    addDataSet("loginSiteEmployeeOwner", "EMPLOYEE_NAME", { QStringLiteral("张三") });
    addDataSet("ownerCustomer", "CUSTOMER_CODE", { QStringLiteral("C1") });
    addDataSet("site", "SITE_NAME", { QStringLiteral("北京"), QStringLiteral("上海") });
    addDataSet("scanType", "TYPE_NAME", { QStringLiteral("到件"), QStringLiteral("发件") });
    addDataSet("Class", "CLASS_NAME", { QStringLiteral("班车"), QStringLiteral("航班") });
    addDataSet("GoodsType", "GOODS_NAME", { QStringLiteral("文件"), QStringLiteral("包裹") });
    for (const char *name : { "problem", "QuoteData", "FastType", "loginSiteOwner" })
        addDataSet(name, "TYPE_NAME", {});
    addDataSet("AllSite", "SITE_NAME", { QStringLiteral("北京"), QStringLiteral("上海"), QStringLiteral("广州") });
    addDataSet("area", "AREA_NAME", { QStringLiteral("华北") });
    addValue("site", QStringLiteral("北京"));
}

FakeHost::~FakeHost()
{
    Application->setMessageResponder({});
    Application->setMainForm(nullptr);
}

void FakeHost::ResetSearch(QObject *grid)
{
    log.append(QStringLiteral("ResetSearch ") + (grid ? componentPath(grid) : QStringLiteral("-")));
}

qintptr FakeHost::perform(int message, quintptr form, qintptr)
{
    log.append(QString::number(message) + u' ' + reinterpret_cast<TForm *>(form)->objectName());
    return 0;
}

TClientDataSetEx *FakeHost::addDataSet(const char *name, const char *field, const QStringList &values)
{
    auto *dataSet = own(new TClientDataSetEx, name);
    dataSet->setData(textColumn(field, values));
    m_dataSets.append(dataSet);
    return dataSet;
}

void FakeHost::removeDataSet(QStringView name)
{
    m_dataSets.removeIf([name](const QObject *dataSet) { return dataSet->objectName() == name; });
}

void FakeHost::addValue(const char *name, const QString &text)
{
    auto *value = own(new QLineEdit(text), name);
    value->hide();
    m_values.append(value);
}
