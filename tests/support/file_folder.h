#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A folder of a test's own, with the files that it puts there; gone with the test.
class FileFolder {
protected:
    QString path(const QString &name) const { return m_directory.filePath(name); }
    void put(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    QByteArray contents(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    /// Hidden ones and links that lead nowhere too.
    QStringList files() const { return QDir(m_directory.path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name); }

    QTemporaryDir m_directory;
};
