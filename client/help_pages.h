#pragma once

#include <QList>
#include <QString>

namespace client {

/// A page of the help, written for clerks.
struct HelpPage {
    QString name; ///< of the screen that it is about, or a word for a general one
    QString title;
    QString markdown;
};

/// The general pages, then those of the screens in the order of the menus.
const QList<HelpPage> &helpPages();
/// Null when there is none of that name.
const HelpPage *findHelpPage(const QString &name);

/// A page as it is shown; also what stands in the guide.
QString helpHtml(const QString &markdown);

/// Writes the whole guide as a page and as a document, "使用手册.html" and "使用手册.pdf", into a folder that is made if it is not there.
/// Throws Exception that says what could not be written.
void writeGuide(const QString &folder);

} // namespace client
