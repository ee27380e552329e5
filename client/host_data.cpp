#include "client/host_data.h"

#include "client/login.h"

#include <QLineEdit>

#include <algorithm>

namespace client {
namespace {

struct HostDataSet {
    QStringView name;
    QStringView statement; ///< %1 stands for the login site, quoted
};

constexpr HostDataSet hostDataSets[] = {
    { u"loginSite", u"select a.* from tab_site a where a.site_name=%1" },
    { u"loginSiteOwner", u"select a.* from tab_site a where a.site_name=%1 or a.superior_site=%1 order by a.site_code" },
    { u"site", u"select a.* from tab_site a order by a.site_code" },
    { u"AllSite", u"select a.* from tab_site a order by a.site_code" },
    { u"loginSiteEmployeeOwner",
        u"select a.employee_code,a.employee_name,a.owner_site,a.dept_name from tab_employee a where a.owner_site=%1 order by "
        u"a.employee_code" },
    { u"ownerCustomer", u"select a.* from tab_customer a where a.owner_site=%1 order by a.customer_code" },
    { u"scanType", u"select a.* from tab_scan_type a order by a.type_code" },
    { u"Class", u"select a.* from tab_class a order by a.class_code" },
    { u"GoodsType", u"select a.* from tab_goods_type a order by a.goods_code" },
    { u"FastType", u"select a.* from tab_fast_type a order by a.type_code" },
    { u"problem", u"select a.* from tab_problem_type a order by a.problem_code" },
    { u"QuoteData", u"select a.* from tab_quote_data a order by a.quote_code" },
    { u"area", u"select a.* from tab_area a order by a.area_code" },
};

QString quoted(QString text) { return u'\'' + text.replace(QStringLiteral("'"), QStringLiteral("''")) + u'\''; }

} // namespace

void HostData::load(TCustomRemoteServer *connection, const Login &login, QWidget *owner)
{
    for (const HostDataSet &row : hostDataSets)
        addDataSet(row.name.toString(), row.statement.toString().replace(QStringLiteral("%1"), quoted(login.site)), connection, owner);
    if (dataSet(u"loginSite")->isEmpty())
        throw Exception(QStringLiteral("没有名为“%1”的网点，请用 --login-site 选择别的网点登录；帐户的网点由管理员更改。").arg(login.site));
    addValue(QStringLiteral("site"), login.site, owner);
    addValue(QStringLiteral("userSite"), login.userSite, owner);
    publishEmployee(login, owner);

    TClientDataSetEx settings;
    settings.setRemoteServer(connection);
    settings.setCommandText(QStringLiteral("select a.name,a.value from tab_global_value a"));
    for (settings.open(); !settings.eof(); settings.next())
        addValue(settings.fieldByName(u"NAME")->asString(), settings.fieldByName(u"VALUE")->asString(), owner);
}

/// The account's employee; without one, who has the user's name or code in the list of the site.
void HostData::publishEmployee(const Login &login, QWidget *owner)
{
    TClientDataSetEx *employees = dataSet(u"loginSiteEmployeeOwner");
    const auto isEmployee = [&](const QString &field) { return employees->locate(field, { login.user }); };
    QString code = login.employeeCode;
    m_employeeName = login.employeeName.isEmpty() ? login.user : login.employeeName;
    if (login.employeeName.isEmpty() && code.isEmpty()) {
        const bool employed = login.user.isEmpty()
            ? !employees->isEmpty()
            : isEmployee(QStringLiteral("EMPLOYEE_NAME")) || isEmployee(QStringLiteral("EMPLOYEE_CODE"));
        if (employed) {
            m_employeeName = employees->fieldByName(u"EMPLOYEE_NAME")->asString();
            code = employees->fieldByName(u"EMPLOYEE_CODE")->asString();
        }
        employees->first();
    }
    addValue(QStringLiteral("employeeName"), m_employeeName, owner);
    addValue(QStringLiteral("employeeCode"), code, owner);
}

TClientDataSetEx *HostData::dataSet(QStringView name) const
{
    const auto found
        = std::find_if(m_dataSets.begin(), m_dataSets.end(), [name](const QObject *item) { return item->objectName() == name; });
    return static_cast<TClientDataSetEx *>(*found);
}

QString HostData::value(QStringView name) const
{
    const auto found = std::find_if(m_values.begin(), m_values.end(), [name](const QObject *item) { return item->objectName() == name; });
    return found == m_values.end() ? QString() : static_cast<const QLineEdit *>(*found)->text();
}

void HostData::addDataSet(const QString &name, const QString &statement, TCustomRemoteServer *connection, QWidget *owner)
{
    auto *dataSet = new TClientDataSetEx(owner);
    dataSet->setObjectName(name);
    dataSet->setRemoteServer(connection);
    dataSet->setCommandText(statement);
    dataSet->open();
    m_dataSets.append(dataSet);
}

void HostData::addValue(const QString &name, const QString &text, QWidget *owner)
{
    auto *value = new QLineEdit(text, owner);
    value->setObjectName(name);
    value->hide();
    m_values.append(value);
}

} // namespace client
