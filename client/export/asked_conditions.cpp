#include "client/export/asked_conditions.h"

#include "client/export/screen_conditions.h"
#include "platform/dataset/data_set.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/handler.h"

#include <QAbstractButton>

using namespace client;
using namespace platform;

namespace client {

void AskedConditions::watch(TForm *screen, const QAbstractButton *queryButton)
{
    if (m_screens.contains(screen))
        return;
    m_screens.insert(screen, {});
    handle(queryButton, &QAbstractButton::pressed, this, [this, screen] {
        Asking &asking = m_screens[screen];
        asking.pressed = screenConditions(*screen);
        asking.isAsking = true;
    });
    // The screen's own handler is connected before: it has done its work.
    handle(queryButton, &QAbstractButton::clicked, this, [this, screen](bool) { m_screens[screen].isAsking = false; });
    handle(screen, &QObject::destroyed, this, [this](const QObject *gone) { m_screens.remove(gone); });
    for (QObject *component : screen->components()) {
        auto *dataSet = qobject_cast<TDataSet *>(component);
        if (!dataSet)
            continue;
        handle(dataSet, &TDataSet::afterOpen, this, [this, screen, dataSet] { remember(screen, dataSet); });
        handle(dataSet, &QObject::destroyed, this, [this](const QObject *gone) { m_asked.remove(gone); });
    }
}

void AskedConditions::remember(const TForm *screen, const TDataSet *dataSet)
{
    Asking &asking = m_screens[screen];
    if (asking.isAsking) {
        asking.asked = asking.pressed;
        asking.wasAsked = true;
    }
    if (asking.wasAsked)
        m_asked.insert(dataSet, asking.asked);
}

QList<ExportNote> AskedConditions::of(const TDBGridEh &grid) const
{
    const auto asked = m_asked.constFind(grid.dataSet());
    return asked == m_asked.constEnd() ? screenConditions(*screenOf(grid)) : *asked;
}

bool AskedConditions::haveChanged(const TDBGridEh &grid) const
{
    const auto asked = m_asked.constFind(grid.dataSet());
    return grid.dataSet() && grid.dataSet()->active() && asked != m_asked.constEnd() && *asked != screenConditions(*screenOf(grid));
}

} // namespace client
