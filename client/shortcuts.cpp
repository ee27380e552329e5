#include "client/shortcuts.h"

#include "platform/toolkit/user_settings.h"

#include <QStringList>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

const QString setting = QStringLiteral("Shortcuts");

QString joined(const QList<QKeySequence> &keys) { return QKeySequence::listToString(keys, QKeySequence::PortableText); }

bool isFunctionKey(Qt::Key key) { return key >= Qt::Key_F1 && key <= Qt::Key_F35; }

} // namespace

QString Shortcut::keysText() const
{
    QStringList texts;
    for (const QKeySequence &key : keys) {
        QString text = key.toString();
        text.replace(QStringLiteral("Return"), QStringLiteral("回车")).replace(QStringLiteral("Enter"), QStringLiteral("小键盘回车"));
        texts.append(text.replace(QStringLiteral("Space"), QStringLiteral("空格")));
    }
    return texts.join(u'、');
}

void takeKeptKeys(QList<Shortcut> &shortcuts)
{
    for (const QString &line : userSetting(setting).toStringList()) {
        const auto kept = std::ranges::find(shortcuts, line.section(u'\t', 0, 0), &Shortcut::command);
        if (kept != shortcuts.end())
            kept->keys = QKeySequence::listFromString(line.section(u'\t', 1), QKeySequence::PortableText);
    }
}

void keepKeys(const QList<Shortcut> &shortcuts)
{
    QStringList lines;
    for (const Shortcut &shortcut : shortcuts) {
        if (shortcut.keys != shortcut.designed)
            lines.append(shortcut.command + u'\t' + joined(shortcut.keys));
    }
    keepUserSetting(setting, lines.isEmpty() ? QVariant() : QVariant(lines));
}

int commandWith(const QList<Shortcut> &shortcuts, const QKeySequence &key)
{
    const auto owner = std::ranges::find_if(shortcuts, [&key](const Shortcut &shortcut) { return shortcut.keys.contains(key); });
    return owner == shortcuts.end() ? -1 : int(owner - shortcuts.begin());
}

QString refusalOf(const QKeySequence &key)
{
    const QKeyCombination pressed = key.isEmpty() ? QKeyCombination() : key[0];
    const bool commands = pressed.keyboardModifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (key.isEmpty() || pressed.key() == Qt::Key_unknown)
        return QStringLiteral("请按下要用的键。");
    if (!commands && !isFunctionKey(pressed.key()))
        return QStringLiteral("“%1”要留给输入和移动。请同时按住 Ctrl 或 Alt，或用 F1 到 F12。").arg(key.toString());
    return {};
}

} // namespace client
