#include "platform/toolkit/radio_group.h"

#include <QRadioButton>
#include <QVBoxLayout>

TRadioGroup::TRadioGroup(QWidget *parent)
    : QGroupBox(parent)
    , m_buttons(new QButtonGroup(this))
{
    setLayout(new QVBoxLayout);
    connect(m_buttons, &QButtonGroup::idClicked, this, &TRadioGroup::clicked);
}

void TRadioGroup::setItems(const QStringList &items)
{
    qDeleteAll(m_buttons->buttons());
    for (const QString &item : items) {
        auto *button = new QRadioButton(item);
        m_buttons->addButton(button, int(m_buttons->buttons().size()));
        layout()->addWidget(button);
    }
}

QStringList TRadioGroup::items() const
{
    QStringList items;
    for (const QAbstractButton *button : m_buttons->buttons())
        items.append(button->text());
    return items;
}

void TRadioGroup::setItemIndex(int index)
{
    m_buttons->setExclusive(false);
    for (QAbstractButton *button : m_buttons->buttons())
        button->setChecked(m_buttons->id(button) == index);
    m_buttons->setExclusive(true);
}
