#include "platform/files/save_dialog.h"

#include "platform/toolkit/clock.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/user_settings.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

using namespace platform;

namespace files {

namespace {

const QString folderKey = QStringLiteral("export/folder");

/// "csv" of "CSV 文件 (*.csv)"
QString endingOf(const QString &filter) { return filter.section(QStringLiteral("(*."), 1).chopped(1); }

} // namespace

QString saveFolder()
{
    for (const QString &path : { userSetting(folderKey).toString(), QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) }) {
        if (!path.isEmpty() && QFileInfo(path).isDir())
            return path;
    }
    return QDir::homePath();
}

QString datedName(const QString &title)
{
    QString name = title;
    for (QChar &letter : name) {
        if (QStringView(u"\\/:*?\"<>|").contains(letter))
            letter = u' ';
    }
    return QString(name + Clock::now().toString(u" yyyy-MM-dd HHmm")).simplified();
}

std::optional<SavePlace> askWhereToSave(
    QWidget *parent, const QString &caption, const QString &name, const QStringList &filters, const QString &filter)
{
    QFileDialog dialog(parent, caption, saveFolder());
    dialog.setNameFilters(filters);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const auto useFilter = [&dialog](const QString &chosen) { dialog.setDefaultSuffix(endingOf(chosen)); };
    handle(&dialog, &QFileDialog::filterSelected, &dialog, useFilter);
    dialog.selectNameFilter(filters.contains(filter) ? filter : filters.first());
    useFilter(dialog.selectedNameFilter());
    dialog.selectFile(name);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    const QString fileName = dialog.selectedFiles().first();
    keepUserSetting(folderKey, QFileInfo(fileName).absolutePath());
    return SavePlace { fileName, dialog.selectedNameFilter() };
}

} // namespace files
