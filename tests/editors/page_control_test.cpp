#include "platform/toolkit/handler.h"
#include "platform/toolkit/page_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTabBar>
#include <QTest>

using namespace platform;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(PageControl, AnnouncesThePageThatComesToTheFront)
{
    TPageControl pages;
    QList<int> shown;
    QList<TTabSheet *> sheets;
    for (int page = 0; page < 3; ++page) {
        sheets.append(new TTabSheet);
        handle(sheets.last(), &TTabSheet::shown, &pages, [&shown, page] { shown.append(page); });
        pages.addPage(sheets.last(), QStringLiteral("第%1页").arg(page));
    }
    EXPECT_EQ(pages.activePage(), sheets[0]);
    pages.show();
    EXPECT_THAT(shown, IsEmpty());

    pages.setActivePageIndex(2);
    pages.setActivePageIndex(2);
    pages.setActivePage(sheets[0]);
    QTest::mouseClick(pages.tabBar(), Qt::LeftButton, {}, pages.tabBar()->tabRect(1).center());
    EXPECT_THAT(shown, ElementsAre(2, 0, 1));
    EXPECT_EQ(pages.tabText(1), QStringLiteral("第1页"));

    pages.setTabVisible(sheets[1], false);
    EXPECT_FALSE(pages.isTabVisible(1));
    EXPECT_NE(pages.activePage(), sheets[1]);
    EXPECT_EQ(shown.size(), 4) << "another page took the place of the hidden one";
}

} // namespace
