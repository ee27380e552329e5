#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace plugin {

/// The INI file in which grids keep their columns' order and widths: UTF-8, sections of key=value lines.
class LayoutFile {
public:
    /// Reads the file. A missing one is empty; one that cannot be read as such a file is renamed to "<name>.broken" and counts as
    /// empty, so that the designed layouts apply.
    explicit LayoutFile(const QString &path);

    QString value(const QString &section, const QString &key) const;
    /// The sections whose names begin so, without that beginning.
    QStringList sectionsUnder(const QString &beginning) const;
    /// Replaces a section as a whole; without values it goes.
    void setSection(const QString &section, const QMap<QString, QString> &values);
    /// Writes the file as a whole. False when that fails: the old file stays then. One that could neither be read nor be set aside is
    /// never written over.
    [[nodiscard]] bool save();
    /// What went wrong while reading or saving, for the user; "" when nothing did.
    const QString &problem() const { return m_problem; }

private:
    [[nodiscard]] bool parse(const QString &text);
    void setAside();

    QString m_path;
    QString m_problem;
    bool m_isForeign = false; ///< there is something that is not ours to replace
    QMap<QString, QMap<QString, QString>> m_sections;
};

} // namespace plugin
