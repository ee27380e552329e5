#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class QWidget;

namespace files {

struct SavePlace {
    QString fileName; ///< absolute
    QString filter; ///< one of those that were offered
};

/// A name for a file about something, now: its title without what file names cannot hold, and the date and time.
QString datedName(const QString &title);

/// The folder that was chosen last, the person's documents at first: one that is there.
QString saveFolder();

/// Asks where to write a file, in that folder at first. A name without an ending gets that
/// of the filter. Nothing when the person gives up.
std::optional<SavePlace> askWhereToSave(
    QWidget *parent, const QString &caption, const QString &name, const QStringList &filters, const QString &filter = {});

} // namespace files
