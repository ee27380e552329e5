#pragma once

#include "plugin/forms/base/query_screen.h"

#include "platform/toolkit/page_control.h"

namespace plugin {

/// A query screen whose results stand on pages; a query shows the first one.
class PagedScreen : public QueryScreen {
    Q_OBJECT

public:
    PagedScreen(TComponentOwner *owner, const QString &name, QStringView caption);

    PUBLISHED(TPageControl, PageControl1);

protected:
    /// Adds a page that shows `dataSet` in `view`; showing it makes both current, and `button` (Button1 when null) the query button.
    void page(TTabSheet *sheet, QStringView caption, TDataView *view, TClientDataSetEx *dataSet, const platform::GridColumns &columns,
        int frozen = 0, QAbstractButton *button = nullptr);
    void FormShow() override;

private:
    struct Page {
        TTabSheet *sheet;
        TDataView *view;
        TClientDataSetEx *dataSet;
        QAbstractButton *button;
    };
    void setWorkContext(const Page &page) { SetWorkContext(page.view, page.dataSet, page.button, nullptr); }
    void showFirstPage() override;

    QList<Page> m_pages;
};

} // namespace plugin
