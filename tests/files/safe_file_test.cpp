#include "platform/files/safe_file.h"
#include "platform/toolkit/exception.h"
#include "tests/support/file_folder.h"
#include "tests/support/print_qstring.h"
#include "tests/support/small_disk.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using files::SafeFile;

class SafeFileTest : public testing::Test, protected FileFolder {
protected:
    SafeFileTest() { put(m_name, "before"); }

    /// The message of what `work` throws; "" when it throws nothing. What stood there before must be alone there then.
    template <class Work>
    QString refused(Work &&work)
    {
        QString message;
        try {
            work();
        } catch (const Exception &exception) {
            message = exception.message();
        }
        EXPECT_EQ(contents(m_name), QByteArray("before"));
        EXPECT_EQ(files(), QStringList(m_name));
        return message;
    }

    const QString m_name = QStringLiteral("清单.csv");
};

TEST_F(SafeFileTest, TakesItsPlaceWhenItIsWhole)
{
    QFile::setPermissions(path(m_name), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
    ASSERT_TRUE(QFile::link(m_name, path(QStringLiteral("link"))));
    {
        SafeFile file(path(QStringLiteral("link")));
        file.write("after");
        EXPECT_EQ(contents(m_name), QByteArray("before"));
        file.commit();
    }
    EXPECT_EQ(contents(m_name), QByteArray("after"));
    EXPECT_TRUE(QFileInfo(path(QStringLiteral("link"))).isSymLink());
    EXPECT_EQ(QFileInfo(path(m_name)).permissions() & ~(QFile::ReadUser | QFile::WriteUser),
        QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
    ASSERT_TRUE(QFile::link(QStringLiteral("new"), path(QStringLiteral("dangling"))));
    SafeFile(path(QStringLiteral("dangling"))).commit();
    EXPECT_EQ(contents(QStringLiteral("new")), QByteArray());
    // The longest name that a folder holds, in bytes.
    const QString longest(85, u'长');
    SafeFile(path(longest)).commit();
    EXPECT_TRUE(files().contains(longest));
}

TEST_F(SafeFileTest, NobodyElsesFileIsTouched)
{
    put(m_name + u".part", "mine");
    SafeFile first(path(m_name));
    SafeFile second(path(m_name));
    first.write("first");
    second.write("second, longer");
    second.commit();
    first.commit();
    EXPECT_EQ(contents(m_name), QByteArray("first"));
    EXPECT_EQ(contents(m_name + u".part"), QByteArray("mine"));
    EXPECT_EQ(files().size(), 2);
}

TEST_F(SafeFileTest, WhatCannotBeWrittenLeavesWhatWasThere)
{
    EXPECT_EQ(refused([&] { SafeFile(path(m_name)).write("not committed"); }), QString());
    const QString folder = refused([&] { SafeFile file(m_directory.path()); });
    EXPECT_TRUE(folder.contains(m_directory.path()) && folder.contains(u"目录")) << folder.toStdString();
    EXPECT_TRUE(refused([&] { SafeFile file(path(QStringLiteral("没有/x.csv"))); }).contains(u"文件夹不存在"));

    const FileSizeLimit limit(10'000);
    for (const int size : { 10'001, 1'000'000 }) {
        const QString full = refused([&] {
            SafeFile file(path(m_name));
            for (int written = 0; written < size; ++written)
                file.write("x");
            file.commit();
        });
        EXPECT_TRUE(full.contains(m_name) && full.contains(u"磁盘已满")) << full.toStdString();
    }
}

TEST_F(SafeFileTest, AWriteThatFailedIsNotForgottenWhenThereIsRoomAgain)
{
    EXPECT_TRUE(refused([&] {
        SafeFile file(path(m_name));
        {
            const FileSizeLimit limit(10'000);
            EXPECT_LT(file.device().write(QByteArray(100'000, 'x')), 100'000);
        }
        EXPECT_EQ(file.device().write("y"), 1);
        file.commit();
    }).contains(u"磁盘已满"));
}

} // namespace
