#include "plugin/view/layout_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

LayoutFile::LayoutFile(const QString &path)
    : m_path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(file.readAll());
    file.close();
    if (!decoder.hasError() && parse(text))
        return;
    m_sections.clear();
    const QString aside = path + u".broken";
    QFile::remove(aside);
    QFile::rename(path, aside);
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

void LayoutFile::setSection(const QString &section, const QMap<QString, QString> &values)
{
    if (values.isEmpty())
        m_sections.remove(section);
    else
        m_sections[section] = values;
}

bool LayoutFile::save() const
{
    QString text;
    for (auto section = m_sections.begin(); section != m_sections.end(); ++section) {
        text += u'[' + section.key() + u"]\r\n";
        for (auto entry = section->begin(); entry != section->end(); ++entry)
            text += entry.key() + u'=' + entry.value() + u"\r\n";
    }
    QDir().mkpath(QFileInfo(m_path).path());
    QSaveFile file(m_path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.commit();
}
