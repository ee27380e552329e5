#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace platform {

// Texts of databases, servers and files may look like markup; shown as such they would open the files and shares that they name.

/// A label that shows every text letter by letter. Owned by its parent or its layout.
QLabel *plainLabel(const QString &text = {}, QWidget *parent = nullptr);
/// A text as a tool tip that shows it letter by letter.
QString plainTip(const QString &text);

} // namespace platform
