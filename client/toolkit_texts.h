#pragma once

#include <QTranslator>

namespace client {

/// The toolkit's own texts (dialogs of files and printers, edit menus, window menus) in Chinese, without a translation file.
class ToolkitTexts : public QTranslator {
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *source, const char *disambiguation, int number) const override;
};

/// Lets the application speak Chinese: these texts, and behind them the toolkit's own file where it is installed.
void installToolkitTexts();

} // namespace client
