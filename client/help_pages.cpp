#include "client/help_pages.h"

#include "client/screen_list.h"
#include "platform/files/safe_file.h"
#include "platform/toolkit/exception.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTextDocument>

#include <algorithm>

/// The pages lie in a static library, whose resources nobody else registers. The macro works in no namespace.
static void registerPages() { Q_INIT_RESOURCE(help); }

namespace client {
namespace {

const QString folder = QStringLiteral(":/kelvara/help/");
const QString guideTitle = QStringLiteral("Kelvara 查询系统 使用手册");
const QString styleSheet = QStringLiteral("table { border-collapse: collapse; border-color: #c8ccd2; } th, td { padding: 3px 8px; } "
                                          "h1 { font-size: x-large; } h2 { font-size: large; }");

QString textOf(const QString &name)
{
    QFile file(folder + name + u".md");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Puts common parts in the place of their names, as in "@range_31". One of several lines stands apart from what follows.
QString withCommonParts(const QString &markdown)
{
    static const QRegularExpression name(QStringLiteral("@([a-z0-9_]+) ?"));
    QString text;
    qsizetype end = 0;
    for (const QRegularExpressionMatch &match : name.globalMatch(markdown)) {
        const QString part = textOf(u"common/" + match.captured(1)).trimmed();
        text += QStringView(markdown).mid(end, match.capturedStart() - end) + part;
        if (part.contains(u'\n'))
            text += QStringLiteral("\n\n");
        end = match.capturedEnd();
    }
    return text + QStringView(markdown).mid(end);
}

HelpPage page(const QString &name)
{
    const QString markdown = withCommonParts(textOf(name));
    return { name, markdown.section(u'\n', 0, 0).mid(2), markdown };
}

/// What stands between the page's "body" tags.
QString bodyOf(const QString &html)
{
    const qsizetype start = html.indexOf(u'>', html.indexOf(QStringLiteral("<body"))) + 1;
    return html.mid(start, html.indexOf(QStringLiteral("</body>")) - start);
}

QString guideHtml()
{
    QString contents;
    QString pages;
    for (const HelpPage &page : helpPages()) {
        contents += QStringLiteral("<li><a href='#%1'>%2</a></li>").arg(page.name, page.title);
        pages += QStringLiteral("<a name='%1' id='%1'></a>").arg(page.name) + bodyOf(helpHtml(page.markdown));
    }
    return QStringLiteral("<!DOCTYPE html><html lang='zh-CN'><head><meta charset='utf-8'><title>%1</title><style>%2</style></head>"
                          "<body><h1>%1</h1><ul>%3</ul>%4</body></html>")
        .arg(guideTitle, styleSheet, contents, pages);
}

QByteArray guidePdf(const QString &html)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(guideTitle);
    writer.setPageSize(QPageSize(QPageSize::A4));
    QTextDocument document;
    document.setHtml(html);
    document.print(&writer);
    return bytes;
}

void writeFile(const QString &fileName, const QByteArray &bytes)
{
    files::SafeFile file(fileName, files::SafeFile::Kind::Document);
    file.write(bytes);
    file.commit();
}

} // namespace

const QList<HelpPage> &helpPages()
{
    static const QList<HelpPage> pages = [] {
        registerPages();
        QList<HelpPage> read;
        for (const char16_t *name : { u"start", u"conditions", u"list", u"results" })
            read.append(page(QString::fromUtf16(name)));
        for (const ScreenGroup &group : screenGroups) {
            for (const ScreenItem &screen : group.screens)
                read.append(page(screen.name.toString()));
        }
        return read;
    }();
    return pages;
}

const HelpPage *findHelpPage(const QString &name)
{
    const QList<HelpPage> &pages = helpPages();
    const auto found = std::find_if(pages.begin(), pages.end(), [&name](const HelpPage &page) { return page.name == name; });
    return found == pages.end() ? nullptr : &*found;
}

QString helpHtml(const QString &markdown)
{
    QTextDocument document;
    document.setMarkdown(markdown);
    return document.toHtml();
}

void writeGuide(const QString &folderName)
{
    if (!QDir().mkpath(folderName))
        throw Exception(QStringLiteral("无法建立目录“%1”，请换一个可以写入的目录。").arg(QDir::toNativeSeparators(folderName)));
    const QString html = guideHtml();
    writeFile(folderName + QStringLiteral("/使用手册.html"), html.toUtf8());
    writeFile(folderName + QStringLiteral("/使用手册.pdf"), guidePdf(html));
}

} // namespace client
