#include "platform/editors/number_edit.h"

#include <QRegularExpressionValidator>

TDBNumberEditEh::TDBNumberEditEh(QWidget *parent)
    : QLineEdit(parent)
{
    setAlignment(Qt::AlignRight);
    setInputMethodHints(Qt::ImhFormattedNumbersOnly);
    setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[+-]?[0-9]{0,15}(\\.[0-9]{0,6})?")), this));
}
