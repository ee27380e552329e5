#include "platform/report/output/file_set.h"

#include "platform/toolkit/exception.h"

#include <QFile>

#include <filesystem>

namespace report {

namespace {

QString temporary(const QString &name) { return name + QStringLiteral(".part"); }

std::filesystem::path pathOf(const QString &name) { return { name.toStdU16String() }; }

} // namespace

FileSet::~FileSet()
{
    for (const QString &name : m_names)
        QFile::remove(temporary(name));
}

QString FileSet::add(const QString &name)
{
    m_names.append(name);
    return temporary(name);
}

void FileSet::commit()
{
    for (const QString &name : m_names) {
        std::error_code error;
        std::filesystem::rename(pathOf(temporary(name)), pathOf(name), error);
        if (error)
            throw Exception(QStringLiteral("文件“%1”不能写入。").arg(name));
    }
    m_names.clear();
}

} // namespace report
