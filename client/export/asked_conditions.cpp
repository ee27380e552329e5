#include "client/export/asked_conditions.h"

#include "client/export/screen_conditions.h"
#include "platform/dataset/data_set.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/handler.h"

#include <QAbstractButton>

using namespace client;
using namespace platform;

namespace client {

void AskedConditions::watch(TForm *screen, const QAbstractButton *queryButton)
{
    if (!m_screens.contains(screen))
        watchDataSets(screen);
    if (m_screens[screen].buttons.contains(queryButton))
        return;
    m_screens[screen].buttons.append(queryButton);
    handle(queryButton, &QAbstractButton::pressed, this, [this, screen] {
        Asking &asking = m_screens[screen];
        asking.pressed = screenConditions(*screen);
        asking.opened.clear();
        asking.isAsking = true;
        asking.wasAnswered = false;
        asking.pressedAt = Clock::now();
        asking.sincePress.start();
    });
    // The screen's own handler is connected before: it has done its work.
    handle(queryButton, &QAbstractButton::clicked, this, [this, screen](bool) { finish(screen); });
}

void AskedConditions::watchDataSets(TForm *screen)
{
    m_screens.insert(screen, {});
    handle(screen, &QObject::destroyed, this, [this](const QObject *gone) { m_screens.remove(gone); });
    for (QObject *component : screen->components()) {
        auto *dataSet = qobject_cast<TDataSet *>(component);
        if (!dataSet)
            continue;
        handle(dataSet, &TDataSet::afterOpen, this, [this, screen, dataSet] { remember(screen, dataSet); });
        handle(dataSet, &QObject::destroyed, this, [this](const QObject *gone) {
            m_asked.remove(gone);
            m_old.remove(gone);
        });
    }
}

void AskedConditions::markOld(const TForm &screen)
{
    for (const QObject *component : screen.components()) {
        const auto *dataSet = qobject_cast<const TDataSet *>(component);
        if (dataSet && dataSet->active() && !m_screens[&screen].opened.contains(dataSet))
            m_old.insert(dataSet);
    }
}

void AskedConditions::finish(TForm *screen)
{
    Asking &asking = m_screens[screen];
    asking.isAsking = false;
    if (!asking.wasAnswered)
        return;
    asking.times = { asking.pressedAt, asking.sincePress.elapsed() };
    Q_EMIT answered(screen);
}

void AskedConditions::remember(const TForm *screen, const TDataSet *dataSet)
{
    ++m_openings;
    Asking &asking = m_screens[screen];
    asking.opened.insert(dataSet);
    m_old.remove(dataSet);
    if (asking.isAsking) {
        asking.asked = asking.pressed;
        asking.wasAsked = true;
        asking.wasAnswered = true;
    }
    if (asking.wasAsked)
        m_asked.insert(dataSet, asking.asked);
}

bool AskedConditions::areOld(const TDBGridEh &grid) const { return m_old.contains(grid.dataSet()); }

QList<ExportNote> AskedConditions::of(const TDBGridEh &grid) const
{
    const auto asked = m_asked.constFind(grid.dataSet());
    return asked == m_asked.constEnd() ? screenConditions(*screenOf(grid)) : *asked;
}

void AskedConditions::adopt(const TDBGridEh &original, const QObject *copy)
{
    m_asked.insert(copy, of(original));
    handle(copy, &QObject::destroyed, this, [this](const QObject *gone) { m_asked.remove(gone); });
}

bool AskedConditions::haveChanged(const TDBGridEh &grid) const
{
    const auto asked = m_asked.constFind(grid.dataSet());
    const QWidget *screen = screenOf(grid);
    return grid.dataSet() && grid.dataSet()->active() && m_screens.contains(screen) && asked != m_asked.constEnd()
        && *asked != screenConditions(*screen);
}

std::optional<AskedConditions::Times> AskedConditions::times(const TDBGridEh &grid) const
{
    const auto asking = m_screens.constFind(screenOf(grid));
    const bool wasAnswered = asking != m_screens.constEnd() && asking->times.asked.isValid();
    return wasAnswered && m_asked.contains(grid.dataSet()) ? std::optional(asking->times) : std::nullopt;
}

} // namespace client
