#include "plugin/view/layout_file.h"

#include "platform/files/safe_file.h"
#include "platform/toolkit/exception.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace plugin {

namespace {

QString shown(const QString &path) { return QDir::toNativeSeparators(path); }

} // namespace

LayoutFile::LayoutFile(const QString &path)
    : m_path(path)
{
    QFile file(path);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        m_isForeign = true;
        m_problem = QStringLiteral("布局文件“%1”打不开，表格用设计的列，新的布局不会保存。请检查这个文件的权限。").arg(shown(path));
        return;
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(file.readAll());
    file.close();
    if (decoder.hasError() || !parse(text))
        setAside();
}

void LayoutFile::setAside()
{
    m_sections.clear();
    const QString aside = m_path + u".broken";
    QFile::remove(aside);
    m_isForeign = !QFile::rename(m_path, aside);
    m_problem = QStringLiteral("布局文件“%1”已损坏，表格用设计的列。").arg(shown(m_path))
        + (m_isForeign ? QStringLiteral("它不能改名，新的布局不会保存，请删除它。")
                       : QStringLiteral("它改名为“%1”，新的布局会照常保存。").arg(QFileInfo(aside).fileName()));
}

bool LayoutFile::parse(const QString &text)
{
    QString section;
    for (const QString &raw : text.split(u'\n')) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(u';'))
            continue;
        const qsizetype equals = line.indexOf(u'=');
        if (line.startsWith(u'[') && line.endsWith(u']'))
            section = line.mid(1, line.size() - 2);
        else if (equals > 0 && !section.isEmpty() && !line.contains(QChar(0)))
            m_sections[section][line.left(equals).trimmed()] = line.mid(equals + 1).trimmed();
        else
            return false;
    }
    return true;
}

QString LayoutFile::value(const QString &section, const QString &key) const { return m_sections.value(section).value(key); }

QStringList LayoutFile::sectionsUnder(const QString &beginning) const
{
    QStringList names;
    for (const QString &section : m_sections.keys()) {
        if (section.startsWith(beginning))
            names.append(section.mid(beginning.size()));
    }
    return names;
}

void LayoutFile::setSection(const QString &section, const QMap<QString, QString> &values)
{
    if (values.isEmpty())
        m_sections.remove(section);
    else
        m_sections[section] = values;
}

bool LayoutFile::save()
{
    if (m_isForeign)
        return false;
    QString text;
    for (auto section = m_sections.begin(); section != m_sections.end(); ++section) {
        text += u'[' + section.key() + u"]\r\n";
        for (auto entry = section->begin(); entry != section->end(); ++entry)
            text += entry.key() + u'=' + entry.value() + u"\r\n";
    }
    QDir().mkpath(QFileInfo(m_path).path());
    try {
        files::SafeFile file(m_path, files::SafeFile::Kind::Document);
        file.write(text.toUtf8());
        file.commit();
        return true;
    } catch (const Exception &exception) {
        m_problem = QStringLiteral("表格的列宽和顺序没有保存。") + exception.message();
        return false;
    }
}

} // namespace plugin
