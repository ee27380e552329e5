#include "platform/connection/socket_connection.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/screen.h"
#include "tests/plugin/fake_host.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QMdiArea>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <string>

using namespace platform;

namespace {

/// The real library, loaded into a host with small code tables.
class Entry : public testing::Test {
protected:
    Entry() { Application->setSettingsDirectory(m_settings.path()); }
    void load()
    {
        m_library = std::make_unique<TLibrary>(QStringLiteral(KELVARA_PLUGIN));
        m_exec = reinterpret_cast<ExecFunction>(m_library->resolve("exec"));
    }
    QStringList exec(const char *formName)
    {
        m_host.log.clear();
        QObject *const connections[] = { &m_first, &m_second };
        m_exec(Application, Screen, connections, 1, formName);
        return m_host.log;
    }
    ~Entry() override
    {
        m_host.mdiArea()->closeAllSubWindows();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QTemporaryDir m_settings;
    TSocketConnectionEx m_first;
    TSocketConnectionEx m_second;
    std::unique_ptr<TLibrary> m_library;
    FakeHost m_host;
    ExecFunction m_exec = nullptr;
};

TEST_F(Entry, AMissingHostDataSetMakesTheLoadFailAndLeavesNothing)
{
    m_host.removeDataSet(u"area");
    try {
        load();
        ADD_FAILURE() << "loaded";
    } catch (const Exception &exception) {
        EXPECT_EQ(exception.message(), QStringLiteral("全局数据集\"area\"不存在！"));
    }
    m_host.addDataSet("area", "AREA_NAME", {});
    load();
    EXPECT_FALSE(exec("frm_ScanContrast101").isEmpty());
}

TEST_F(Entry, UnknownNamesGetTheErrorBoxAndNothingElse)
{
    load();
    const QStringList refusal(QStringLiteral("message 详细：此窗体不存在！|DLL调用|16"));
    for (const char *name : { "FRM_SCANCONTRAST101", "frm_ScanContrast", "frm_Nobody111", "101", "10", "" })
        EXPECT_EQ(exec(name), refusal) << name;
}

TEST_F(Entry, OneConnectionIsEnoughAndNoneIsSaid)
{
    load();
    // Behind the end of the list lies what no one may read.
    QObject *const connections[] = { &m_first, reinterpret_cast<QObject *>(1) };
    m_exec(Application, Screen, connections, 0, "frm_ManCome111");
    EXPECT_EQ(m_host.forms().size(), 1);
    for (QObject *const *none : { static_cast<QObject *const *>(nullptr), std::data(connections) }) {
        m_host.log.clear();
        m_exec(Application, Screen, none, -1, "frm_ManSend111");
        EXPECT_EQ(m_host.log, QStringList(QStringLiteral("message 详细：因为没有给出数据库连接！调用失败！|DLL调用|16")));
    }
    EXPECT_EQ(m_host.forms().size(), 1);
}

TEST_F(Entry, ASecondCallBringsTheScreenForwardWithItsFirstRights)
{
    load();
    exec("frm_ScanContrast101");
    ASSERT_EQ(m_host.forms().size(), 1);
    TForm *form = m_host.forms().first();
    EXPECT_EQ(exec("frm_ScanContrast011"), QStringList());
    EXPECT_EQ(m_host.forms(), QList<TForm *>({ form }));
    EXPECT_TRUE(form->property("Right1").toBool());
    EXPECT_FALSE(form->property("Right2").toBool());
    EXPECT_TRUE(form->property("Right3").toBool());
}

TEST_F(Entry, AScreenThatCannotBeCreatedIsReportedAndCanBeOpenedLater)
{
    load();
    m_host.removeDataSet(u"GoodsType");
    EXPECT_EQ(exec("frm_ScanContrast111").last(), QStringLiteral("message 详细：因为全局数据集\"GoodsType\"不存在！调用失败！|DLL调用|16"));
    EXPECT_TRUE(m_host.forms().isEmpty());
    m_host.addDataSet("GoodsType", "GOODS_NAME", {});
    exec("frm_ScanContrast111");
    EXPECT_EQ(m_host.forms().size(), 1);
}

TEST_F(Entry, AnotherConnectionIsTakenOverByTheNextScreen)
{
    load();
    exec("frm_ScanContrast111");
    const auto serverOf = [](const TForm *form) { return qobject_cast<TClientDataSetEx *>(form->findComponent(u"cds2"))->remoteServer(); };
    EXPECT_EQ(serverOf(m_host.forms().first()), &m_first);
    m_host.mdiArea()->closeAllSubWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    TSocketConnectionEx other;
    QObject *const connections[] = { &other, &m_second };
    m_exec(Application, Screen, connections, 1, "frm_ScanContrast111");
    EXPECT_EQ(serverOf(m_host.forms().first()), &other);
    m_host.mdiArea()->closeAllSubWindows();
}

TEST_F(Entry, EveryScreenFitsTheSmallestScreenThatIsInUse)
{
    load();
    m_host.resize(1024, 700);
    m_host.show();
    // Other screens ask a server when they open.
    for (const char *screen : { "frm_ScanContrast", "frm_GuestSignQuery", "frm_ManCome", "frm_ManSend", "frm_SendNextUnCome",
             "frm_ComeDispContrast", "frm_RecSendContrast", "frm_BillContrastScan", "frm_BillContrastSiteCome", "frm_MonthSendBill",
             "frm_MonthRecBill", "frm_MonthCalc", "frm_AuditingQuery" }) {
        const QStringList said = exec((std::string(screen) + "111").c_str());
        const TForm *form = m_host.activeForm();
        ASSERT_EQ(form->objectName().toStdString(), screen) << said.join(u'\n').toStdString();
        QCoreApplication::processEvents();
        EXPECT_LE(form->parentWidget()->minimumSizeHint().width(), m_host.mdiArea()->viewport()->width()) << screen;
        const auto *panel = qobject_cast<QWidget *>(form->findComponent(u"Panel1"));
        if (!panel)
            continue;
        // The conditions leave room for rows.
        EXPECT_LT(panel->height(), 330) << screen;
        for (const QWidget *field : panel->findChildren<QWidget *>()) {
            if (field->isVisible()) {
                EXPECT_LE(field->mapTo(form, field->rect().bottomRight()).x(), form->width()) << screen;
            }
        }
    }
}

TEST_F(Entry, ACollapsedConditionPanelOpensAgainWithTheMouse)
{
    load();
    m_host.resize(1400, 900);
    m_host.show();
    for (const char *screen : { "frm_ScanContrast111", "frm_MonthSendBill111", "frm_SendNextUnCome111", "frm_BillContrastScan111" }) {
        exec(screen);
        const TForm *form = m_host.activeForm();
        auto *panel = qobject_cast<QWidget *>(form->findComponent(u"Panel1"));
        auto *workPanel = qobject_cast<QWidget *>(form->findComponent(u"WorkPanel1"));
        QCoreApplication::processEvents();
        const int height = panel->height();
        const auto click = [&] {
            const QPoint place = workPanel->mapTo(&m_host, workPanel->rect().center());
            QTest::mouseClick(m_host.windowHandle(), Qt::LeftButton, {}, place);
            QCoreApplication::processEvents();
        };
        EXPECT_GT(height, 80) << screen;
        click();
        EXPECT_EQ(panel->height(), 10) << screen;
        EXPECT_TRUE(panel->rect().contains(workPanel->geometry())) << screen;
        EXPECT_EQ(workPanel->visibleRegion().boundingRect(), workPanel->rect()) << screen;
        click();
        EXPECT_EQ(panel->height(), height) << screen;
    }
}

/// What a load leaves behind shows in the sanitizers' build.
TEST_F(Entry, LoadsAndUnloadsAHundredTimes)
{
    for (int time = 0; time < 100; ++time) {
        load();
        EXPECT_FALSE(exec("frm_MonthSendBill111").isEmpty());
        m_host.mdiArea()->closeAllSubWindows();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ASSERT_TRUE(m_host.forms().isEmpty());
        m_library.reset();
    }
}

TEST_F(Entry, UnloadingGivesTheHostItsObjectsBack)
{
    TApplication *const application = Application;
    TScreen *const screen = Screen;
    load();
    TApplication otherApplication;
    TScreen otherScreen;
    otherApplication.setMainForm(&m_host);
    otherApplication.setMessageResponder([](const MessageRequest &) { return idOk; });
    QObject *const connections[] = { &m_first, &m_second };
    m_exec(&otherApplication, &otherScreen, connections, 1, "nothing");
    EXPECT_EQ(Application, &otherApplication);
    EXPECT_EQ(Screen, &otherScreen);
    m_library.reset();
    EXPECT_EQ(Application, application);
    EXPECT_EQ(Screen, screen);
}

} // namespace
