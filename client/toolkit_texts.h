#pragma once

#include <QTranslator>

namespace client {

/// The toolkit's own texts (file dialogs, edit menus, window menus) in Chinese, without a translation file.
class ToolkitTexts : public QTranslator {
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *source, const char *disambiguation, int number) const override;
};

} // namespace client
