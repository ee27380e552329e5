#include "platform/report/output/page_exports.h"

#include "platform/files/safe_file.h"
#include "platform/report/output/page_painter.h"
#include "platform/report/output/pdf_text.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>

#include <memory>
#include <vector>

namespace report {

namespace {

QPageSize pageSizeOf(QSize paper) { return QPageSize(QSizeF(paper) / millimetre, QPageSize::Millimeter, QString(), QPageSize::ExactMatch); }

/// A picture of a page in the form of a JPEG file; empty when that fails.
QByteArray pictureOf(PagePainter &pages, const Page &page, QSize paper, int resolution)
{
    constexpr int quality = 90;
    const qreal scale = resolution / (25.4 * millimetre);
    QImage image((QSizeF(paper) * scale).toSize(), QImage::Format_RGB32);
    image.setDotsPerMeterX(qRound(resolution / 0.0254));
    image.setDotsPerMeterY(qRound(resolution / 0.0254));
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.scale(scale, scale);
    pages.paint(painter, page);
    painter.end();
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    return image.save(&bytes, "JPEG", quality) ? bytes.data() : QByteArray();
}

} // namespace

QString PdfExport::caption() const { return QStringLiteral("PDF 文件"); }

void PdfExport::write(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    files::SafeFile file(fileName);
    PdfText texts;
    {
        QPdfWriter writer(&file.device());
        writer.setResolution(int(25.4 * millimetre));
        writer.setPageMargins({});
        writer.setPageSize(pageSizeOf(report.paper()));
        writer.setTitle(report.title());
        QPainter painter;
        PagePainter pages(report.resources());
        forEachPage(report, progress, [&](const Page &page) {
            if (painter.isActive())
                writer.newPage();
            else
                painter.begin(&writer);
            pages.paint(painter, page);
            texts.take(page);
        });
    }
    texts.repair(file.device(), report.resources());
    file.commit();
}

QString JpegExport::caption() const { return QStringLiteral("JPEG 图片"); }

void JpegExport::write(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    const QFileInfo info(fileName);
    const QString stem = info.path() + u'/' + info.completeBaseName();
    std::vector<std::unique_ptr<files::SafeFile>> pictures;
    PagePainter pages(report.resources());
    forEachPage(report, progress, [&](const Page &page) {
        const QString number = QStringLiteral("-%1.").arg(pictures.size() + 1);
        const QString name = report.pageCount() == 1 ? fileName : QString(stem + number + info.suffix());
        files::SafeFile &picture = *pictures.emplace_back(std::make_unique<files::SafeFile>(name));
        const QByteArray bytes = pictureOf(pages, page, report.paper(), m_resolution);
        if (bytes.isEmpty())
            picture.fail(QStringLiteral("内存不足"));
        picture.write(bytes);
        // No system keeps as many files open as a report may have pages.
        picture.close();
    });
    for (const auto &picture : pictures)
        picture->commit();
}

} // namespace report
