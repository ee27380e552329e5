#include "client/export/table_export.h"

#include "client/export/row_writer.h"
#include "client/export/table_workbook.h"
#include "platform/files/safe_file.h"
#include "platform/toolkit/long_work.h"

#include <QFileInfo>
#include <QStringEncoder>

#include <algorithm>
#include <future>
#include <memory>
#include <optional>

using namespace client;
using namespace platform;

namespace client {

namespace {

constexpr std::size_t sliceRows = 4096; ///< about half a megabyte of a wide table

using Progress = std::function<void(std::int64_t rows)>;

struct ExportForm {
    QStringView filter; ///< for a file dialog
    QStringView encoding {}; ///< none: its own
    files::TabGuard guard = files::TabGuard::Formulas;
};

constexpr ExportForm forms[] {
    { u"Excel 工作簿 (*.xlsx)" },
    { u"CSV 文件 (*.csv)" },
    { u"CSV 文件，Excel 不变形 (*.csv)", {}, files::TabGuard::Numbers },
    { u"CSV 文件，GB18030 编码 (*.csv)", u"GB18030" },
    { u"文本文件，制表符分隔 (*.txt)" },
    { u"网页 (*.html)" },
    { u"JSON 文件 (*.json)" },
};

/// Puts slices of a table into a text form, one at a time.
class SliceWriter {
public:
    SliceWriter(const ExportTable &table, const TableFormat &format)
        : m_rowCount(table.rows.rowCount())
        , m_rows(table, format)
    {
    }
    void fill(std::size_t from)
    {
        for (std::size_t row = from; row < std::min(from + sliceRows, m_rowCount); ++row)
            m_rows.append(m_out, row);
    }
    files::TextBuffer &out() { return m_out; }

private:
    std::size_t m_rowCount;
    RowWriter m_rows;
    files::TextBuffer m_out;
};

/// What can be written to a file of that name, checked before anything is touched.
class Writer {
public:
    explicit Writer(const ExportTarget &target)
        : m_format(TableFormat::of(target.fileName, target.guard))
    {
        const QString ending = QFileInfo(target.fileName).suffix().toLower();
        m_workbook = ending == u"xlsx";
        if (!m_format && !m_workbook)
            throw Exception(QStringLiteral("不能导出到“%1”：文件名请以 .xlsx、.csv、.txt、.html 或 .json 结尾。").arg(target.fileName));
        if (target.encoding.isEmpty() || target.encoding.compare(u"UTF-8", Qt::CaseInsensitive) == 0)
            return;
        if (target.encoding.compare(u"GB18030", Qt::CaseInsensitive) != 0)
            throw Exception(QStringLiteral("不认识编码“%1”，只能用 UTF-8 或 GB18030。").arg(target.encoding));
        if (ending != u"csv" && ending != u"txt")
            throw Exception(QStringLiteral("只有 .csv 和 .txt 文件可以用 GB18030 编码。"));
        m_encoder.emplace("GB18030");
        if (!m_encoder->isValid())
            throw Exception(QStringLiteral("这台电脑的系统组件不支持 GB18030 编码，请导出为 UTF-8 的 .csv，或导出为 .xlsx。"));
    }

    void write(const ExportTable &table, files::SafeFile &file, const Progress &progress)
    {
        if (table.columns.empty())
            throw Exception(QStringLiteral("表格没有可以导出的列。"));
        if (m_workbook)
            writeWorkbook(table, file, progress);
        else
            writeText(table, file, progress);
    }

private:
    void writeText(const ExportTable &table, files::SafeFile &file, const Progress &progress)
    {
        files::TextBuffer out;
        m_format->appendHead(out, table);
        flush(out, file);
        writeSlices(table, file, progress);
        m_format->appendTail(out, table);
        flush(out, file);
    }
    /// Another thread puts a slice of rows into the form while this one does the slice before and writes it.
    void writeSlices(const ExportTable &table, files::SafeFile &file, const Progress &progress)
    {
        SliceWriter here(table, *m_format);
        SliceWriter there(table, *m_format);
        const std::size_t count = table.rows.rowCount();
        for (std::size_t row = 0; row < count; row += 2 * sliceRows) {
            std::future<void> next;
            if (row + sliceRows < count)
                next = std::async(std::launch::async, [&there, row] { there.fill(row + sliceRows); });
            here.fill(row);
            flush(here.out(), file);
            if (next.valid()) {
                next.get();
                flush(there.out(), file);
            }
            progress(std::int64_t(std::min(count, row + 2 * sliceRows)));
        }
    }
    void flush(files::TextBuffer &out, files::SafeFile &file)
    {
        if (m_encoder) {
            const QString text = QString::fromUtf8(out.view().data(), qsizetype(out.size())); // drops the byte-order mark
            const QByteArray encoded = m_encoder->encode(text);
            file.write(encoded);
        } else {
            file.write(out.view());
        }
        out.clear();
    }

    std::unique_ptr<TableFormat> m_format; ///< null for a workbook
    bool m_workbook = false;
    std::optional<QStringEncoder> m_encoder; ///< none: UTF-8
};

} // namespace

void writeTable(const ExportTable &table, const ExportTarget &target, const Progress &progress)
{
    Writer writer(target);
    files::SafeFile file(target.fileName);
    writer.write(table, file, progress);
    file.commit();
}

int exportGrid(const TDBGridEh &grid, const ExportTarget &target, const QString &title, const QList<ExportNote> &notes)
{
    struct Export {
        Writer writer;
        files::SafeFile file;
        ExportTable table;
    };
    const std::shared_ptr<Export> work(new Export { Writer(target), files::SafeFile(target.fileName), exportTable(grid, title, notes) });
    runLongWork(QStringLiteral("正在导出…"), QStringLiteral("导出已取消"), [work](WorkProgress &progress) {
        progress.total = std::int64_t(work->table.rows.rowCount());
        work->writer.write(work->table, work->file, [&progress](std::int64_t rows) {
            progress.rows = rows;
            if (progress.stop.stop_requested())
                throw Abort(QStringLiteral("导出已取消"));
        });
        work->file.close();
    });
    // Here, so that a cancelled export never takes its place.
    work->file.commit();
    return int(work->table.rows.rowCount());
}

QStringList exportFilters()
{
    QStringList filters;
    for (const ExportForm &form : forms)
        filters.append(form.filter.toString());
    return filters;
}

ExportTarget chosenTarget(const QString &fileName, const QString &filter)
{
    const auto *form = std::ranges::find(forms, QStringView(filter), &ExportForm::filter);
    if (form == std::end(forms))
        return { fileName };
    const QString ending = filter.section(u'*', 1).chopped(1);
    const QString named = QFileInfo(fileName).suffix().isEmpty() ? fileName + ending : fileName;
    if (!named.endsWith(ending, Qt::CaseInsensitive))
        return { named };
    return { named, form->encoding.toString(), form->guard };
}

} // namespace client
