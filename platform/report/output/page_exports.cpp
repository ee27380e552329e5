#include "platform/report/output/export_filter.h"
#include "platform/report/output/file_set.h"
#include "platform/report/output/page_painter.h"
#include "platform/report/output/pdf_text.h"
#include "platform/toolkit/exception.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>

using namespace report;

namespace {

QPageSize pageSizeOf(QSize paper) { return QPageSize(QSizeF(paper) / millimetre, QPageSize::Millimeter, QString(), QPageSize::ExactMatch); }

} // namespace

QString PdfExport::caption() const { return QStringLiteral("PDF 文件"); }

void PdfExport::exportReport(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    FileSet files;
    const QString path = files.add(fileName);
    PdfText texts;
    writePdf(
        report, path, [&](const Page &page) { texts.take(page); }, progress);
    texts.repair(path, report.resources());
    files.commit();
}

void PdfExport::writePdf(
    PreparedReport &report, const QString &path, const std::function<void(const Page &)> &drawn, const Progress &progress)
{
    // Written through a file of our own, since the writer does not say when the disk is full.
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw Exception(QStringLiteral("文件“%1”不能写入：").arg(path) + file.errorString());
    {
        QPdfWriter writer(&file);
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
            drawn(page);
        });
    }
    if (!file.flush() || file.error() != QFileDevice::NoError)
        throw Exception(QStringLiteral("文件“%1”没有写完：").arg(path) + file.errorString());
}

QString JpegExport::caption() const { return QStringLiteral("JPEG 图片"); }

void JpegExport::exportReport(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    const QFileInfo info(fileName);
    const QString stem = info.path() + u'/' + info.completeBaseName();
    const qreal scale = m_resolution / (25.4 * millimetre);
    FileSet files;
    PagePainter pages(report.resources());
    int number = 0;
    forEachPage(report, progress, [&](const Page &page) {
        ++number;
        const QString name = report.pageCount() == 1 ? fileName : stem + QStringLiteral("-%1.").arg(number) + info.suffix();
        QImage image((QSizeF(report.paper()) * scale).toSize(), QImage::Format_RGB32);
        image.setDotsPerMeterX(qRound(m_resolution / 0.0254));
        image.setDotsPerMeterY(qRound(m_resolution / 0.0254));
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(scale, scale);
        pages.paint(painter, page);
        painter.end();
        if (!image.save(files.add(name), "JPEG", m_quality))
            throw Exception(QStringLiteral("文件“%1”不能写入。").arg(name));
    });
    files.commit();
}
