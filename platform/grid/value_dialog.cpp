#include "platform/grid/value_dialog.h"

#include "platform/dataset/text_pattern.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace platform {

namespace {

constexpr int textRole = Qt::UserRole;
constexpr int nameRole = Qt::UserRole + 1;
constexpr QSize comfortable(300, 420);

} // namespace

ValueDialog::ValueDialog(const QString &title, const QList<Value> &values, List list, QWidget *parent)
    : QDialog(parent)
    , m_text(new QLineEdit)
    , m_list(new QListWidget)
    , m_all(new QCheckBox(QStringLiteral("全选(&A)")))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
{
    setWindowTitle(QStringLiteral("筛选：") + title);
    m_text->setPlaceholderText(QStringLiteral("文字或拼音首字母"));
    m_text->setAccessibleName(QStringLiteral("查找值"));
    m_text->setClearButtonEnabled(true);
    m_list->setUniformItemSizes(true);
    m_list->setAccessibleName(title);
    for (const Value &value : values) {
        auto *item = new QListWidgetItem(QStringLiteral("%1　(%L2)").arg(value.name).arg(value.rows), m_list);
        item->setData(textRole, value.text);
        item->setData(nameRole, value.name);
        item->setCheckState(value.state);
    }
    m_list->setCurrentRow(0);
    m_buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("确定"));
    m_buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("取消"));

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    layout->addWidget(m_all);
    layout->addWidget(m_list);
    if (list == List::Cut)
        layout->addWidget(
            plainLabel(QStringLiteral("这一列的值太多，只列出前 %L1 个；\n找别的值请用表格上方的筛选栏。").arg(values.size())));
    layout->addWidget(m_buttons);
    resize(comfortable.boundedTo(screen()->availableSize() * 9 / 10));

    handle(m_text, &QLineEdit::textChanged, this, &ValueDialog::narrow);
    handle(m_all, &QCheckBox::clicked, this, [this](bool on) { tickAll(on ? Qt::Checked : Qt::Unchecked); });
    handle(m_list, &QListWidget::itemChanged, this, &ValueDialog::showTicks);
    handle(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    handle(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    showTicks();
}

void ValueDialog::narrow(const QString &text)
{
    const TextPattern pattern(text, TextPattern::Match::Anywhere, Qt::CaseInsensitive, HanText::AlsoAsRead);
    for (int row = 0; row < m_list->count(); ++row)
        m_list->item(row)->setHidden(!pattern.matches(m_list->item(row)->data(nameRole).toString()));
    showTicks();
}

void ValueDialog::tickAll(Qt::CheckState state)
{
    {
        const QSignalBlocker quiet(m_list);
        for (int row = 0; row < m_list->count(); ++row) {
            if (!m_list->item(row)->isHidden())
                m_list->item(row)->setCheckState(state);
        }
    }
    showTicks();
}

/// Values that the line hides count as not ticked: who looks for some wants these.
std::optional<ValueDialog::Choice> ValueDialog::choice() const
{
    QStringList ticked;
    QStringList others;
    for (int row = 0; row < m_list->count(); ++row) {
        const QListWidgetItem *item = m_list->item(row);
        const bool isTicked = !item->isHidden() && item->checkState() == Qt::Checked;
        (isTicked ? ticked : others).append(item->data(textRole).toString());
    }
    if (others.isEmpty())
        return {};
    // Values that are not listed go with the greater part, unless some were looked for.
    if (m_text->text().isEmpty() && ticked.size() > others.size())
        return Choice { others, QuickFilter::Keep::Others };
    return Choice { ticked, QuickFilter::Keep::Those };
}

void ValueDialog::showTicks()
{
    int shown = 0;
    int ticked = 0;
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->isHidden())
            continue;
        ++shown;
        ticked += m_list->item(row)->checkState() == Qt::Checked ? 1 : 0;
    }
    m_all->setCheckState(ticked == 0 ? Qt::Unchecked : ticked == shown ? Qt::Checked : Qt::PartiallyChecked);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(ticked > 0);
}

} // namespace platform
