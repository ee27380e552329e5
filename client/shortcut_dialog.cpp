#include "client/shortcut_dialog.h"

#include "platform/grid/grid_colors.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace platform;

namespace client {

ShortcutDialog::ShortcutDialog(const QList<Shortcut> &shortcuts, QWidget *parent)
    : QDialog(parent)
    , m_shortcuts(shortcuts)
    , m_list(new QTreeWidget)
    , m_key(new QKeySequenceEdit)
    , m_notice(plainLabel())
{
    setWindowTitle(QStringLiteral("快捷键"));
    m_list->setHeaderLabels({ QStringLiteral("命令"), QStringLiteral("快捷键") });
    m_list->setRootIsDecorated(false);
    m_list->header()->setStretchLastSection(true);
    for (const Shortcut &shortcut : m_shortcuts)
        m_list->addTopLevelItem(new QTreeWidgetItem({ shortcut.command, QString() }));
    showKeys();
    m_list->resizeColumnToContents(0);
    m_list->setCurrentItem(m_list->topLevelItem(0));

    auto *line = new QHBoxLayout;
    line->addWidget(plainLabel(QStringLiteral("给选中的命令添加：")));
    line->addWidget(m_key, 1);
    const auto add = [this, line](const QString &caption, auto work) {
        auto *button = new QPushButton(caption);
        button->setAutoDefault(false);
        handle(button, &QPushButton::clicked, this, work);
        line->addWidget(button);
    };
    add(QStringLiteral("清除"), [this] { clearKeys(); });
    add(QStringLiteral("恢复此项"), [this] { restore(current()); });
    add(QStringLiteral("恢复默认"), [this] { restoreAll(); });

    m_notice->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    handle(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(line);
    layout->addWidget(
        plainLabel(QStringLiteral("条件栏：回车到下一栏，F4 打开列表。表格：回车到下一格，直接输入文字即查找。查询时：Esc 取消。")));
    layout->addWidget(m_notice);
    layout->addWidget(buttons);
    resize(QSize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 36).boundedTo(screen()->availableSize() * 9 / 10));
    handle(m_key, &QKeySequenceEdit::keySequenceChanged, this, &ShortcutDialog::addKey);
    m_list->setFocus();
}

int ShortcutDialog::current() const { return m_list->indexOfTopLevelItem(m_list->currentItem()); }

void ShortcutDialog::showKeys()
{
    for (int command = 0; command < m_shortcuts.size(); ++command)
        m_list->topLevelItem(command)->setText(1, m_shortcuts[command].keysText());
}

void ShortcutDialog::announce()
{
    showKeys();
    Q_EMIT changed(m_shortcuts);
}

void ShortcutDialog::addKey(const QKeySequence &pressed)
{
    if (pressed.isEmpty() || current() < 0)
        return;
    const QKeySequence key(pressed[0]); // one press; what follows would begin a second one
    m_key->clear();
    m_notice->setText(refusalOf(key));
    const int owner = commandWith(m_shortcuts, key);
    if (!m_notice->text().isEmpty() || owner == current())
        return;
    Shortcut &wanted = m_shortcuts[current()];
    if (owner >= 0) {
        const QString question
            = QStringLiteral("“%1”已用于“%2”，要改给“%3”吗？").arg(key.toString(), m_shortcuts[owner].command, wanted.command);
        if (Application->messageBox(question, windowTitle(), mbOkCancel | mbIconQuestion) != idOk)
            return;
        m_shortcuts[owner].keys.removeAll(key);
    }
    wanted.keys.append(key);
    announce();
}

void ShortcutDialog::clearKeys()
{
    if (current() < 0)
        return;
    m_shortcuts[current()].keys.clear();
    announce();
}

/// A designed key may have gone to another command meanwhile; then it stays there.
void ShortcutDialog::restore(int command)
{
    if (command < 0)
        return;
    m_shortcuts[command].keys.clear();
    QStringList taken;
    for (const QKeySequence &key : std::as_const(m_shortcuts[command].designed)) {
        const int owner = commandWith(m_shortcuts, key);
        if (owner < 0)
            m_shortcuts[command].keys.append(key);
        else
            taken.append(QStringLiteral("“%1”现在用于“%2”").arg(key.toString(), m_shortcuts[owner].command));
    }
    m_notice->setText(taken.join(u'；'));
    announce();
}

void ShortcutDialog::restoreAll()
{
    for (Shortcut &shortcut : m_shortcuts)
        shortcut.keys = shortcut.designed;
    m_notice->clear();
    announce();
}

} // namespace client
