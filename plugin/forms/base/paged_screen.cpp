#include "plugin/forms/base/paged_screen.h"

#include <algorithm>

using namespace platform;

namespace plugin {

PagedScreen::PagedScreen(TComponentOwner *owner, const QString &name, QStringView caption)
    : QueryScreen(owner, name, caption)
{
    placeBelow(PageControl1);
}

void PagedScreen::page(TTabSheet *sheet, QStringView caption, TDataView *view, TClientDataSetEx *dataSet, const GridColumns &columns,
    int frozen, QAbstractButton *button)
{
    dataSet->setReadOnly(true);
    view->design(columns, dataSet, frozen);
    auto *layout = new QVBoxLayout(sheet);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    m_pages.append({ sheet, view, dataSet, button ? button : Button1 });
    PageControl1->addPage(sheet, caption.toString());
    handle(sheet, &TTabSheet::shown, this, [this, shown = m_pages.last()] { setWorkContext(shown); });
}

void PagedScreen::FormShow()
{
    const auto active
        = std::find_if(m_pages.begin(), m_pages.end(), [this](const Page &page) { return page.sheet == PageControl1->activePage(); });
    if (active != m_pages.end())
        setWorkContext(*active);
}

void PagedScreen::showFirstPage()
{
    if (PageControl1->activePageIndex() != 0)
        PageControl1->setActivePageIndex(0);
}

} // namespace plugin
