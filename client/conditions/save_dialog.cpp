#include "client/conditions/save_dialog.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/refusal.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>

#include <algorithm>

using namespace platform;

namespace client {

SaveConditionsDialog::SaveConditionsDialog(const QList<ConditionValue> &values, const QStringList &names, QWidget *parent)
    : QDialog(parent)
    , m_values(values)
    , m_names(names)
    , m_name(new QComboBox)
{
    setWindowTitle(QStringLiteral("保存条件"));
    m_name->setEditable(true);
    m_name->setCompleter(nullptr);
    m_name->addItems(names);
    m_name->setCurrentIndex(-1);
    m_name->clearEditText();
    m_name->lineEdit()->setMaxLength(ConditionStore::longestName);
    m_name->lineEdit()->setPlaceholderText(QStringLiteral("例如 每日早会"));
    auto *layout = new QFormLayout(this);
    layout->addRow(QStringLiteral("名称(&N)："), m_name);
    for (const ConditionValue &value : values) {
        if (value.rangeEnd.isEmpty())
            continue;
        m_ranges.append({ value.control, addRange(value) });
        layout->addRow(value.caption.section(u' ', 0, 0) + u'：', m_ranges.last().second);
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    layout->addRow(buttons);
    handle(buttons, &QDialogButtonBox::accepted, this, &SaveConditionsDialog::accept);
    handle(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

QComboBox *SaveConditionsDialog::addRange(const ConditionValue &start)
{
    const auto end
        = std::find_if(m_values.begin(), m_values.end(), [&start](const ConditionValue &value) { return value.control == start.rangeEnd; });
    auto *range = new QComboBox;
    range->addItem(QStringLiteral("固定：%1 至 %2").arg(start.text, end == m_values.end() ? QString() : end->text), -1);
    for (const NamedRange named : namedRanges())
        range->addItem(rangeName(named) + QStringLiteral("（放回时按当天计算）"), int(named));
    range->setCurrentIndex(range->findData(start.range ? int(*start.range) : -1));
    return range;
}

QString SaveConditionsDialog::name() const { return m_name->currentText().simplified(); }

QList<ConditionValue> SaveConditionsDialog::values() const
{
    QList<ConditionValue> chosen = m_values;
    for (ConditionValue &value : chosen) {
        for (const auto &[control, range] : m_ranges) {
            if (control == value.control)
                value.range = range->currentData().toInt() < 0 ? std::nullopt : std::optional(NamedRange(range->currentData().toInt()));
        }
    }
    return chosen;
}

void SaveConditionsDialog::accept()
{
    if (name().isEmpty()) {
        refuse(u"请给这组条件起一个名称。", windowTitle());
        return m_name->setFocus();
    }
    const QString question = QStringLiteral("已有名为“%1”的条件，要替换它吗？").arg(name());
    if (m_names.contains(name()) && Application->messageBox(question, windowTitle(), mbOkCancel | mbIconQuestion) != idOk)
        return;
    QDialog::accept();
}

} // namespace client
