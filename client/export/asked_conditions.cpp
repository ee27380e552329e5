#include "client/export/asked_conditions.h"

#include "client/export/screen_conditions.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/handler.h"

#include <QAbstractButton>

AskedConditions::AskedConditions()
{
    handle(Application, &TApplication::happened, this, [this](const QString &kind, const QVariantMap &) {
        if (m_asking && kind == u"statement")
            m_asked.insert(m_asking, m_pressed);
    });
}

void AskedConditions::watch(const QWidget *screen, const QAbstractButton *queryButton)
{
    if (m_watched.contains(screen))
        return;
    m_watched.append(screen);
    handle(queryButton, &QAbstractButton::pressed, this, [this, screen] {
        m_asking = screen;
        m_pressed = screenConditions(*screen);
    });
    // The screen's own handler is connected before: it has done its work.
    handle(queryButton, &QAbstractButton::clicked, this, [this](bool) { m_asking = nullptr; });
    handle(screen, &QObject::destroyed, this, [this](const QObject *gone) {
        m_asked.remove(gone);
        m_watched.removeOne(gone);
        if (m_asking == gone)
            m_asking = nullptr;
    });
}

QList<ExportNote> AskedConditions::of(const TDBGridEh &grid) const
{
    const QWidget *screen = screenOf(grid);
    const auto asked = m_asked.constFind(screen);
    return asked == m_asked.constEnd() ? screenConditions(*screen) : *asked;
}
