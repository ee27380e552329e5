#pragma once

#include "platform/grid/db_grid.h"
#include "platform/report/definition/page_setup.h"

#include <QFont>
#include <QObject>
#include <QPointer>

#include <memory>

namespace report {

class PreparedReport;

enum class PrintLine { None, Single };

/// What stands above or below the rows of every printed page.
struct PrintBand {
    QString left {}; ///< [PAGE#], [TOTALPAGES], [DATE] and [TIME] are replaced; so in the others
    QString centre {};
    QString right {};
    QFont font {};
    PrintLine line = PrintLine::Single; ///< between the band and the rows
};

} // namespace report

/// Prints a grid as it stands on the screen: its visible columns in their order, sort, footers, colours and ticks, on as many
/// pages as it takes, with the titles on each: made smaller to the width of the page, or with further columns on further pages.
class TPrintDBGridEh : public QObject {
    Q_OBJECT

public:
    explicit TPrintDBGridEh(QObject *parent = nullptr);

    TDBGridEh *dbGridEh() const { return m_grid; }
    void setDBGridEh(TDBGridEh *grid) { m_grid = grid; }

    /// The paper. A preview lets the person change it, and keeps it under the title for the next one.
    const report::PageSetup &pageSetup() const { return m_setup; }
    void setPageSetup(const report::PageSetup &setup) { m_setup = setup; }
    report::PrintBand &pageHeader() { return m_header; }
    report::PrintBand &pageFooter() { return m_footer; }
    /// Stands above the titles of the first page, and names the print job; "" leaves it out.
    const QString &title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    /// Lines below the title, broken where they are too long. One that tells of cut rows is added by itself, and stands in the foot of
    /// every page too.
    void setNotes(const QStringList &notes) { m_notes = notes; }

    /// The pages; they hold what the grid showed, as far as they are laid out, whatever happens to it afterwards. Throws Exception when
    /// the grid shows no columns or no rows. The printer must outlive an export of pages whose columns stand on several.
    std::unique_ptr<report::PreparedReport> prepared() const;
    /// Shows the preview, or asks for a printer at once. Both throw what prepared() throws.
    void preview(QWidget *parent = nullptr);
    void print(QWidget *parent = nullptr);

private:
    std::unique_ptr<report::PreparedReport> prepared(const report::PageSetup &setup) const;
    void useKeptSetup();

    QPointer<TDBGridEh> m_grid;
    report::PageSetup m_setup { .margins = { 2.0, 2.0, 2.0, 2.0 } };
    report::PrintBand m_header;
    report::PrintBand m_footer;
    QString m_title;
    QStringList m_notes;
};
