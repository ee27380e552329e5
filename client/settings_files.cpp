#include "client/settings_files.h"

#include "client/options.h"
#include "platform/files/safe_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace client {
namespace {

const QString fileName = QStringLiteral("/kelvara-client.conf");

QString personsFolder()
{
#if defined(Q_OS_WIN)
    return QDir::fromNativeSeparators(qEnvironmentVariable("APPDATA")) + u"/kelvara";
#else
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/kelvara";
#endif
}

QString systemsFolder()
{
#if defined(Q_OS_WIN)
    return QDir::fromNativeSeparators(qEnvironmentVariable("PROGRAMDATA")) + u"/kelvara";
#else
    return QStringLiteral("/etc/kelvara");
#endif
}

bool takesFiles(const QString &folder) { return QTemporaryFile(folder + u"/.kelvara-XXXXXX").open(); }

/// Its files belong to whoever installs and removes it, even when its user may write there.
bool isInstalled(const QString &program) { return QFileInfo(program + u"/../../bin/kelvara-client").isSymLink(); }

void copyMissing(const QString &from, const QString &to)
{
    if (QFileInfo(from).isFile() && !QFile::exists(to))
        QFile::copy(from, to);
    if (!QFileInfo(from).isDir() || QFile::exists(to))
        return;
    QDir().mkpath(to);
    for (QDirIterator entry(from, QDir::Files, QDirIterator::Subdirectories); entry.hasNext();) {
        const QString target = to + entry.next().mid(from.size());
        QDir().mkpath(QFileInfo(target).path());
        QFile::copy(entry.filePath(), target);
    }
}

} // namespace

QStringList sharedSettingsFiles() { return { QCoreApplication::applicationDirPath() + fileName, systemsFolder() + fileName }; }
QString ownSettingsFile() { return personsFolder() + fileName; }
SettingsSources usualSettings() { return { .shared = sharedSettingsFiles(), .centre {}, .own = ownSettingsFile() }; }

void keepOwnSetting(const QString &key, const QString &value)
{
    QString text;
    if (QFile before(ownSettingsFile()); before.open(QIODevice::ReadOnly))
        text = QString::fromUtf8(before.readAll());
    const QString line = key + u" = " + value;
    const QRegularExpression old(u"^[ \\t]*" + QRegularExpression::escape(key) + u"[ \\t]*=.*$", QRegularExpression::MultilineOption);
    if (const auto found = old.match(text); found.hasMatch())
        text.replace(found.capturedStart(), found.capturedLength(), line);
    else
        text += (text.isEmpty() || text.endsWith(u'\n') ? QString() : QStringLiteral("\n")) + line + u'\n';
    QDir().mkpath(personsFolder());
    files::SafeFile file(ownSettingsFile(), files::SafeFile::Kind::Document);
    file.write(text.toUtf8());
    file.commit();
}

QString usualSettingsDirectory() { return settingsDirectoryOf(QCoreApplication::applicationDirPath(), personsFolder()); }

QString settingsDirectoryOf(const QString &program, const QString &person)
{
    if (!isInstalled(program) && takesFiles(program))
        return program;
    // What cannot be written there says so when it is to be kept.
    QDir().mkpath(person);
    for (const QString &kept : { QStringLiteral("/kelvara-client.ini"), QStringLiteral("/WindowsIni"), QStringLiteral("/Conditions") })
        copyMissing(program + kept, person + kept);
    return person;
}

} // namespace client
