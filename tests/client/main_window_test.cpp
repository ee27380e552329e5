#include "client/connections.h"
#include "client/main_window.h"

#include "client/export/table_export.h"
#include "client/result_window.h"
#include "client/shortcut_dialog.h"
#include "client/status_line.h"
#include "client/window_tabs.h"
#include "platform/files/saved_file_label.h"
#include "platform/grid/grid_commands.h"
#include "platform/report/report.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/published.h"
#include "tests/client/host_tables.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include <sqlite3.h>

#include <memory>

using namespace client;
using namespace platform;

namespace {

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest()
    {
        m_options.database = u"sqlite:" + m_directory.filePath(QStringLiteral("主.db"));
        m_options.pluginDirectory = QStringLiteral(HOST_PLUGIN_DIRECTORY);
        m_options.user = QStringLiteral("张三");
        Application->setSettingsDirectory(m_directory.path());
        sqlite3 *database = nullptr;
        EXPECT_EQ(sqlite3_open(m_directory.filePath(QStringLiteral("主.db")).toUtf8().constData(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, hostTables, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
        m_watching = QObject::connect(Application, &TApplication::happened, [this](const QString &kind, const QVariantMap &particulars) {
            const QVariant about = particulars.contains(QStringLiteral("message")) ? particulars[QStringLiteral("message")]
                                                                                   : particulars[QStringLiteral("form")];
            m_log.append(kind + u' ' + about.toString());
        });
        Application->setMessageResponder([this](const MessageRequest &) { return m_answer; });
    }
    ~MainWindowTest() override
    {
        QObject::disconnect(m_watching);
        Application->setMessageResponder({});
        Application->setSettingsDirectory(Application->directory());
    }
    std::unique_ptr<MainWindow> open()
    {
        auto window = std::make_unique<MainWindow>(m_options, Connections::openDatabase(m_options));
        window->show();
        return window;
    }
    QString refusal()
    {
        try {
            MainWindow window(m_options, Connections::openDatabase(m_options));
            return QStringLiteral("opened");
        } catch (const std::exception &exception) {
            return exceptionMessage(exception);
        }
    }
    static bool enabled(const MainWindow &window, const QString &text)
    {
        const QAction *action = command(window, text);
        EXPECT_TRUE(action) << text.toStdString();
        return action && action->isEnabled();
    }
    static QAction *command(const MainWindow &window, const QString &text)
    {
        for (QAction *action : window.findChildren<QAction *>()) {
            if (action->text() == text)
                return action;
        }
        return nullptr;
    }
    static QStringList statusTexts(const MainWindow &window)
    {
        QStringList texts;
        for (const QLabel *label : window.findChild<StatusLine *>()->findChildren<QLabel *>())
            texts.append(label->text());
        return texts;
    }

    QTemporaryDir m_directory;
    Options m_options;
    QStringList m_log;
    int m_answer = idCancel;
    QMetaObject::Connection m_watching;
};

TEST_F(MainWindowTest, PublishesWhatThePluginReads)
{
    m_options.serverNow = QDateTime(QDate(2024, 3, 5), QTime(18, 0), Qt::UTC);
    const auto window = open();
    QStringList names;
    for (const QObject *dataSet : publishedList(window.get(), "GlobalCdsAddr")) {
        names.append(dataSet->objectName());
        EXPECT_TRUE(qobject_cast<const TClientDataSetEx *>(dataSet)->active()) << dataSet->objectName().toStdString();
    }
    names.sort(Qt::CaseInsensitive);
    EXPECT_EQ(names.join(u' '),
        QStringLiteral(
            "AllSite area Class FastType GoodsType loginSite loginSiteEmployeeOwner loginSiteOwner ownerCustomer problem QuoteData "
            "scanType site"));
    QMap<QString, QString> values;
    for (const QObject *value : publishedList(window.get(), "GlobalValueAddr"))
        values.insert(value->objectName(), value->property("text").toString());
    EXPECT_EQ(values,
        (QMap<QString, QString> { { QStringLiteral("site"), QStringLiteral("北京") }, { QStringLiteral("userSite"), {} },
            { QStringLiteral("employeeName"), QStringLiteral("张三") }, { QStringLiteral("employeeCode"), QStringLiteral("8") },
            { QStringLiteral("CompanyName"), QStringLiteral("测试速递") }, { QStringLiteral("MainBill"), QStringLiteral("^[0-9]{8}$") } }));
    EXPECT_NEAR(publishedProperty(window.get(), "ServerDateTime").toDouble(), 45356.75, 0.001);
}

TEST_F(MainWindowTest, LoadsTheSitesAndEmployeesOfTheLoginSite)
{
    const auto window = open();
    QMap<QString, int> rows;
    for (const QObject *dataSet : publishedList(window.get(), "GlobalCdsAddr"))
        rows.insert(dataSet->objectName(), qobject_cast<const TClientDataSetEx *>(dataSet)->recordCount());
    EXPECT_EQ(rows[QStringLiteral("loginSite")], 1);
    EXPECT_EQ(rows[QStringLiteral("loginSiteOwner")], 2);
    EXPECT_EQ(rows[QStringLiteral("loginSiteEmployeeOwner")], 2);
    EXPECT_EQ(rows[QStringLiteral("AllSite")], 4);
}

TEST_F(MainWindowTest, SaysWhyItCannotStart)
{
    m_options.loginSite = QStringLiteral("月球");
    EXPECT_TRUE(refusal().contains(QStringLiteral("月球")));
    m_options.loginSite = QStringLiteral("O'Neill");
    EXPECT_EQ(refusal(), QStringLiteral("opened"));
    m_options.pluginDirectory = m_directory.path();
    EXPECT_TRUE(refusal().contains(QStringLiteral("--plugins")));
    m_options.database = QStringLiteral("sqlite:/nowhere/没有.db");
    EXPECT_TRUE(refusal().contains(QStringLiteral("没有.db")));
    EXPECT_EQ(Application->mainForm(), nullptr);
}

TEST_F(MainWindowTest, CommandsFollowTheScreenInFront)
{
    const auto window = open();
    EXPECT_FALSE(enabled(*window, QStringLiteral("查询")));
    EXPECT_FALSE(enabled(*window, QStringLiteral("复制")));
    EXPECT_THROW(window->query(), Exception);

    m_log.clear();
    window->openScreen(QStringLiteral("frm_One101"));
    QApplication::processEvents();
    EXPECT_EQ(m_log, QStringList({ QStringLiteral("perform 1127"), QStringLiteral("perform 1124"), QStringLiteral("resetSearch ") }));
    EXPECT_TRUE(enabled(*window, QStringLiteral("查询")));
    EXPECT_TRUE(enabled(*window, QStringLiteral("复制")));
    EXPECT_TRUE(enabled(*window, QStringLiteral("打印…")));
    EXPECT_TRUE(statusTexts(*window).contains(QStringLiteral("权限：查询和第 1、3 项")));
    window->query();
    EXPECT_TRUE(statusTexts(*window).contains(QStringLiteral("共 1,200 行")));

    window->openScreen(QStringLiteral("frm_Two000"));
    QApplication::processEvents();
    const auto *tabs = window->findChild<WindowTabs *>();
    EXPECT_TRUE(tabs->isVisible());
    EXPECT_EQ(tabs->tabText(tabs->currentIndex()), QStringLiteral("窗口 frm_Two"));
    EXPECT_TRUE(statusTexts(*window).contains(QStringLiteral("权限：只查询")));

    for (const TForm *form : window->forms())
        form->parentWidget()->close();
    QApplication::processEvents();
    EXPECT_FALSE(enabled(*window, QStringLiteral("查询")));
    EXPECT_FALSE(enabled(*window, QStringLiteral("复制")));
    EXPECT_FALSE(tabs->isVisible());
}

TEST_F(MainWindowTest, TheStatusLineTellsOfCutRowsAndOfConditionsThatHaveChanged)
{
    const auto window = open();
    window->openScreen(QStringLiteral("frm_One111"));
    QApplication::processEvents();
    auto *condition = window->activeForm()->findChild<QLineEdit *>(QStringLiteral("Edit1"));
    const auto texts = [&] {
        QTest::qWait(1100); // a person sees it a second later
        return statusTexts(*window);
    };
    window->query();
    EXPECT_FALSE(texts().contains(QStringLiteral("条件已改")));
    condition->setText(QStringLiteral("cut"));
    EXPECT_TRUE(texts().contains(QStringLiteral("条件已改")));
    window->query();
    EXPECT_TRUE(texts().contains(QStringLiteral("已取 1,200 行（已截断）")));
    EXPECT_FALSE(texts().contains(QStringLiteral("条件已改")));
}

TEST_F(MainWindowTest, ACancelledQueryIsAWordInTheStatusLine)
{
    const auto window = open();
    m_log.clear();
    Application->handleException(std::make_exception_ptr(Abort(QStringLiteral("查询已取消"))));
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("查询已取消"));
    EXPECT_EQ(m_log, QStringList(QStringLiteral("cancelled ")));
}

TEST_F(MainWindowTest, WhatWasNeverAskedForIsNotExported)
{
    const auto window = open();
    window->openScreen(QStringLiteral("frm_One111"));
    QApplication::processEvents();
    const QString file = m_directory.filePath(QStringLiteral("空.csv"));
    EXPECT_THROW(window->exportTo(*window->currentGrid(), { file }), Exception);
    EXPECT_FALSE(QFileInfo::exists(file));
    window->query();
    EXPECT_EQ(window->exportTo(*window->currentGrid(), { file }), 1200);
}

TEST_F(MainWindowTest, AWrittenFileIsOfferedToBeOpened)
{
    const auto window = open();
    window->openScreen(QStringLiteral("frm_One111"));
    QApplication::processEvents();
    window->query();
    auto *saved = window->findChild<files::SavedFileLabel *>();
    EXPECT_FALSE(saved->isVisible());
    const QString file = m_directory.filePath(QStringLiteral("<b>七.csv"));
    window->exportTo(*window->currentGrid(), { file });
    EXPECT_TRUE(saved->isVisible());
    EXPECT_TRUE(saved->text().startsWith(QStringLiteral("已导出 1200 行　<a href"))) << saved->text().toStdString();
    EXPECT_TRUE(saved->text().contains(QStringLiteral("&lt;b&gt;七.csv"))) << "a name is no markup";
    QFile::remove(file);
    m_log.clear();
    Q_EMIT saved->linkActivated(QStringLiteral("file"));
    EXPECT_EQ(m_log, QStringList(QStringLiteral("error "))) << "that it is gone is said";
}

TEST_F(MainWindowTest, PrintsTellWhatWasAskedByWhomAndWhere)
{
    m_options.serverNow = QDateTime(QDate(2024, 3, 5), QTime(18, 0), Qt::UTC);
    const auto window = open();
    window->openScreen(QStringLiteral("frm_One111"));
    QApplication::processEvents();
    window->activeForm()->findChild<QLineEdit *>(QStringLiteral("Edit1"))->setText(QStringLiteral("7[PAGE#]"));
    window->query();
    QStringList texts;
    report::setPreviewResponder([&texts](const report::PreviewRequest &request) {
        request.report.prepareAllPages();
        texts = request.report.texts(0) + request.report.texts(request.report.pageCount() - 1);
    });
    window->print();
    report::setPreviewResponder({});
    EXPECT_EQ(texts.value(0), QStringLiteral("窗口 frm_One"));
    EXPECT_EQ(texts.value(1), QStringLiteral("编号：7[PAGE#]"));
    const QStringList feet = texts.filter(QStringLiteral("北京　张三　2024-03-05 18:00:0"));
    EXPECT_EQ(feet.size(), 2) << texts.join(u'|').toStdString();
}

TEST_F(MainWindowTest, ClosingAScreenLeadsBackToTheOneBefore)
{
    const auto window = open();
    for (const char16_t *name : { u"frm_One111", u"frm_Two111", u"frm_Three111" })
        window->openScreen(QString::fromUtf16(name));
    QApplication::processEvents();
    window->forms()[1]->showForm();
    window->openScreen(QStringLiteral("frm_Track111"));
    QApplication::processEvents();
    window->activeForm()->parentWidget()->close();
    EXPECT_EQ(window->activeForm()->objectName(), QStringLiteral("frm_Two"));
}

TEST_F(MainWindowTest, KeysRunTheCommands)
{
    const auto window = open();
    window->activateWindow();
    window->openScreen(QStringLiteral("frm_One111"));
    window->openScreen(QStringLiteral("frm_Two111"));
    QApplication::processEvents();
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : window.get(), key, modifiers);
        QApplication::processEvents();
    };
    for (const auto &[key, modifiers] : { std::pair(Qt::Key_F9, Qt::NoModifier), std::pair(Qt::Key_F5, Qt::NoModifier),
             std::pair(Qt::Key_Return, Qt::ControlModifier), std::pair(Qt::Key_Enter, Qt::ControlModifier) }) {
        window->activeForm()->findChild<TClientDataSetEx *>()->close();
        press(key, modifiers);
        EXPECT_TRUE(statusTexts(*window).contains(QStringLiteral("共 1,200 行"))) << key;
    }
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("0"));
    press(Qt::Key_F6, Qt::ControlModifier);
    EXPECT_EQ(window->activeForm()->objectName(), QStringLiteral("frm_One"));
    press(Qt::Key_F4, Qt::ControlModifier);
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(window->activeForm(), nullptr);
}

TEST_F(MainWindowTest, APersonGivesOtherKeysToCommandsAndGetsTheDesignedOnesBack)
{
    const auto keysOf = [](const MainWindow &window, const char16_t *text) {
        return QKeySequence::listToString(command(window, QString::fromUtf16(text))->shortcuts());
    };
    {
        const auto window = open();
        command(*window, QStringLiteral("快捷键"))->trigger();
        auto *dialog = window->findChild<ShortcutDialog *>();
        auto *list = dialog->findChild<QTreeWidget *>();
        auto *key = dialog->findChild<QKeySequenceEdit *>();
        const auto give = [&](const QString &text, const char *keys) {
            list->setCurrentItem(list->findItems(text, Qt::MatchExactly).value(0));
            key->setKeySequence(QKeySequence(QString::fromLatin1(keys)));
        };
        give(QStringLiteral("查找…"), "Ctrl+P"); // the person says no
        EXPECT_EQ(keysOf(*window, u"查找…"), QStringLiteral("Ctrl+F"));
        m_answer = idOk;
        give(QStringLiteral("查找…"), "Ctrl+P");
        give(QStringLiteral("全选"), "Ctrl+Shift+A");
        give(QStringLiteral("全选"), "A"); // belongs to the fields
        EXPECT_EQ(keysOf(*window, u"打印…"), QString());
    }
    const auto window = open();
    EXPECT_EQ(keysOf(*window, u"查找…"), QStringLiteral("Ctrl+F; Ctrl+P"));
    EXPECT_EQ(gridCommand(GridCommandId::SelectAll).keys().size(), 2);
    EXPECT_EQ(gridCommandFor(QKeyCombination(Qt::CTRL | Qt::SHIFT, Qt::Key_A)), &gridCommand(GridCommandId::SelectAll));
    command(*window, QStringLiteral("快捷键"))->trigger();
    for (QPushButton *button : window->findChild<ShortcutDialog *>()->findChildren<QPushButton *>()) {
        if (button->text() == u"恢复默认")
            button->click();
    }
    EXPECT_EQ(keysOf(*window, u"打印…"), QStringLiteral("Ctrl+P"));
    EXPECT_EQ(gridCommandFor(QKeyCombination(Qt::CTRL | Qt::SHIFT, Qt::Key_A)), nullptr);
}

TEST_F(MainWindowTest, NoTwoCommandsShareAKey)
{
    const auto window = open();
    command(*window, QStringLiteral("快捷键"))->trigger();
    const auto *list = window->findChild<ShortcutDialog *>()->findChild<QTreeWidget *>();
    QSet<QString> keys;
    for (int row = 0; row < list->topLevelItemCount(); ++row) {
        for (const QString &key : list->topLevelItem(row)->text(1).split(u'、', Qt::SkipEmptyParts)) {
            EXPECT_FALSE(keys.contains(key)) << key.toStdString();
            keys.insert(key);
        }
    }
    EXPECT_GT(keys.size(), 30);
}

TEST_F(MainWindowTest, APinnedResultOutlivesItsScreenAndIsComparedWithALaterOne)
{
    const auto window = open();
    window->openScreen(QStringLiteral("frm_One111"));
    QApplication::processEvents();
    auto *condition = window->activeForm()->findChild<QLineEdit *>(QStringLiteral("Edit1"));
    condition->setText(QStringLiteral("first"));
    window->query();
    command(*window, QStringLiteral("固定结果"))->trigger();
    EXPECT_EQ(window->activeForm()->objectName(), QStringLiteral("frm_One")) << "work goes on where it was";

    condition->setText(QStringLiteral("cut"));
    window->query();
    command(*window, QStringLiteral("与固定结果比较…"))->trigger();
    auto *comparison = qobject_cast<ResultWindow *>(window->activeForm());
    ASSERT_TRUE(comparison);
    EXPECT_TRUE(comparison->descriptionLabel->text().contains(QStringLiteral("相同 1200 行，改变 0 行")));

    window->forms().first()->parentWidget()->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    auto *pinned = qobject_cast<PinnedResult *>(window->forms().first());
    ASSERT_TRUE(pinned);
    pinned->showForm();
    QApplication::processEvents();
    EXPECT_EQ(pinned->resultGrid->rowCount(), 1200);
    EXPECT_FALSE(statusTexts(*window).contains(QStringLiteral("条件已改")));
    const QString file = m_directory.filePath(QStringLiteral("固定.html"));
    window->exportTo(*window->currentGrid(), { file });
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromUtf8(written.readAll()).contains(QStringLiteral("first"))) << "the conditions it was asked by";
}

TEST_F(MainWindowTest, TheWindowComesBackWhereItWasLeft)
{
    {
        const auto window = open();
        window->takeLastPlace();
        EXPECT_TRUE(window->isMaximized());
        window->showNormal();
        window->resize(700, 500);
        QApplication::processEvents();
        EXPECT_TRUE(window->close());
    }
    const auto window = open();
    window->takeLastPlace();
    EXPECT_FALSE(window->isMaximized());
    EXPECT_EQ(window->size(), QSize(700, 500));
}

TEST_F(MainWindowTest, ClosingAsksTheScreensAndStopsAtTheFirstThatStays)
{
    auto window = open();
    for (const char16_t *name : { u"frm_One111", u"frm_Stubborn111", u"frm_Two111" })
        window->openScreen(QString::fromUtf16(name));
    EXPECT_FALSE(window->close());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QStringList open;
    for (const TForm *form : window->forms())
        open.append(form->objectName());
    EXPECT_EQ(open, QStringList({ QStringLiteral("frm_Stubborn"), QStringLiteral("frm_Two") }));

    m_log.clear();
    window.reset(); // as when the session is ended from outside: the screens go before the library does
    EXPECT_EQ(m_log, QStringList({ QStringLiteral("freed frm_Stubborn"), QStringLiteral("freed frm_Two"), QStringLiteral("detach ") }));
}

} // namespace
