#include "platform/files/saved_file_label.h"

#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <chrono>

using namespace platform;
using namespace std::chrono_literals;

namespace files {

namespace {

constexpr auto shownFor = 5min;
const QString folderLink = QStringLiteral("folder");

} // namespace

SavedFileLabel::SavedFileLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_end.setSingleShot(true);
    handle(&m_end, &QTimer::timeout, this, &QWidget::hide);
    handle(this, &QLabel::linkActivated, this, &SavedFileLabel::open);
    hide();
}

void SavedFileLabel::tell(const QString &words, const QString &fileName)
{
    m_fileName = QFileInfo(fileName).absoluteFilePath();
    const QString shown = QDir::toNativeSeparators(m_fileName);
    // The links first: a long path is what may be cut.
    setText(QStringLiteral("%1　<a href=\"file\">打开</a>　<a href=\"folder\">打开文件夹</a>　%2")
                .arg(words.toHtmlEscaped(), shown.toHtmlEscaped()));
    setToolTip(plainTip(shown));
    setAccessibleName(words + u' ' + shown);
    show();
    m_end.start(shownFor);
}

void SavedFileLabel::open(const QString &link)
{
    const QString path = link == folderLink ? QFileInfo(m_fileName).absolutePath() : m_fileName;
    if (!QFileInfo::exists(path))
        throw Exception(QStringLiteral("“%1”已经不在了。").arg(QDir::toNativeSeparators(path)));
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        throw Exception(QStringLiteral("没有能打开“%1”的程序。").arg(QDir::toNativeSeparators(path)));
}

} // namespace files
