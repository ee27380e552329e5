#pragma once

#include "plugin/forms/base/paged_screen.h"

#include <functional>

namespace plugin {

/// How a summary has chosen its scans: the tag of its dataset on screens that also take a list of waybills.
enum Selection { ByList, ByDate };

/// What the detail page shows for the current summary row.
struct Detail {
    QString key; ///< of the row; the page is loaded anew when the key differs from the remembered one
    QString statement;
    QString remembered = key; ///< what is remembered once the statement has run
};

/// A query screen with a summary page and a page with the rows behind the summary row that is current when it is shown. The rows
/// stay until another summary row is drilled into or the summary is queried again.
class SummaryDetailScreen : public PagedScreen {
    Q_OBJECT

public:
    using PagedScreen::PagedScreen;

protected:
    struct ResultPage {
        TTabSheet *sheet;
        QStringView caption;
        TDataView *view;
        TClientDataSetEx *dataSet;
        const platform::GridColumns &columns;
        int frozen = 0;
    };
    /// Adds both pages. `sentinel` is what is remembered after a summary has opened.
    void summaryAndDetail(const ResultPage &summary, const ResultPage &detail, const QString &sentinel = QStringLiteral("!@#"));
    /// A double click on a detail row opens the customer query of its waybill, over the connections that `connections` gives then.
    void openGuestFromDetail(std::function<QList<TCustomRemoteServer *>()> connections);

    /// For the current row of the summary, which is open and has rows.
    virtual Detail detail() const = 0;
    /// A field of the current summary row, as text.
    QString summaryText(QStringView field) const { return m_summary->fieldByName(field)->asString(); }
    /// The field of the cell that is current in the summary; "" when none is.
    QString selectedField() const;

private:
    void showDetailSheet();
    void loadDetail();
    void describeDetail();
    void openGuest(const QList<TCustomRemoteServer *> &connections) const;

    TClientDataSetEx *m_summary = nullptr;
    TClientDataSetEx *m_detail = nullptr;
    TDataView *m_summaryView = nullptr;
    TTabSheet *m_detailSheet = nullptr;
    TDataView *m_detailView = nullptr;
    QString FDetailKey;
};

} // namespace plugin
