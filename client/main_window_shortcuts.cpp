#include "client/main_window.h"

#include "client/shortcut_dialog.h"
#include "platform/grid/grid_commands.h"
#include "platform/toolkit/handler.h"

#include <QAction>

#include <algorithm>

using namespace platform;

namespace client {

QList<Shortcut> MainWindow::shortcuts() const
{
    QList<Shortcut> shortcuts;
    for (const auto &[action, command] : m_actions)
        shortcuts.append({ action->text(), designedKeys(*command), action->shortcuts() });
    for (const GridCommand &command : gridCommands()) {
        if (std::ranges::find(shortcuts, command.text, &Shortcut::command) == shortcuts.end())
            shortcuts.append({ command.text.toString(), command.designedKeys(), command.keys() });
    }
    return shortcuts;
}

void MainWindow::useShortcuts(const QList<Shortcut> &shortcuts)
{
    const auto keysOf = [&shortcuts](QStringView command) { return std::ranges::find(shortcuts, command, &Shortcut::command)->keys; };
    for (const auto &[action, command] : std::as_const(m_actions)) {
        const QList<QKeySequence> keys = keysOf(action->text());
        const QString name = QString(action->text()).remove(u'…');
        action->setShortcuts(keys);
        action->setToolTip(keys.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, keys.first().toString()));
    }
    for (const GridCommand &command : gridCommands())
        setGridCommandKeys(command.id, keysOf(command.text));
}

void MainWindow::showShortcuts()
{
    auto *dialog = new ShortcutDialog(shortcuts(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    handle(dialog, &ShortcutDialog::changed, this, [this](const QList<Shortcut> &changed) {
        useShortcuts(changed);
        keepKeys(changed);
    });
    dialog->open();
}

} // namespace client
