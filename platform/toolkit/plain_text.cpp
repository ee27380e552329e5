#include "platform/toolkit/plain_text.h"

#include <QLabel>
#include <QTextDocument>

namespace platform {

QLabel *plainLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    return label;
}

QString plainTip(const QString &text) { return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text; }

} // namespace platform
