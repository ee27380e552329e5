#include "platform/report/report.h"

#include "platform/report/definition/report_file.h"
#include "platform/report/definition/template.h"
#include "platform/report/layout/text_face.h"
#include "platform/report/output/printing.h"
#include "platform/report/preview/preview_window.h"

#include <algorithm>

namespace report {

namespace {

std::function<void(const PreviewRequest &)> previewResponder;

} // namespace

void setPreviewResponder(std::function<void(const PreviewRequest &)> responder) { previewResponder = std::move(responder); }

void ReportObject::setText(const QString &text)
{
    m_object.text = text;
    // It no longer stands in the file.
    m_object.textPlace = {};
}

QString ReportObject::literal(const QString &text) { return Template::literal(text); }

void showPreview(
    PreparedReport &report, const QList<ExportFilter *> &filters, PreviewButtons buttons, QWidget *parent, const PaperChoice &paper)
{
    if (previewResponder)
        previewResponder({ report, filters });
    else
        PreviewWindow(report, filters, buttons, parent, paper).exec();
}

bool printPrepared(PreparedReport &report, QWidget *parent)
{
    if (!previewResponder)
        return printReport(report, parent);
    previewResponder({ report, {} });
    return true;
}

} // namespace report

using namespace report;

TfrReport::TfrReport(QObject *parent)
    : QObject(parent)
{
}

TfrReport::~TfrReport() = default;

void TfrReport::loadFromFile(const QString &fileName) { setDefinition(loadDefinition(fileName)); }

void TfrReport::setDefinition(const Definition &definition)
{
    m_prepared.reset();
    m_objects.clear();
    m_definition = definition;
    for (Band &band : m_definition.bands) {
        for (Object &object : band.objects)
            m_objects.push_back(std::make_unique<ReportObject>(object));
    }
}

void TfrReport::addNote(const QString &text)
{
    Definition definition = m_definition;
    auto title = std::ranges::find(definition.bands, BandKind::Title, &Band::kind);
    if (title == definition.bands.end())
        title = definition.bands.insert(definition.bands.begin(), Band { .kind = BandKind::Title });
    Object note;
    const int room = definition.paper.width() - definition.margins.left() - definition.margins.right();
    note.box = QRect(0, title->height, room, lineHeight(note.style) + millimetre);
    note.text = Template::literal(text);
    note.wrap = true;
    note.grow = true;
    title->height += note.box.height();
    title->objects.append(note);
    setDefinition(definition);
}

ReportObject *TfrReport::findObject(QStringView name)
{
    const auto found = std::find_if(m_objects.begin(), m_objects.end(),
        [name](const auto &object) { return !name.isEmpty() && object->name().compare(name, Qt::CaseInsensitive) == 0; });
    return found == m_objects.end() ? nullptr : found->get();
}

void TfrReport::prepareReport(StyleEvent styleEvent)
{
    m_prepared.reset();
    TDataSet *rows = m_dataSet ? m_dataSet->dataSet() : nullptr;
    if (!rows || !rows->active())
        throw Exception(QStringLiteral("报表没有数据：数据集没有打开。"));
    if (m_definition.bands.isEmpty())
        throw Exception(QStringLiteral("还没有读入报表文件。"));
    auto prepared = std::make_unique<PreparedReport>(m_definition, rows, m_addIns, std::move(styleEvent));
    prepared->prepareNextPage();
    m_prepared = std::move(prepared);
}

void TfrReport::showPreview(QWidget *parent)
{
    if (!m_prepared)
        prepareReport();
    report::showPreview(*m_prepared, m_filters, m_buttons, parent);
}

bool TfrReport::print(QWidget *parent)
{
    if (!m_prepared)
        prepareReport();
    return printPrepared(*m_prepared, parent);
}
