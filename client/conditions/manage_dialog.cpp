#include "client/conditions/manage_dialog.h"

#include "client/conditions/condition_store.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/refusal.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QSet>
#include <QVBoxLayout>

using namespace platform;

namespace client {
namespace {

constexpr int nameBefore = Qt::UserRole;

} // namespace

ManageConditionsDialog::ManageConditionsDialog(const QStringList &names, QWidget *parent)
    : QDialog(parent)
    , m_list(new QListWidget)
    , m_rename(new QPushButton(QStringLiteral("改名(&R)")))
    , m_delete(new QPushButton(QStringLiteral("删除(&D)")))
{
    setWindowTitle(QStringLiteral("管理条件"));
    m_list->setAccessibleName(QStringLiteral("保存的条件"));
    for (const QString &name : names) {
        auto *item = new QListWidgetItem(name, m_list);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        item->setData(nameBefore, name);
    }
    m_list->setCurrentRow(0);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->addButton(m_rename, QDialogButtonBox::ActionRole);
    buttons->addButton(m_delete, QDialogButtonBox::ActionRole);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    handle(m_rename, &QPushButton::clicked, this, [this] { m_list->editItem(m_list->currentItem()); });
    handle(m_delete, &QPushButton::clicked, this, [this] { delete m_list->currentItem(); });
    handle(m_list, &QListWidget::itemSelectionChanged, this, &ManageConditionsDialog::updateButtons);
    handle(buttons, &QDialogButtonBox::accepted, this, &ManageConditionsDialog::accept);
    handle(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    updateButtons();
}

QList<std::pair<QString, QString>> ManageConditionsDialog::names() const
{
    QList<std::pair<QString, QString>> names;
    for (int row = 0; row < m_list->count(); ++row)
        names.append({ m_list->item(row)->data(nameBefore).toString(), m_list->item(row)->text().simplified() });
    return names;
}

void ManageConditionsDialog::accept()
{
    QSet<QString> used;
    for (const auto &[before, now] : names()) {
        if (now.isEmpty() || now.size() > ConditionStore::longestName || used.contains(now)) {
            refuse(
                QStringLiteral("名称“%1”不能用：每个名称要不同，不能空，最多 %2 个字。").arg(now.left(60)).arg(ConditionStore::longestName),
                windowTitle());
            return;
        }
        used.insert(now);
    }
    QDialog::accept();
}

void ManageConditionsDialog::updateButtons()
{
    for (QPushButton *button : { m_rename, m_delete })
        button->setEnabled(m_list->currentItem());
}

} // namespace client
