#include "client/site_dialog.h"

#include "client/connections.h"
#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/user_settings.h"

#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

QString keyOf(const QString &user) { return u"login/site/" + user; }

QStringList allSites(const Connections &connections)
{
    TSocketConnectionEx server;
    server.setChannel(connections.host());
    TClientDataSetEx sites;
    sites.setRemoteServer(&server);
    sites.setCommandText(QStringLiteral("select a.site_name from tab_site a order by a.site_code"));
    QStringList names;
    for (sites.open(); !sites.eof(); sites.next())
        names.append(sites.fieldByName(u"SITE_NAME")->asString());
    return names;
}

} // namespace

SiteDialog::SiteDialog(const QStringList &sites, const QString &user, QWidget *parent)
    : QDialog(parent)
    , m_user(user)
    , m_sites(sites)
    , m_box(new QComboBox(this))
{
    setWindowTitle(QStringLiteral("登录网点"));
    m_box->setEditable(true);
    m_box->setInsertPolicy(QComboBox::NoInsert);
    m_box->addItems(sites);
    m_box->completer()->setFilterMode(Qt::MatchContains);
    m_box->completer()->setCompletionMode(QCompleter::PopupCompletion);
    m_box->setCurrentIndex(std::max(0, m_box->findText(userSetting(keyOf(user)).toString())));
    auto *const buttons = new QDialogButtonBox(this);
    m_enter = buttons->addButton(QStringLiteral("进入"), QDialogButtonBox::AcceptRole);
    buttons->addButton(QStringLiteral("退出"), QDialogButtonBox::RejectRole);
    auto *const form = new QFormLayout(this);
    form->addRow(QStringLiteral("在哪个网点工作"), m_box);
    form->addRow(buttons);
    handle(buttons, &QDialogButtonBox::accepted, this, &SiteDialog::take);
    handle(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    handle(m_box, &QComboBox::editTextChanged, this, [this] { m_enter->setEnabled(m_sites.contains(site())); });
    setMinimumWidth(400);
    m_box->lineEdit()->selectAll();
}

QString SiteDialog::site() const { return m_box->currentText().trimmed(); }

void SiteDialog::take()
{
    keepUserSetting(keyOf(m_user), site());
    accept();
}

QStringList sitesToChoose(const Connections &connections)
{
    const server_client::Account &account = *connections.account();
    if (!account.site.empty())
        return {};
    QStringList sites;
    if (account.sites)
        for (const std::string &site : *account.sites)
            sites.append(QString::fromStdString(site));
    else
        sites = allSites(connections);
    return sites.size() > 1 ? sites : QStringList();
}

} // namespace client
