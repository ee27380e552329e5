#include "client/conditions/condition_memory.h"

#include "client/conditions/manage_dialog.h"
#include "client/conditions/save_dialog.h"
#include "client/conditions/screen_state.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/handler.h"

#include <QAction>
#include <QMenu>

#include <utility>

using namespace platform;

namespace client {
namespace {

constexpr int writingDelay = 2'000; ///< milliseconds; what a crash may take

QStringList namesOf(const KeptConditions &kept)
{
    QStringList names;
    for (const ConditionSet &set : kept.named)
        names.append(set.name);
    return names;
}

/// The ranges of time that a set means, whatever day it is: "昨天".
QString rangesOf(const ConditionSet &set)
{
    QStringList ranges;
    for (const ConditionValue &value : set.values) {
        if (value.range && !ranges.contains(rangeName(*value.range)))
            ranges.append(rangeName(*value.range));
    }
    return ranges.join(u'、');
}

} // namespace

ConditionMemory::ConditionMemory(const QString &folder)
    : m_store(folder)
{
    m_writing.setSingleShot(true);
    handle(&m_writing, &QTimer::timeout, this, &ConditionMemory::flush);
}

ConditionMemory::~ConditionMemory() { flush(); }

void ConditionMemory::keepLast(const TForm &screen)
{
    m_noted.insert(screen.objectName(), { {}, Clock::now(), conditionsOf(screen) });
    // One who queries again and again is not waited for.
    if (!m_writing.isActive())
        m_writing.start(writingDelay);
}

void ConditionMemory::flush()
{
    const QMap<QString, ConditionSet> noted = std::exchange(m_noted, {});
    for (const auto &[screen, last] : noted.asKeyValueRange())
        write(screen, last);
}

void ConditionMemory::write(const QString &screen, const ConditionSet &last)
{
    // Nobody asked for this; a box at each query would be in the way.
    try {
        KeptConditions kept = m_store.read(screen);
        kept.last = last;
        m_store.write(screen, kept);
    } catch (const Exception &exception) {
        Q_EMIT said(QStringLiteral("上次条件没有保存：") + exception.message());
    }
}

KeptConditions ConditionMemory::keptOf(const TForm &screen)
{
    flush();
    return m_store.read(screen.objectName());
}

void ConditionMemory::putBackLast(TForm &screen)
{
    const KeptConditions kept = keptOf(screen);
    if (!kept.last)
        return Q_EMIT said(QStringLiteral("“%1”还没有查询过，没有上次条件。").arg(screen.caption()));
    putBack(screen, *kept.last);
}

void ConditionMemory::putBack(TForm &screen, const ConditionSet &set)
{
    const QString name = set.name.isEmpty() ? QStringLiteral("上次条件") : u"条件“" + set.name + u'”';
    const QStringList problems = client::putBack(screen, set.valuesOn(Clock::today()));
    if (!problems.isEmpty()) {
        const QString text = QStringLiteral("%1已放回，但下列条件请检查：\n").arg(name) + problems.join(u'\n');
        Application->messageBox(text, screen.caption(), mbOk | mbIconWarning);
    }
    const QString ranges = rangesOf(set);
    Q_EMIT said(QStringLiteral("%1已放回（%2 保存%3），按 F9 查询")
                    .arg(name, set.kept.toString(QStringLiteral("MM-dd HH:mm")), ranges.isEmpty() ? ranges : u"，" + ranges));
}

void ConditionMemory::saveAs(const TForm &screen)
{
    KeptConditions kept = keptOf(screen);
    SaveConditionsDialog dialog(conditionsOf(screen), namesOf(kept), screen.window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    ConditionSet set { dialog.name(), Clock::now(), dialog.values() };
    if (ConditionSet *replaced = kept.find(set.name))
        *replaced = set;
    else if (kept.named.size() >= ConditionStore::mostNamed)
        throw Exception(QStringLiteral("每个窗口最多保存 %1 组条件，请先在“管理”里删除一些。").arg(ConditionStore::mostNamed));
    else
        kept.named.append(set);
    m_store.write(screen.objectName(), kept);
    Q_EMIT said(QStringLiteral("条件“%1”已保存").arg(set.name));
}

void ConditionMemory::manage(const TForm &screen)
{
    KeptConditions kept = keptOf(screen);
    ManageConditionsDialog dialog(namesOf(kept), screen.window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    QList<ConditionSet> named;
    for (const auto &[before, now] : dialog.names()) {
        named.append(*kept.find(before));
        named.last().name = now;
    }
    kept.named = named;
    m_store.write(screen.objectName(), kept);
}

QList<QAction *> ConditionMemory::addNamed(QMenu *menu, TForm *screen)
{
    QList<QAction *> actions;
    const KeptConditions kept = keptOf(*screen);
    for (const ConditionSet &set : kept.named) {
        const QString ranges = rangesOf(set);
        QAction *action
            = menu->addAction(QString(set.name).replace(u'&', QStringLiteral("&&")) + (ranges.isEmpty() ? ranges : u'\t' + ranges));
        handle(action, &QAction::triggered, screen, [this, screen, set] { putBack(*screen, set); });
        actions.append(action);
    }
    return actions;
}

} // namespace client
