#include "platform/toolkit/long_work.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <memory>
#include <semaphore>
#include <thread>

using namespace platform;

namespace {

const QString caption = QStringLiteral("正在查询…");
const QString cancelled = QStringLiteral("查询已取消");

TEST(LongWork, ReturnsWhenDoneAndRethrowsWhatTheWorkThrows)
{
    int value = 0;
    runLongWork(caption, cancelled, [&value](WorkProgress &) { value = 7; });
    EXPECT_EQ(value, 7);
    EXPECT_THROW(runLongWork(caption, cancelled, [](WorkProgress &) { throw Exception(QStringLiteral("坏")); }), Exception);
    EXPECT_FALSE(longWorkRuns());
}

TEST(LongWork, InputDoesNotReachOtherWindowsMeanwhile)
{
    QLineEdit edit;
    edit.show();
    edit.setFocus();
    std::binary_semaphore typed(0);
    QTimer::singleShot(10, &edit, [&] {
        EXPECT_TRUE(longWorkRuns());
        QTest::keyClicks(&edit, QStringLiteral("abc"));
        typed.release();
    });
    runLongWork(caption, cancelled, [&typed](WorkProgress &) { typed.acquire(); });
    EXPECT_EQ(edit.text(), QString());
    QTest::keyClicks(&edit, QStringLiteral("abc"));
    EXPECT_EQ(edit.text(), QStringLiteral("abc"));
}

TEST(LongWork, CancelFreesTheCallerAtOnceAndAsksTheWorkToStop)
{
    auto release = std::make_shared<std::binary_semaphore>(0);
    auto stopSeen = std::make_shared<std::atomic<bool>>(false);
    QTimer presser;
    QObject::connect(&presser, &QTimer::timeout, [] {
        for (QWidget *window : QApplication::topLevelWidgets())
            for (auto *button : window->findChildren<QPushButton *>())
                if (button->isVisible() && button->text().startsWith(u"取消"))
                    button->click();
    });
    presser.start(20);
    EXPECT_THROW(runLongWork(caption, cancelled,
                     [release, stopSeen](WorkProgress &progress) {
                         release->acquire();
                         *stopSeen = progress.stop.stop_requested();
                     }),
        Abort);
    release->release();
    waitForAbandonedWork();
    EXPECT_TRUE(*stopSeen);
}

TEST(InterfaceWork, LetsOnlyTheWaitWindowThroughAndStopsWhenCancelled)
{
    QLineEdit edit;
    edit.show();
    QTimer typist;
    QObject::connect(&typist, &QTimer::timeout, [&edit] { QTest::keyClicks(&edit, QStringLiteral("x")); });
    typist.start(20);
    QString shown;
    QTimer presser;
    QObject::connect(&presser, &QTimer::timeout, [&shown] {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            for (auto *button : window->findChildren<QPushButton *>()) {
                if (!button->isVisible() || !button->text().startsWith(u"取消"))
                    continue;
                shown = window->findChild<QLabel *>()->text();
                button->click();
            }
        }
    });
    presser.start(20);
    QElapsedTimer elapsed;
    elapsed.start();
    std::int64_t done = 0;
    {
        InterfaceWork work(QStringLiteral("正在导出…"), QStringLiteral("页"));
        while (work.report(done, 1'000'000) && elapsed.elapsed() < 20'000) {
            ++done;
            EXPECT_TRUE(longWorkRuns());
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_FALSE(work.report(done, 1'000'000)); // and stays so
    }
    EXPECT_LT(elapsed.elapsed(), 20'000);
    EXPECT_TRUE(shown.contains(u"正在导出…") && shown.contains(u"/ 1000000 页")) << shown.toStdString();
    EXPECT_EQ(edit.text(), QString());
    EXPECT_FALSE(longWorkRuns());
}

} // namespace
