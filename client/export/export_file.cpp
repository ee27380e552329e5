#include "client/export/export_file.h"

#include "platform/toolkit/exception.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <filesystem>

namespace {

/// The file itself where `fileName` is a link to one.
QString targetOf(const QString &fileName)
{
    const QString canonical = QFileInfo(fileName).canonicalFilePath();
    return canonical.isEmpty() ? fileName : canonical;
}

std::filesystem::path pathOf(const QString &name) { return { name.toStdU16String() }; }

QString reasonOf(const QFile &file)
{
    if (!QFileInfo(file.fileName()).dir().exists())
        return QStringLiteral("文件夹不存在");
    switch (file.error()) {
    case QFileDevice::PermissionsError:
        return QStringLiteral("没有写入的权限");
    case QFileDevice::OpenError:
        return QStringLiteral("这里不能新建文件");
    default:
        return QStringLiteral("磁盘已满或出了故障");
    }
}

} // namespace

ExportFile::ExportFile(const QString &fileName)
    : m_fileName(targetOf(fileName))
    , m_part(m_fileName + QStringLiteral(".%1.part").arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0')))
{
    const QFileInfo before(m_fileName);
    if (before.isDir())
        fail(QStringLiteral("这是一个目录"));
    if (before.exists() && !before.isWritable())
        fail(QStringLiteral("文件是只读的"));
    if (!m_part.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        fail(reasonOf(m_part));
    if (before.exists())
        m_part.setPermissions(before.permissions());
}

ExportFile::~ExportFile() { m_part.remove(); }

void ExportFile::write(std::string_view bytes)
{
    if (m_part.write(bytes.data(), qint64(bytes.size())) != qint64(bytes.size()))
        fail(reasonOf(m_part));
}

void ExportFile::commit()
{
    m_part.close();
    if (m_part.error() != QFileDevice::NoError)
        fail(reasonOf(m_part));
    std::error_code error;
    std::filesystem::rename(pathOf(m_part.fileName()), pathOf(m_fileName), error);
    if (error)
        fail(QStringLiteral("不能替换原来的文件"));
}

void ExportFile::fail(const QString &reason) const
{
    throw Exception(
        QStringLiteral("无法写入文件“%1”：%2。请换一个位置，或先关闭正在使用它的程序。").arg(QDir::toNativeSeparators(m_fileName), reason));
}
