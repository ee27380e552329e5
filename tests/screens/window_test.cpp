// The client's window in the test's own process, with the real screens: what can be seen only from inside.

#include "client/bills/bill_list_line.h"
#include "client/conditions/screen_state.h"
#include "client/connections.h"
#include "client/day_counts.h"
#include "client/export/screen_conditions.h"
#include "client/help_pages.h"
#include "client/login.h"
#include "client/main_window.h"
#include "client/screen_list.h"
#include "client/start_page.h"
#include "platform/grid/copied_cells.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "tests/screens/screen_test.h"

#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QPlainTextEdit>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>

using namespace client;
using namespace platform;

namespace {

class Window : public testing::Test {
protected:
    Window()
    {
        Clock::set(QDateTime::fromString(ClientProcess::now(), QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        Application->setSettingsDirectory(m_settings.path());
        Application->setMessageResponder([this](const MessageRequest &request) {
            m_messages.append(request.text);
            return idOk;
        });
        m_options.database = u"sqlite:" + ClientProcess::database();
        m_options.pluginDirectory = QStringLiteral(KELVARA_BIN);
        m_window = std::make_unique<MainWindow>(m_options, Connections::openDatabase(m_options));
        m_window->resize(1400, 900);
        m_window->show();
        m_window->activateWindow();
        QApplication::processEvents();
    }
    ~Window() override
    {
        m_window.reset();
        Application->setMessageResponder({});
        Application->setSettingsDirectory(Application->directory());
        Clock::set({});
    }
    TForm *open(QStringView name)
    {
        m_window->openScreen(name + u"111");
        QApplication::processEvents();
        return m_window->activeForm();
    }
    template <class Act>
    void eachScreen(Act act)
    {
        for (const ScreenGroup &group : screenGroups) {
            for (const ScreenItem &item : group.screens) {
                TForm *screen = open(item.name);
                ASSERT_EQ(screen->objectName(), item.name);
                act(*screen);
                screen->parentWidget()->close();
                QApplication::processEvents();
            }
        }
    }
    void command(const QString &text)
    {
        for (QAction *action : m_window->findChildren<QAction *>()) {
            if (action->text() == text)
                return action->trigger();
        }
        ADD_FAILURE() << text.toStdString();
    }

    QTemporaryDir m_settings;
    QStringList m_messages;
    Options m_options;
    std::unique_ptr<MainWindow> m_window;
};

TEST_F(Window, EveryScreenHasItsPageWithAllItsConditionsAndColumns)
{
    EXPECT_EQ(findHelpPage(QStringLiteral("frm_Nothing")), nullptr);
    eachScreen([](const TForm &screen) {
        const HelpPage *page = findHelpPage(screen.objectName());
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(page->title, screen.caption());
        EXPECT_FALSE(page->markdown.contains(u'@')) << "a common part is missing";
        QStringList wanted;
        for (const ExportNote &condition : screenConditions(screen))
            wanted += condition.caption.split(u' ');
        for (const TDBGridEh *grid : screen.findChildren<TDBGridEh *>()) {
            if (screen.objectName() == u"frm_MonthCalc" && !grid->isVisible())
                continue; // a page that nobody gets to see
            for (int column = 0; column < grid->columnCount(); ++column) {
                if (grid->column(column).visible && !grid->column(column).fieldName.isEmpty())
                    wanted += grid->column(column).caption.split(u'|');
            }
        }
        for (const QString &word : wanted)
            EXPECT_TRUE(word == u"每行一个运单编号" || page->markdown.contains(word))
                << screen.objectName().toStdString() << ": " << word.toStdString();
    });
}

TEST_F(Window, EveryControlHasANameForAScreenReader)
{
    const std::set<QAccessible::Role> roles { QAccessible::EditableText, QAccessible::ComboBox, QAccessible::CheckBox,
        QAccessible::RadioButton, QAccessible::Button, QAccessible::ButtonMenu, QAccessible::Table, QAccessible::PageTab,
        QAccessible::SpinBox, QAccessible::List };
    const std::function<void(QAccessibleInterface *, QStringList &)> walk = [&](QAccessibleInterface *node, QStringList &unnamed) {
        if (!node || node->state().invisible)
            return;
        if (roles.contains(node->role()) && node->text(QAccessible::Name).isEmpty())
            unnamed.append(QString::number(node->role()) + u' '
                + (node->object() ? node->object()->objectName() + QLatin1String(node->object()->metaObject()->className()) : QString()));
        for (int index = 0; node->role() != QAccessible::Table && index < node->childCount(); ++index)
            walk(node->child(index), unnamed);
    };
    eachScreen([&](TForm &screen) {
        QStringList unnamed;
        walk(QAccessible::queryAccessibleInterface(m_window.get()), unnamed);
        EXPECT_EQ(unnamed, QStringList()) << screen.objectName().toStdString();
    });
}

TEST_F(Window, LastConditionsComeBackOnEveryScreen)
{
    eachScreen([this](TForm &screen) {
        const auto *button = qobject_cast<QAbstractButton *>(screen.property("QueryButton").value<QObject *>());
        const QList<ConditionValue> asked = conditionsOf(screen);
        if (!button)
            return;
        ConditionMemory memory(m_settings.path() + u"/Other");
        memory.keepLast(screen);
        for (QLineEdit *line : screen.findChildren<QLineEdit *>()) {
            if (line->isVisible() && line->isEnabled())
                line->clear();
        }
        for (QAbstractButton *box : screen.findChildren<QAbstractButton *>()) {
            if (box->isCheckable() && box->isVisible() && box->isEnabled())
                box->click();
        }
        memory.putBackLast(screen);
        for (const ConditionValue &value : conditionsOf(screen)) {
            const auto before
                = std::find_if(asked.begin(), asked.end(), [&](const ConditionValue &one) { return one.control == value.control; });
            if (before == asked.end())
                continue;
            EXPECT_EQ(value, *before) << screen.objectName().toStdString();
        }
        EXPECT_EQ(m_messages, QStringList());
    });
}

TEST_F(Window, TheCountsOfYesterdayAreTheRowsThatTheirScreensList)
{
    const QString site = Login::of(m_options).site;
    const QDate yesterday = Clock::today().addDays(-1);
    int found = 0;
    for (const DayCount &count : dayCounts(site, yesterday)) {
        TForm *screen = open(count.screen);
        EXPECT_EQ(putBack(*screen, count.conditions), QStringList());
        m_window->query();
        const int rows = m_window->currentGrid()->rowCount();
        EXPECT_EQ(QString::number(rows), answerOf(count.statement)) << count.caption.toUtf8().constData();
        found += rows;
    }
    EXPECT_GT(found, 0);
    EXPECT_EQ(m_messages, QStringList());
    m_window->mdiArea()->closeAllSubWindows();
    const auto *page = m_window->findChild<StartPage *>();
    const auto texts = [&] {
        QString all;
        for (const QLabel *label : page->findChildren<QLabel *>())
            all += label->text();
        return all;
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return texts().contains(QStringLiteral("有单无扫描")) && !texts().contains(u'…'); }, 60'000));
    EXPECT_FALSE(texts().contains(u'—')) << texts().toStdString();
}

TEST_F(Window, AListIsPastedCountedAskedAndItsUnknownNumbersAreOffered)
{
    const QString known = answerOf(QStringLiteral("select min(bill_code) from tab_sign"));
    TForm *screen = open(u"frm_GuestSignQuery");
    QApplication::clipboard()->setText(known + u"\t999999999998," + known + u"\n1.2E+11");
    command(QStringLiteral("粘贴单号到列表"));
    auto *line = screen->findChild<BillListLine *>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return line->isVisible(); }));
    EXPECT_TRUE(line->text().startsWith(QStringLiteral("2 个单号，1 个重复，1 行不像单号"))) << line->text().toStdString();
    EXPECT_EQ(line->memo()->extraSelections().size(), 1);
    m_window->query();
    EXPECT_EQ(m_window->currentGrid()->currentRow(), 0);
    EXPECT_EQ(line->unanswered(), QStringList(QStringLiteral("999999999998")));
    EXPECT_TRUE(line->text().contains(QStringLiteral("1 个没有任何记录")));
    line->memo()->appendPlainText(QStringLiteral("999999999997"));
    EXPECT_EQ(line->unanswered(), QStringList()) << "the answer was to another list";
}

TEST_F(Window, ALongListIsAskedInPartsAndNothingIsLost)
{
    const QString known = answerOf(QStringLiteral("select min(bill_code) from tab_sign"));
    TForm *screen = open(u"frm_GuestSignQuery");
    QStringList numbers;
    for (int number = 0; number < 1000; ++number)
        numbers.append(QString::number(900'000'000'000 + number));
    numbers.append(known);
    auto *line = screen->findChild<BillListLine *>();
    line->memo()->setPlainText(numbers.join(u'\n'));
    ASSERT_TRUE(QTest::qWaitFor([&] { return line->text().contains(QStringLiteral("分 2 批查询")); }));
    Q_EMIT line->linkActivated(QStringLiteral("batches"));
    EXPECT_EQ(m_messages, QStringList());
    EXPECT_EQ(line->memo()->toPlainText(), numbers.join(u'\n'));
    QApplication::processEvents();
    EXPECT_EQ(m_window->activeForm()->objectName(), QStringLiteral("joinedResult"));
    ASSERT_EQ(m_window->currentGrid()->rowCount(), 1001);
    EXPECT_EQ(m_window->currentGrid()->cellText(1000, m_window->currentGrid()->columnIndex(u"BILL_CODE")), known);
    m_window->mdiArea()->closeAllSubWindows();
}

TEST(Conditions, AreThereAfterARestart)
{
    ClientProcess first;
    const QJsonObject screen { { QStringLiteral("screen"), QStringLiteral("frm_ManCome111") } };
    first.obey(QStringLiteral("open"), screen);
    first.set(QStringLiteral("DBComboBoxEh4"), QStringLiteral("夜班"));
    first.obey(QStringLiteral("query"));
    first.quit();
    ClientProcess second({ QStringLiteral("--settings"), first.settingsDirectory() });
    second.obey(QStringLiteral("open"), screen);
    EXPECT_EQ(second.textOf(QStringLiteral("DBComboBoxEh4")), QStringLiteral("全部"));
    second.obey(QStringLiteral("key"),
        { { QStringLiteral("control"), QStringLiteral("DBLookupComboboxEh1") }, { QStringLiteral("key"), QStringLiteral("Ctrl+L") } });
    EXPECT_EQ(second.textOf(QStringLiteral("DBComboBoxEh4")), QStringLiteral("夜班"));
    EXPECT_EQ(second.quit(), 0);
}

} // namespace
