#include "platform/files/save_dialog.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "tests/support/file_folder.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

using namespace files;
using namespace platform;

namespace {

class SaveDialog : public testing::Test, protected FileFolder {
protected:
    SaveDialog() { Application->setSettingsDirectory(m_directory.path()); }
    ~SaveDialog() override { Application->setSettingsDirectory(QApplication::applicationDirPath()); }

    /// Types a name and presses Enter; "" gives up. `m_folder` is where the dialog stood.
    std::optional<SavePlace> choose(const QString &typed, const QString &filter = {})
    {
        QTimer::singleShot(0, qApp, [this, typed] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            m_folder = dialog->directory().path();
            if (typed.isEmpty())
                return dialog->reject();
            dialog->findChild<QLineEdit *>()->setText(typed);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        return askWhereToSave(nullptr, QStringLiteral("导出"), QStringLiteral("a"),
            { QStringLiteral("工作簿 (*.xlsx)"), QStringLiteral("CSV (*.csv)") }, filter);
    }

    QString m_folder;
};

TEST_F(SaveDialog, GoesWhereItWasLast)
{
    QDir().mkpath(path(QStringLiteral("日报")));
    const QString name = path(QStringLiteral("日报/七"));
    const auto first = choose(name, QStringLiteral("CSV (*.csv)"));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->fileName, QString(name + u".csv"));
    EXPECT_EQ(first->filter, QStringLiteral("CSV (*.csv)"));
    EXPECT_FALSE(choose({}));
    EXPECT_EQ(m_folder, path(QStringLiteral("日报")));
    // A filter that is gone, and a folder that is gone, are no reason to fail.
    QDir(path(QStringLiteral("日报"))).removeRecursively();
    EXPECT_EQ(choose(path(QStringLiteral("b.CSV")), QStringLiteral("旧 (*.old)"))->fileName, path(QStringLiteral("b.CSV")));
    EXPECT_TRUE(QDir(m_folder).exists());
}

TEST_F(SaveDialog, ANameHoldsWhatFilesCan)
{
    Clock::set(QDateTime(QDate(2026, 2, 3), QTime(4, 5)));
    EXPECT_EQ(datedName(QStringLiteral("收/发:\n对比?")), QStringLiteral("收 发 对比 2026-02-03 0405"));
    EXPECT_EQ(datedName({}), QStringLiteral("2026-02-03 0405"));
    Clock::set({});
}

} // namespace
