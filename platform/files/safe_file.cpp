#include "platform/files/safe_file.h"

#include "platform/files/disk.h"
#include "platform/toolkit/exception.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <utility>

namespace files {

namespace {

/// The file itself where `fileName` is a link to one, even to one that is not there yet.
QString targetOf(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (!info.isSymLink())
        return info.absoluteFilePath();
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? info.symLinkTarget() : canonical;
}

/// Short, so that a target of the longest possible name has one too.
QString partOf(const QString &target)
{
    return QFileInfo(target).path()
        + QStringLiteral("/kelvara-%1.part").arg(QRandomGenerator::global()->generate64(), 16, 16, QLatin1Char('0'));
}

} // namespace

qint64 SafeFile::Part::writeData(const char *data, qint64 size)
{
    const qint64 written = QFile::writeData(data, size);
    if (written != size && m_failure == NoError)
        m_failure = error() == NoError ? WriteError : error();
    return written;
}

SafeFile::SafeFile(const QString &fileName, Kind kind)
    : m_fileName(targetOf(fileName))
    , m_part(partOf(m_fileName))
{
    const QFileInfo before(m_fileName);
    m_syncs = before.exists() && kind == Kind::Document;
    if (before.isDir())
        fail(QStringLiteral("这是一个目录"));
    if (before.exists() && !before.isWritable())
        fail(QStringLiteral("文件是只读的"));
    if (!m_part.open(QIODevice::ReadWrite | QIODevice::NewOnly))
        fail(reason());
    if (before.exists())
        m_part.setPermissions(before.permissions());
}

SafeFile::~SafeFile()
{
    m_part.close();
    // By its name: QFile refuses to remove a file that it could not write to the end.
    QFile::remove(m_part.fileName());
}

void SafeFile::write(QByteArrayView bytes)
{
    if (m_part.write(bytes.data(), bytes.size()) != bytes.size())
        fail(reason());
}

void SafeFile::close()
{
    if (std::exchange(m_closed, true))
        return;
    const bool whole = m_part.flush() && (!m_syncs || syncToDisk(m_part.handle()));
    m_part.close();
    if (!whole || m_part.failure() != QFileDevice::NoError)
        fail(reason());
}

void SafeFile::commit()
{
    close();
    const std::error_code error = replaceFile(m_part.fileName(), m_fileName);
    if (error == std::errc::permission_denied)
        fail(QStringLiteral("另一个程序（例如 Excel）正打开着它，不能替换"));
    if (error)
        fail(QStringLiteral("不能替换原来的文件"));
}

void SafeFile::fail(const QString &reason) const
{
    throw Exception(
        QStringLiteral("无法写入文件“%1”：%2。请换一个位置，或先关闭正在使用它的程序。").arg(QDir::toNativeSeparators(m_fileName), reason));
}

QString SafeFile::reason() const
{
    if (!QFileInfo(m_fileName).dir().exists())
        return QStringLiteral("文件夹不存在");
    switch (m_part.failure()) {
    case QFileDevice::PermissionsError:
        return QStringLiteral("没有写入的权限");
    case QFileDevice::OpenError:
        return QStringLiteral("这里不能新建文件");
    default:
        return QStringLiteral("磁盘已满或出了故障");
    }
}

} // namespace files
