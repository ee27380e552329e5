#include "guest/bill_fields.h"
#include "guest/track_window.h"
#include "platform/toolkit/application.h"
#include "tests/guest/fake_server.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMdiArea>
#include <QSignalSpy>
#include <QTest>

using namespace guest;
using namespace platform;

namespace {

class Host : public TMainForm {
    Q_OBJECT

public:
    Host() { Application->setMainForm(this); }
    ~Host() override { Application->setMainForm(nullptr); }
    Q_INVOKABLE void ResetSearch(QObject *grid) { log.append(u"ResetSearch " + grid->objectName()); }
    qintptr perform(int message, quintptr form, qintptr) override
    {
        log.append(QString::number(message) + u' ' + reinterpret_cast<TForm *>(form)->objectName());
        return 0;
    }
    QStringList log;
};

QString sent(const QString &number) { return number + QStringLiteral(",2026-03-01 08:00:00,发件,甲,张三,,早班,乙,,,2.5,"); }
QString arrived(const QString &number) { return number + QStringLiteral(",2026-03-01 09:00:00,到件,乙,李四,,,甲,,,2.5,"); }

class Window : public testing::Test {
protected:
    Window() { m_server.add(QStringLiteral("TAB_SCAN_SEND"), sent(QStringLiteral("1"))); }
    TrackWindow *open(const QStringList &numbers)
    {
        auto *window = new TrackWindow(Application, numbers, { &m_server });
        window->refresh();
        window->showForm();
        m_host.show();
        return window;
    }
    ~Window() override { closeTrackWindows(); }

    FakeServer m_server;
    Host m_host;
};

TEST_F(Window, ShowsPositionWaybillAndTrackOfOneNumber)
{
    QStringList values { QStringLiteral("1") };
    for (std::size_t field = 0; field < billFields().size(); ++field)
        values.append(QStringLiteral("v%1").arg(field));
    m_server.add(QStringLiteral("TAB_BILL"), values.join(u','));
    m_server.add(QStringLiteral("TAB_SCAN_REC"), QStringLiteral("1,2026-03-01 07:00:00,收件,甲,张三,,,,,,2.5,"));
    const TrackWindow *window = open({ QStringLiteral("1") });

    EXPECT_EQ(window->caption(), QStringLiteral("客户查询 1"));
    EXPECT_EQ(window->positionLabel->text(), QStringLiteral("2026-03-01 08:00:00 已由 甲 发往 乙，尚未到达；1 处发出未到件：甲→乙。"));
    QStringList shown;
    for (const QLineEdit *edit : window->findChildren<QLineEdit *>())
        if (!window->trackGrid->isAncestorOf(edit) && !window->billsGrid->isAncestorOf(edit))
            shown.append(edit->text());
    EXPECT_EQ(shown, values.mid(1));
    EXPECT_FALSE(window->billsGrid->isVisible());
    ASSERT_EQ(window->trackGrid->rowCount(), 2);
    EXPECT_EQ(window->trackGrid->cellText(1, 0), QStringLiteral("2"));
    EXPECT_EQ(window->trackGrid->cellText(1, window->trackGrid->columnIndex(u"NEXT_STATION")), QStringLiteral("乙"));
    EXPECT_EQ(window->trackGrid->cellBackground(0, 1), QColor(0xc4, 0xc4, 0xff));
    EXPECT_EQ(window->trackGrid->cellBackground(1, 1), QColor(0xff, 0xc8, 0xc8));
}

TEST_F(Window, TheListChoosesAmongSeveralAndARefreshKeepsTheChoice)
{
    TrackWindow *window = open({ QStringLiteral("7"), QStringLiteral("1") });
    EXPECT_EQ(window->caption(), QStringLiteral("客户查询 7 等 2 票"));
    EXPECT_TRUE(window->billsGrid->isVisible());
    EXPECT_EQ(window->billsGrid->cellText(0, 2), QStringLiteral("无此单"));
    EXPECT_EQ(window->billsGrid->cellText(1, 2), QStringLiteral("在途"));
    EXPECT_EQ(window->billsGrid->cellText(1, 3), QStringLiteral("1"));
    EXPECT_EQ(window->trackGrid->rowCount(), 0);
    window->billsGrid->setCurrentCell(1, 1);
    EXPECT_EQ(window->trackGrid->rowCount(), 1);

    m_server.add(QStringLiteral("TAB_SCAN_COME"), arrived(QStringLiteral("1")));
    QTest::keyClick(window->focusWidget(), Qt::Key_F5);
    EXPECT_EQ(window->billsGrid->currentRow(), 1);
    EXPECT_EQ(window->trackGrid->rowCount(), 2);
    EXPECT_EQ(window->positionLabel->text(), QStringLiteral("2026-03-01 09:00:00 已到达 乙，尚未发出或派送。"));
    EXPECT_EQ(window->billsGrid->cellText(1, 3), QString());
}

TEST_F(Window, AFailedRefreshKeepsWhatIsShown)
{
    TrackWindow *window = open({ QStringLiteral("1") });
    Application->setMessageResponder([](const MessageRequest &) { return idOk; });
    QSignalSpy happened(Application, &TApplication::happened);
    m_server.failure = QStringLiteral("连接断开");
    window->refreshButton->click();
    EXPECT_EQ(happened.last()[0].toString(), QStringLiteral("error"));
    EXPECT_EQ(happened.last()[1].toMap().value(QStringLiteral("text")).toString(), QStringLiteral("连接断开"));
    EXPECT_EQ(window->trackGrid->rowCount(), 1);
    Application->setMessageResponder({});
}

TEST_F(Window, AConnectionThatIsGoneIsNotAsked)
{
    auto server = std::make_unique<FakeServer>();
    TrackWindow window(Application, { QStringLiteral("1") }, { server.get() });
    window.refresh();
    server.reset();
    EXPECT_THROW(window.refresh(), Exception);
}

TEST_F(Window, CopiesTheWholeTrackAsText)
{
    const TrackWindow *window = open({ QStringLiteral("1") });
    window->copyButton->click();
    const QString text = QGuiApplication::clipboard()->text();
    EXPECT_TRUE(text.startsWith(u"运单编号：1\n"));
    EXPECT_TRUE(text.contains(u"2026-03-01 08:00:00\t发件\t甲\t张三\t早班\t\t乙\t未到件\t2.5"));
}

TEST_F(Window, TheHostHearsOfItAsOfItsScreens)
{
    const TrackWindow *window = open({ QStringLiteral("1") });
    EXPECT_EQ(m_host.log,
        QStringList(
            { QStringLiteral("1127 frm_QuestQuery"), QStringLiteral("1124 frm_QuestQuery"), QStringLiteral("ResetSearch trackGrid") }));
    EXPECT_EQ(window->property("QueryButton").value<QObject *>(), window->refreshButton);
    m_host.log.clear();
    m_host.mdiArea()->closeAllSubWindows();
    EXPECT_EQ(m_host.log.first(), QStringLiteral("1125 frm_QuestQuery"));
}

} // namespace

#include "window_test.moc"

#include <memory>

using namespace guest;
