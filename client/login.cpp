#include "client/login.h"

#include "client/options.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/user_settings.h"
#include "server_client/account.h"

#include <QFile>

using namespace platform;

namespace client {
namespace {

const QString defaultSite = QStringLiteral("北京");
const QString userKey = QStringLiteral("login/user");

QStringList textsOf(const std::vector<std::string> &texts)
{
    QStringList list;
    for (const std::string &text : texts)
        list.append(QString::fromStdString(text));
    return list;
}

QString listOf(const QStringList &sites)
{
    QStringList quoted;
    for (QString site : sites)
        quoted.append(u'\'' + site.replace(QStringLiteral("'"), QStringLiteral("''")) + u'\'');
    return quoted.isEmpty() ? QString() : u'(' + quoted.join(u',') + u')';
}

QString siteOf(const QString &wanted, const QString &own, const QStringList &sites)
{
    if (!own.isEmpty()) {
        if (!wanted.isEmpty() && wanted != own)
            throw Exception(QStringLiteral("帐户的登录网点是“%1”，不能改为“%2”。请去掉 --login-site，或联系管理员。").arg(own, wanted));
        return own;
    }
    if (!wanted.isEmpty() && !sites.isEmpty() && !sites.contains(wanted))
        throw Exception(QStringLiteral("帐户不能在网点“%1”登录，可以用 --login-site 选择 %2。").arg(wanted, sites.join(u'、')));
    if (!wanted.isEmpty())
        return wanted;
    return sites.isEmpty() ? defaultSite : sites.first();
}

} // namespace

Login Login::of(const Options &options)
{
    return { .user = options.user, .employeeCode {}, .employeeName {}, .site = siteOf(options.loginSite, {}, {}), .userSite {} };
}

Login Login::of(const Options &options, const server_client::Account &account)
{
    const QStringList sites = account.sites ? textsOf(*account.sites) : QStringList();
    Login login { .user = QString::fromStdString(account.user),
        .employeeCode = QString::fromStdString(account.employeeCode),
        .employeeName = QString::fromStdString(account.employeeName),
        .site = siteOf(options.loginSite, QString::fromStdString(account.site), sites),
        .userSite = listOf(sites),
        .screens {} };
    for (const auto &[screen, rights] : account.screens)
        login.screens.insert(QString::fromStdString(screen), QString::fromStdString(rights));
    return login;
}

QString Login::rightsTo(const QString &screen) const { return screens.value(screen, screens.value(QStringLiteral("*"))); }

QString Login::permitted(const QString &formName) const
{
    const qsizetype nameSize = std::max<qsizetype>(0, formName.size() - rightsSize);
    const QString granted = rightsTo(formName.left(nameSize));
    if (granted.size() != rightsSize)
        return {};
    QString permitted = formName;
    for (qsizetype at = nameSize; at < permitted.size(); ++at)
        if (permitted[at] == u'1' && granted[at - nameSize] != u'1')
            permitted[at] = u'0';
    return permitted;
}

std::optional<QString> givenPassword(const Options &options)
{
    if (options.passwordFile.isEmpty())
        return qEnvironmentVariableIsSet("KELVARA_PASSWORD") ? std::optional(qEnvironmentVariable("KELVARA_PASSWORD")) : std::nullopt;
    QFile file(options.passwordFile);
    if (!file.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("密码文件“%1”打不开：").arg(options.passwordFile) + file.errorString() + u"。");
    QString password = QString::fromUtf8(file.readLine());
    while (password.endsWith(u'\n') || password.endsWith(u'\r'))
        password.chop(1);
    return password;
}

QString rememberedUser() { return userSetting(userKey).toString(); }
void rememberUser(const QString &user) { keepUserSetting(userKey, user); }

} // namespace client
