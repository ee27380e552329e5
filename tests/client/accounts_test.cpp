// A window over a server, as the account allows it, and what becomes of it when the login ends.

#include "client/connections.h"
#include "client/login_dialog.h"
#include "client/main_window.h"
#include "client/options.h"
#include "client/password_dialog.h"
#include "client/site_dialog.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/published.h"
#include "tests/client/host_tables.h"
#include "tests/server/test_server.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>

using namespace client;
using namespace platform;
using server::test::becomesTrue;
using server::test::TestServer;

namespace {

/// Waits for the dialogs in turn and does with each what a person would.
class PersonAtDialogs : public QObject {
public:
    PersonAtDialogs()
    {
        connect(&m_timer, &QTimer::timeout, this, &PersonAtDialogs::look);
        m_timer.start(20);
    }
    ~PersonAtDialogs() override { EXPECT_TRUE(m_steps.empty()) << m_steps.size() << " dialogs have not come"; }
    /// Fills the visible fields of the next dialog of that class and presses a button; `reason`: what it must say before.
    template <class Dialog>
    void expect(const QStringList &texts, const QString &button, const QString &reason = {})
    {
        m_steps.push_back([=, this](QWidget *dialog) {
            if (!qobject_cast<Dialog *>(dialog) || !says(dialog, reason))
                return false;
            QList<QLineEdit *> fields;
            for (auto *field : dialog->findChildren<QLineEdit *>())
                if (field->isVisible())
                    fields.append(field);
            EXPECT_EQ(fields.size(), texts.size());
            for (qsizetype at = 0; at < std::min(fields.size(), texts.size()); ++at)
                fields[at]->setText(texts[at]);
            for (auto *choice : dialog->findChildren<QPushButton *>())
                if (choice->text() == button)
                    QTimer::singleShot(0, choice, &QPushButton::click);
            return true;
        });
    }

private:
    static bool says(const QWidget *dialog, const QString &reason)
    {
        for (const auto *label : dialog->findChildren<QLabel *>())
            if (label->isVisible() && label->text().contains(reason))
                return true;
        return false;
    }
    void look()
    {
        QWidget *const dialog = QApplication::activeModalWidget();
        if (dialog && !longWorkRuns() && !m_steps.empty() && m_steps.front()(dialog))
            m_steps.pop_front();
    }

    QTimer m_timer;
    std::deque<std::function<bool(QWidget *)>> m_steps;
};

class AccountsTest : public testing::Test {
protected:
    AccountsTest()
        : m_database(hostTables)
        , m_server([this](server::Configuration &configuration) { configuration.databases.front().url = m_database.url(); })
    {
        m_options.servers.append(QStringLiteral("https://127.0.0.1:%1").arg(m_server.port()));
        m_options.serverCertificate = QString::fromStdString(m_server.configuration().certificate.string());
        m_options.pluginDirectory = QStringLiteral(HOST_PLUGIN_DIRECTORY);
        Application->setSettingsDirectory(m_settings.path());
        Application->setMessageResponder([this](const MessageRequest &request) {
            m_messages.append(request.text);
            return m_answer;
        });
    }
    ~AccountsTest() override
    {
        Application->setMessageResponder({});
        Application->setSettingsDirectory(Application->directory());
    }

    void user(const std::string &command, const std::vector<std::string> &fields, const std::string &secret = {})
    {
        server::test::runUser(m_server.configuration().users, command, "ann", secret, fields);
    }
    /// Waits until the server knows what the last user() has changed.
    void waitUntil(const std::string &part)
    {
        ASSERT_TRUE(becomesTrue(
            [&] { return server::test::logIn(m_server.port(), "ann", server::test::password).body.find(part) != std::string::npos; }));
    }
    std::unique_ptr<MainWindow> open()
    {
        m_connections = Connections::prepareServers(m_options);
        m_connections->login(QStringLiteral("ann"), QString::fromUtf8(server::test::password));
        auto window = std::make_unique<MainWindow>(m_options, m_connections);
        window->show();
        return window;
    }
    /// Asks the server as any screen does.
    static void ask(const MainWindow &window)
    {
        auto *dataSet = qobject_cast<TClientDataSetEx *>(publishedList(&window, "GlobalCdsAddr").first());
        dataSet->close();
        dataSet->open();
    }
    static QString published(const MainWindow &window, const QString &name)
    {
        for (const QObject *value : publishedList(&window, "GlobalValueAddr"))
            if (value->objectName() == name)
                return value->property("text").toString();
        return QStringLiteral("none");
    }
    static QStringList commands(const MainWindow &window)
    {
        QStringList texts;
        for (const QAction *action : window.findChildren<QAction *>())
            texts.append(action->text());
        return texts;
    }
    /// What it throws.
    template <class Call>
    static QString failureOf(Call &&call)
    {
        try {
            call();
        } catch (const std::exception &exception) {
            return exceptionMessage(exception);
        }
        return {};
    }
    void endTheLogin()
    {
        user("passwd", {}, server::test::newPassword);
        ASSERT_TRUE(becomesTrue([&] { return server::test::logIn(m_server.port(), "ann", server::test::password).status == 401; }));
    }

    engine::test::TemporaryDatabase m_database;
    TestServer m_server;
    const QTemporaryDir m_settings;
    Options m_options;
    std::shared_ptr<Connections> m_connections;
    QStringList m_messages;
    int m_answer = idCancel;
};

const QString newPassword = QString::fromLatin1(server::test::newPassword);

} // namespace

TEST_F(AccountsTest, DecideTheSiteTheEmployeeAndTheScreens)
{
    user("set", { "site=北京", "sites=O'Neill", "employee_code=77", "employee_name=钱七", "screens=frm_ManCome=101,frm_MonthCalc" });
    waitUntil("钱七");
    const auto window = open();
    EXPECT_EQ(published(*window, QStringLiteral("site")), QStringLiteral("北京"));
    EXPECT_EQ(published(*window, QStringLiteral("userSite")), QStringLiteral("('北京','O''Neill')"));
    EXPECT_EQ(published(*window, QStringLiteral("employeeName")), QStringLiteral("钱七"));
    EXPECT_EQ(published(*window, QStringLiteral("employeeCode")), QStringLiteral("77"));
    EXPECT_TRUE(commands(*window).contains(QStringLiteral("扫描员到件统计")));
    EXPECT_FALSE(commands(*window).contains(QStringLiteral("扫描员发件统计")));

    window->openScreen(QStringLiteral("frm_ManCome111"));
    EXPECT_TRUE(window->forms().last()->property("Right1").toBool());
    EXPECT_FALSE(window->forms().last()->property("Right2").toBool()) << "no more rights than the account's";
    window->openScreen(QStringLiteral("frm_MonthCalc000"));
    EXPECT_FALSE(window->forms().last()->property("Right1").toBool());
    for (const QString &screen : { QStringLiteral("frm_ManSend111"), QStringLiteral("frm_ManCome"), QStringLiteral("111"), QString() })
        EXPECT_TRUE(failureOf([&] { window->openScreen(screen); }).contains(QStringLiteral("权限"))) << screen.toStdString();
    EXPECT_EQ(window->forms().size(), 2);
    EXPECT_THAT(m_server.auditLines("screen", 4).front(), testing::HasSubstr("\"user\":\"ann\""));

    m_options.loginSite = QStringLiteral("上海");
    EXPECT_TRUE(failureOf([&] { open(); }).contains(QStringLiteral("北京")));
}

TEST_F(AccountsTest, WithoutASiteOfItsOwnChoosesOneOfItsSites)
{
    user("set", { "sites=上海,O'Neill" });
    waitUntil("上海");
    EXPECT_EQ(published(*open(), QStringLiteral("site")), QStringLiteral("上海"));
    m_options.loginSite = QStringLiteral("O'Neill");
    EXPECT_EQ(published(*open(), QStringLiteral("site")), QStringLiteral("O'Neill"));
    m_options.loginSite = QStringLiteral("北京");
    EXPECT_TRUE(failureOf([&] { open(); }).contains(QStringLiteral("上海")));
    user("set", { "sites=*", "row_rules=off" });
    waitUntil("\"sites\":\"*\"");
    EXPECT_EQ(published(*open(), QStringLiteral("userSite")), QString());
}

TEST_F(AccountsTest, ALoginThatEndsIsTakenUpAgainOverTheScreens)
{
    const auto window = open();
    window->openScreen(QStringLiteral("frm_One111"));
    window->query();
    endTheLogin();
    {
        PersonAtDialogs person;
        person.expect<LoginDialog>(
            { QStringLiteral("ann"), QStringLiteral("falsch") }, QStringLiteral("登录"), QStringLiteral("密码已经更改"));
        person.expect<LoginDialog>({ QStringLiteral("ann"), newPassword }, QStringLiteral("登录"), QStringLiteral("用户名或密码不正确"));
        EXPECT_EQ(failureOf([&] { ask(*window); }), QString());
    }
    EXPECT_EQ(window->forms().size(), 1);
    EXPECT_EQ(window->forms().first()->findChild<TClientDataSetEx *>()->recordCount(), 1200) << "with its rows";
    user("set", { "locked=yes" });
    PersonAtDialogs person;
    person.expect<LoginDialog>({ QStringLiteral("ann"), QString() }, QStringLiteral("取消"), QStringLiteral("停用"));
    ASSERT_TRUE(becomesTrue([&] { return m_server.query("select site_name from TAB_SITE").status == 401; }));
    EXPECT_TRUE(failureOf([&] { ask(*window); }).contains(QStringLiteral("停用")));
    EXPECT_EQ(window->forms().size(), 1) << "what is there can still be read";
}

TEST_F(AccountsTest, SomebodyElseIsAskedBeforeTheScreensAreClosed)
{
    const auto window = open();
    window->openScreen(QStringLiteral("frm_One111"));
    endTheLogin();
    PersonAtDialogs person;
    const QString bobsPassword = QString::fromUtf8(server::test::password);
    person.expect<LoginDialog>({ QStringLiteral("bob"), bobsPassword }, QStringLiteral("登录"));
    person.expect<LoginDialog>({ QStringLiteral("bob"), bobsPassword }, QStringLiteral("取消"));
    EXPECT_NE(failureOf([&] { ask(*window); }), QString()) << "no was the answer";
    ASSERT_EQ(m_messages.size(), 1);
    EXPECT_EQ(m_connections->user(), QStringLiteral("ann"));

    m_answer = idOk;
    person.expect<LoginDialog>({ QStringLiteral("bob"), bobsPassword }, QStringLiteral("登录"));
    QTimer::singleShot(0, window.get(), [&] { EXPECT_THROW(ask(*window), Abort); });
    EXPECT_EQ(QApplication::exec(), MainWindow::anotherUser);
    EXPECT_EQ(m_connections->user(), QStringLiteral("bob"));
}

TEST_F(AccountsTest, APersonNamesTheServersAndChoosesOneOfTheSites)
{
    user("set", { "sites=上海,O'Neill" });
    waitUntil("上海");
    Connections none;
    LoginDialog dialog(none, {});
    dialog.offerServers([this](const QStringList &servers) {
        Options options = m_options;
        options.servers = servers;
        return Connections::prepareServers(options);
    });
    const QString address = m_options.servers.first();
    const QString password = QString::fromUtf8(server::test::password);
    PersonAtDialogs person;
    person.expect<LoginDialog>({ QStringLiteral("ann"), password, QStringLiteral("https://127.0.0.1:1") }, QStringLiteral("登录"));
    person.expect<LoginDialog>({ QStringLiteral("ann"), password, address }, QStringLiteral("登录"), QStringLiteral("127.0.0.1:1"));
    ASSERT_EQ(dialog.exec(), int(QDialog::Accepted));
    ASSERT_TRUE(dialog.namedConnections());
    EXPECT_EQ(dialog.namedConnections()->place(), address);

    const QStringList sites = sitesToChoose(*dialog.namedConnections());
    EXPECT_EQ(sites, (QStringList { QStringLiteral("上海"), QStringLiteral("O'Neill") }));
    SiteDialog choice(sites, QStringLiteral("ann"));
    person.expect<SiteDialog>({ QStringLiteral("O'Neill") }, QStringLiteral("进入"));
    EXPECT_EQ(choice.exec(), int(QDialog::Accepted));
    EXPECT_EQ(choice.site(), QStringLiteral("O'Neill"));
    EXPECT_EQ(SiteDialog(sites, QStringLiteral("ann")).site(), QStringLiteral("O'Neill")) << "as the last time";
    EXPECT_EQ(SiteDialog(sites, QStringLiteral("bob")).site(), QStringLiteral("上海"));

    user("set", { "sites=*", "row_rules=off" });
    waitUntil("\"sites\":\"*\"");
    dialog.namedConnections()->login(QStringLiteral("ann"), password);
    EXPECT_TRUE(sitesToChoose(*dialog.namedConnections()).contains(QStringLiteral("北京"))) << "all that the server has";
    user("set", { "site=北京" });
    waitUntil("\"site\":\"北京\"");
    dialog.namedConnections()->login(QStringLiteral("ann"), password);
    EXPECT_TRUE(sitesToChoose(*dialog.namedConnections()).isEmpty()) << "the account has one of its own";
}

TEST_F(AccountsTest, TheCentreHandsSettingsOutAndRefusesOldClients)
{
    const TestServer server([this](server::Configuration &configuration) {
        configuration.databases.front().url = m_database.url();
        configuration.clients = { .smallestVersion = "1.10.0", .settings = { { "theme", "dark" } } };
    });
    m_options.servers = { QStringLiteral("https://127.0.0.1:%1").arg(server.port()) };
    m_options.serverCertificate = QString::fromStdString(server.configuration().certificate.string());
    const auto connections = Connections::prepareServers(m_options);
    const auto login = [&] { connections->login(QStringLiteral("ann"), QString::fromUtf8(server::test::password)); };
    QCoreApplication::setApplicationVersion(QStringLiteral("1.9.2"));
    const QString refusal = failureOf(login);
    EXPECT_TRUE(refusal.contains(QStringLiteral("请升级到 1.10.0"))) << refusal.toStdString();
    EXPECT_TRUE(refusal.contains(QStringLiteral("1.9.2")));
    EXPECT_FALSE(connections->account()) << "it is not let in";
    QCoreApplication::setApplicationVersion(QStringLiteral("1.10.0"));
    EXPECT_EQ(failureOf(login), QString());
    EXPECT_EQ(connections->account()->settings.at("theme"), "dark");
    QCoreApplication::setApplicationVersion({});
}

TEST_F(AccountsTest, TheFirstLoginAsksForANewPassword)
{
    user("set", { "must_change=yes" });
    waitUntil("password\":true");
    const auto connections = Connections::prepareServers(m_options);
    LoginDialog dialog(*connections, QStringLiteral("ann"));
    const QString first = QString::fromUtf8(server::test::password);
    PersonAtDialogs person;
    person.expect<LoginDialog>({ QStringLiteral("ann"), first }, QStringLiteral("登录"));
    person.expect<PasswordDialog>({ newPassword, QStringLiteral("another one") }, QStringLiteral("修改"));
    person.expect<PasswordDialog>({ first, first }, QStringLiteral("修改"), QStringLiteral("不同"));
    person.expect<PasswordDialog>({ newPassword, newPassword }, QStringLiteral("修改"), QStringLiteral("不能与原密码相同"));
    EXPECT_EQ(dialog.exec(), int(QDialog::Accepted));
    EXPECT_FALSE(connections->account()->mustChangePassword);
    EXPECT_TRUE(connections->serverTime().isValid());
    for (const auto *field : dialog.findChildren<QLineEdit *>())
        EXPECT_FALSE(field->text() == first || field->text() == newPassword);
    connections->logout();
    EXPECT_EQ(m_server.auditLines("logout", 1).size(), 1U);
}
