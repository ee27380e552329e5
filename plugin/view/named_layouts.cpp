#include "plugin/view/named_layouts.h"

#include "platform/grid/db_grid.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"
#include "plugin/view/grid_layout.h"
#include "plugin/view/layout_file.h"
#include "plugin/view/layout_storage.h"

#include <QInputDialog>
#include <QMenu>

using namespace platform;

namespace plugin {

namespace {

const QString layoutMark = QStringLiteral(".Layout.");
constexpr qsizetype longestName = 30;

/// What can stand between the brackets of a section, and ends no name within it.
QString storableName(QString name)
{
    for (QChar &letter : name) {
        if (QStringView(u"[]=.;").contains(letter) || letter < u' ')
            letter = u' ';
    }
    name = name.simplified().left(longestName);
    if (name.isEmpty())
        throw Exception(QStringLiteral("布局要有名称，请输入几个字。"));
    return name;
}

void store(LayoutFile &file)
{
    if (!file.save())
        throw Exception(file.problem());
}

} // namespace

NamedLayouts::NamedLayouts(TDBGridEh &grid, const QString &section)
    : QObject(&grid)
    , m_grid(grid)
    , m_section(section)
{
    handle(&grid, &TDBGridEh::columnMenuOpening, this, &NamedLayouts::addTo);
}

QString NamedLayouts::sectionOf(const QString &name) const { return m_section + layoutMark + storableName(name); }

QStringList NamedLayouts::names() const
{
    QStringList names = LayoutFile(layoutFileName()).sectionsUnder(m_section + layoutMark);
    names.removeIf([](const QString &name) { return name.contains(u'.'); });
    return names;
}

void NamedLayouts::save(const QString &name)
{
    LayoutFile file(layoutFileName());
    storeGridLayout(m_grid, file, sectionOf(name));
    store(file);
}

void NamedLayouts::apply(const QString &name)
{
    m_grid.restoreDesignedColumns();
    loadGridLayout(m_grid, LayoutFile(layoutFileName()), sectionOf(name));
}

void NamedLayouts::remove(const QString &name)
{
    LayoutFile file(layoutFileName());
    removeGridLayout(file, sectionOf(name));
    store(file);
}

void NamedLayouts::addTo(QMenu *menu)
{
    QMenu *layouts = menu->addMenu(QStringLiteral("布局"));
    const QStringList known = names();
    const auto shown = [](QString name) { return name.replace(u'&', QStringLiteral("&&")); };
    for (const QString &name : known)
        handle(layouts->addAction(shown(name)), &QAction::triggered, this, [this, name] { apply(name); });
    layouts->addSeparator();
    handle(layouts->addAction(QStringLiteral("保存布局为…")), &QAction::triggered, this, &NamedLayouts::saveAsking);
    if (known.isEmpty())
        return;
    QMenu *removal = layouts->addMenu(QStringLiteral("删除布局"));
    for (const QString &name : known)
        handle(removal->addAction(shown(name)), &QAction::triggered, this, [this, name] { remove(name); });
}

void NamedLayouts::saveAsking()
{
    bool accepted = false;
    const QString name
        = QInputDialog::getItem(&m_grid, QStringLiteral("保存布局为"), QStringLiteral("布局的名称："), names(), 0, true, &accepted);
    if (accepted)
        save(name);
}

} // namespace plugin
