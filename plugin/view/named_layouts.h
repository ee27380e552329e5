#pragma once

#include <QObject>
#include <QStringList>

class QMenu;
class TDBGridEh;

namespace plugin {

/// The column layouts of a grid that a person has given names; they stand in the layout file beside the grid's own, and the
/// menu of its columns offers them.
class NamedLayouts : public QObject {
    Q_OBJECT

public:
    /// Goes with the grid. `section` is the grid's in the layout file.
    NamedLayouts(TDBGridEh &grid, const QString &section);

    QStringList names() const;
    /// Keeps the present layout under a name, in place of one that has it. Throws Exception when it cannot be kept.
    void save(const QString &name);
    void apply(const QString &name);
    void remove(const QString &name); ///< throws as save() does

private:
    void addTo(QMenu *menu);
    void saveAsking();
    QString sectionOf(const QString &name) const;

    TDBGridEh &m_grid;
    QString m_section;
};

} // namespace plugin
