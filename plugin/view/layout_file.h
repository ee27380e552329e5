#pragma once

#include <QMap>
#include <QString>

/// The INI file in which grids keep their columns' order and widths: UTF-8, sections of key=value lines.
class LayoutFile {
public:
    /// Reads the file. A missing one is empty; one that cannot be read as such a file is renamed to "<name>.broken" and counts as
    /// empty, so that the designed layouts apply.
    explicit LayoutFile(const QString &path);

    QString value(const QString &section, const QString &key) const;
    /// Replaces a section as a whole; without values it goes.
    void setSection(const QString &section, const QMap<QString, QString> &values);
    /// Writes beside the file and renames at the end, so that the old file stays whole when that fails; returns whether it succeeded.
    bool save() const;

private:
    bool parse(const QString &text);

    QString m_path;
    QMap<QString, QMap<QString, QString>> m_sections;
};
