// Sizes and colours that a person chooses for all grids.

#include "tests/grid/grid_fixture.h"

#include "platform/grid/grid_colors.h"
#include "platform/grid/grid_zoom.h"

#include <QApplication>
#include <QWheelEvent>

#include <algorithm>

using namespace platform;

namespace {

class Zoom : public Grid {
protected:
    ~Zoom() override
    {
        setGridZoom(100);
        setTextScale(100);
    }
    static QFont font(const char16_t *family, int pixels)
    {
        QFont font(QString::fromUtf16(family));
        font.setPixelSize(pixels);
        return font;
    }
};

TEST_F(Zoom, TextsAndColumnsGrowAndTheDesignStays)
{
    QWidget frame;
    frame.setFont(font(u"宋体", 12));
    auto *grid = new TDBGridEh(&frame);
    grid->setColumns({ { .fieldName = QStringLiteral("SITE"), .caption = QStringLiteral("网点"), .width = 100 } });
    const int rowHeight = grid->rowHeight();
    setTextScale(150);
    EXPECT_EQ(grid->font().pixelSize(), 18);
    EXPECT_EQ(grid->cellRect(0, 0).width(), 150);
    EXPECT_GT(grid->rowHeight(), rowHeight);
    EXPECT_EQ(grid->column(0).width, 100) << "what layouts, files and paper have";
    EXPECT_EQ(grid->designedFont().pixelSize(), 12);
    setGridZoom(200);
    EXPECT_EQ(grid->font().pixelSize(), 36);
    grid->setColumnWidth(0, 50);
    EXPECT_EQ(grid->cellRect(0, 0).width(), 150);
    setGridZoom(100);
    setTextScale(100);
    EXPECT_EQ(grid->font().pixelSize(), 12);
    EXPECT_EQ(grid->rowHeight(), rowHeight);
}

TEST_F(Zoom, AGridThatIsMadeLaterHasItAndHasItOnce)
{
    setTextScale(150);
    QWidget frame;
    auto *inPixels = new TDBGridEh(&frame); // before its frame has its font, as in the result frames
    frame.setFont(font(u"宋体", 12));
    EXPECT_EQ(inPixels->font().pixelSize(), 18);
    // The program's font in points has grown by itself.
    const TDBGridEh inPoints;
    EXPECT_EQ(inPoints.font().pointSizeF(), QApplication::font().pointSizeF());
}

TEST_F(Zoom, TheWheelWithCtrlZoomsAllGridsWithinBounds)
{
    const auto turn = [this](int angle) {
        QWheelEvent event(
            { 50, 50 }, m_grid.mapToGlobal(QPointF(50, 50)), {}, { 0, angle }, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_grid.viewport(), &event);
    };
    turn(120);
    EXPECT_EQ(gridZoom(), 110);
    for (int notch = 0; notch < 40; ++notch)
        turn(-120);
    EXPECT_EQ(gridZoom(), 50);
}

TEST_F(Zoom, OnADarkPaletteDesignedColoursAreDarkAndTheirTextsLight)
{
    QPalette dark(QColor(0x2b, 0x2e, 0x33), QColor(0x2b, 0x2e, 0x33));
    dark.setColor(QPalette::Base, QColor(0x1d, 0x1f, 0x23));
    dark.setColor(QPalette::Text, QColor(0xdd, 0xe1, 0xe6));
    const GridColors colors(dark);
    for (const QColor &designed : { rowStripe(1), rowStripe(2), QColor(0xff, 0xc8, 0xc8), QColor(Qt::yellow) }) {
        EXPECT_LT(colors.background(designed).lightnessF(), 0.45F);
        EXPECT_NEAR(colors.background(designed).hslHueF(), designed.hslHueF(), 0.02F) << "the hue is what a colour says";
    }
    EXPECT_NE(colors.background(rowStripe(1)), colors.background(rowStripe(2)));
    EXPECT_GT(colors.textColor(alarmColor).lightnessF(), 0.6F);
    const GridColors light { QPalette(Qt::white) };
    EXPECT_EQ(light.background(rowStripe(1)), rowStripe(1));

    m_grid.setPalette(dark);
    m_grid.onGetCellParams = [](int row, int, CellParameters &parameters) { parameters.background = rowStripe(row + 1); };
    const QImage picture = m_grid.viewport()->grab().toImage();
    const QRect cell = m_grid.cellRect(0, 0);
    EXPECT_LT(picture.pixelColor(cell.right() - 3, cell.center().y()).lightnessF(), 0.5F);
    EXPECT_EQ(m_grid.cellBackground(0, 0), rowStripe(1)) << "what paper and programs see";
}

} // namespace
