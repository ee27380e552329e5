#include "platform/toolkit/long_work.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <semaphore>
#include <thread>

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

} // namespace
