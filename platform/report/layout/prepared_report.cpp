#include "platform/report/layout/prepared_report.h"

#include "platform/dataset/data_set.h"
#include "platform/files/safe_file.h"
#include "platform/report/layout/page_packing.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>

namespace report {

namespace {

constexpr char magic[] = "KELVARA PAGES 1\n";
constexpr qsizetype magicSize = sizeof magic - 1;
constexpr qsizetype checksumSize = 32;
constexpr qint64 largestFile = qint64(1) << 30;
constexpr quint32 mostPages = 1'000'000;

QByteArray checksum(const QByteArray &bytes) { return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256); }

} // namespace

PreparedReport::PreparedReport(Definition definition, TDataSet *rows, const QList<ReportAddIn *> &addIns, StyleEvent styleEvent)
    : m_title(definition.title)
    , m_paper(definition.paper)
    , m_rowCount(rows->recordCount())
    , m_truncated(!rows->truncationNotice().isEmpty())
{
    m_builders.push_back(std::make_unique<PageBuilder>(std::move(definition), rows, addIns, std::move(styleEvent), m_resources));
}

PreparedReport::PreparedReport(
    const QList<Definition> &parts, TDataSet *rows, const QList<ReportAddIn *> &addIns, const StyleEvent &styleEvent)
    : m_title(parts.first().title)
    , m_paper(parts.first().paper)
    , m_rowCount(rows->recordCount())
    , m_truncated(!rows->truncationNotice().isEmpty())
{
    for (const Definition &part : parts)
        m_builders.push_back(std::make_unique<PageBuilder>(part, rows, addIns, styleEvent, m_resources));
}

PreparedReport::~PreparedReport() = default;

bool PreparedReport::prepareNextPage()
{
    if (m_builders.empty())
        return false;
    if (const auto page = m_builders[m_pages.size() % m_builders.size()]->next()) {
        m_pages.push_back(packedPage(*page));
        return true;
    }
    m_builders.clear();
    return false;
}

bool PreparedReport::prepareAllPages(const Progress &progress)
{
    while (prepareNextPage()) {
        if (progress && !progress(pageCount(), rowsDone(), rowCount()))
            return false;
    }
    return true;
}

int PreparedReport::rowsDone() const { return m_builders.empty() ? m_rowCount : m_builders.back()->rowsDone(); }

int PreparedReport::rowCount() const { return m_rowCount; }

Page PreparedReport::page(int index) const
{
    Page page = unpackedPage(m_pages[std::size_t(index)], m_resources);
    const QString count = isComplete() ? QString::number(pageCount()) : QStringLiteral("?");
    for (Primitive &primitive : page) {
        if (primitive.text.contains(pageCountMark))
            primitive.text.replace(pageCountMark, count);
    }
    return page;
}

QStringList PreparedReport::texts(int index) const
{
    QStringList texts;
    for (const Primitive &primitive : page(index)) {
        if (!primitive.text.isEmpty())
            texts.append(QString(primitive.text).remove(QChar(QChar::LineSeparator)));
    }
    return texts;
}

QMap<QString, QString> PreparedReport::namedTexts() const
{
    const auto &sources = m_resources.sources;
    const auto named = std::count_if(sources.begin(), sources.end(), [](const Source &source) { return !source.name.isEmpty(); });
    QMap<QString, QString> texts;
    for (int index = 0; index < pageCount() && texts.size() < named; ++index) {
        for (const Primitive &primitive : page(index)) {
            const QString &name = m_resources.sources[primitive.source].name;
            if (primitive.shape == Shape::Text && !name.isEmpty() && !texts.contains(name))
                texts.insert(name, QString(primitive.text).remove(QChar(QChar::LineSeparator)));
        }
    }
    return texts;
}

QByteArray PreparedReport::packed() const
{
    QByteArray bytes(magic, magicSize);
    QDataStream stream(&bytes, QIODevice::Append);
    stream << m_title << m_paper << qint32(m_rowCount);
    writeResources(stream, m_resources);
    stream << quint32(m_pages.size());
    for (const QByteArray &page : m_pages)
        stream << page;
    return bytes;
}

void PreparedReport::unpack(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    stream.skipRawData(int(magicSize));
    qint32 rows = 0;
    stream >> m_title >> m_paper >> rows;
    m_rowCount = rows;
    m_resources = readResources(stream);
    quint32 pages = 0;
    stream >> pages;
    if (pages == 0 || pages > mostPages)
        throw Exception(QStringLiteral("页数不对"));
    for (; pages > 0 && stream.status() == QDataStream::Ok; --pages)
        stream >> m_pages.emplace_back();
    const QRect allowed(1000, 1000, 200'000, 200'000);
    if (stream.status() != QDataStream::Ok || !stream.atEnd() || !allowed.contains(m_paper.width(), m_paper.height()))
        throw Exception(QStringLiteral("内容不完整"));
}

void PreparedReport::save(const QString &fileName, const Progress &progress)
{
    if (!prepareAllPages(progress))
        throw Exception(QStringLiteral("保存已取消。"));
    const QByteArray bytes = packed();
    files::SafeFile file(fileName, files::SafeFile::Kind::Document);
    file.write(bytes);
    file.write(checksum(bytes));
    file.commit();
}

std::unique_ptr<PreparedReport> PreparedReport::load(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("文件“%1”打不开：").arg(fileName) + file.errorString());
    QByteArray bytes = file.read(std::min(file.size(), largestFile));
    if (!bytes.startsWith(QByteArrayView(magic, magicSize)) || file.size() > largestFile)
        throw Exception(QStringLiteral("文件“%1”不是保存的报表。").arg(fileName));
    const QByteArray sum = bytes.right(checksumSize);
    bytes.chop(checksumSize);
    if (checksum(bytes) != sum)
        throw Exception(QStringLiteral("保存的报表“%1”不完整或已损坏，请重新打印并保存。").arg(fileName));
    std::unique_ptr<PreparedReport> report(new PreparedReport);
    try {
        report->unpack(bytes);
    } catch (const Exception &exception) {
        throw Exception(QStringLiteral("保存的报表“%1”不能读取：").arg(fileName) + exception.message() + u"。");
    }
    return report;
}

} // namespace report
