// What a person sees of a grid beside the exact values: numbers in line, notes, tool tips.

#include "tests/grid/grid_fixture.h"

#include "platform/grid/find_dialog.h"
#include "platform/grid/grid_finder.h"
#include "platform/grid/grid_header.h"
#include "platform/grid/number_text.h"

#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QLabel>
#include <QTextDocumentFragment>
#include <QToolTip>

using namespace platform;

namespace {

class Display : public Grid {
protected:
    Display()
    {
        const QList<ColumnFooter> sum { { FooterKind::Count }, { FooterKind::Sum } };
        m_grid.setColumns({
            { .fieldName = QStringLiteral("CODE"), .caption = QStringLiteral("编号"), .numberForm = NumberForm::Money },
            { .fieldName = QStringLiteral("FEE"), .caption = QStringLiteral("费用"), .numberForm = NumberForm::Money, .footers = sum },
            { .fieldName = QStringLiteral("WEIGHT"),
                .caption = QStringLiteral("重量"),
                .numberForm = NumberForm::Quantity,
                .footers = sum },
            { .fieldName = QStringLiteral("PIECE"), .caption = QStringLiteral("件数"), .numberForm = NumberForm::Quantity, .footers = sum },
            { .fieldName = QStringLiteral("YEAR"), .caption = QStringLiteral("年"), .footers = sum },
        });
        m_dataSet.setData(packetOf("CODE:text,FEE:decimal,WEIGHT:decimal,PIECE:integer,YEAR:integer\n"
                                   "1234567890123,7.9,3,1,2026\n"
                                   "0012,12345.6,28.463,1234567,2026\n"
                                   "x,-1234.5,,-123,2026\n"));
    }
    ~Display() override { setThousandsMarks(ThousandsMarks::On); }

    /// The cells of a column and its lower footer.
    QString shown(int column) const
    {
        QStringList texts;
        for (int row = 0; row < m_grid.rowCount(); ++row)
            texts.append(m_grid.displayText(row, column));
        return texts.join(u'|') + u'|' + m_grid.footerDisplayText(1, column);
    }
    /// What a tool tip over a place says, letter by letter; "markup" when it would be taken for markup.
    QString tipAt(QWidget *widget, QPoint place)
    {
        QHelpEvent event(QEvent::ToolTip, place, widget->mapToGlobal(place));
        QApplication::sendEvent(widget, &event);
        const QString tip = QToolTip::text();
        return Qt::mightBeRichText(tip) ? QTextDocumentFragment::fromHtml(tip).toPlainText() : tip;
    }
};

TEST_F(Display, TheNumbersOfAColumnHaveTheSameDecimalsAndTextsStayAsTheyAre)
{
    EXPECT_EQ(shown(0), QStringLiteral("1234567890123|0012|x|"));
    EXPECT_EQ(shown(1), QStringLiteral("7.90|12,345.60|-1,234.50|11,119.00"));
    EXPECT_EQ(shown(2), QStringLiteral("3.000|28.463||31.463"));
    EXPECT_EQ(shown(3), QStringLiteral("1|1,234,567|-123|1,234,445"));
    EXPECT_EQ(shown(4), QStringLiteral("2026|2026|2026|6078"));
    m_dataSet.edit();
    m_dataSet.fieldByName(u"FEE")->setAsString(QStringLiteral("0.12345"));
    m_dataSet.post();
    EXPECT_EQ(m_grid.displayText(0, 1), QStringLiteral("0.12345")) << "nothing is rounded away";

    m_grid.selectAll();
    m_grid.copySelection(CopyTitles::Without);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(u"0012\t12345.6\t28.463\t1234567\t2026"))
        << QGuiApplication::clipboard()->text().toStdString();
    setThousandsMarks(ThousandsMarks::Off);
    EXPECT_EQ(m_grid.displayText(1, 1), QStringLiteral("12345.60"));
    EXPECT_EQ(m_grid.footerDisplayText(1, 3), QStringLiteral("1234445"));
}

TEST_F(Display, WhatIsNoPlainNumberIsNotTouched)
{
    for (const char *text : { "", "-", ".5", "5.", "1e+30", "1,234", "12 345", "1.2.3", "--1", "inf", "１２３４" })
        EXPECT_EQ(shownNumber(QString::fromUtf8(text), 2), QString::fromUtf8(text));
    EXPECT_EQ(shownNumber(QStringLiteral("-999"), 0), QStringLiteral("-999"));
    EXPECT_EQ(shownNumber(QStringLiteral("-1000"), 0), QStringLiteral("-1,000"));
}

TEST_F(Display, ANumberIsFoundAsItIsAndAsItIsShown)
{
    for (const char *text : { "12345.6", "12,345", "345.60" }) {
        m_grid.setCurrentCell(0, 0);
        EXPECT_TRUE(m_grid.finder().find({ .text = QString::fromLatin1(text) }, SearchDirection::Forward)) << text;
        EXPECT_EQ(m_grid.currentRow(), 1) << text;
    }
    EXPECT_FALSE(m_grid.finder().find({ .text = QStringLiteral("2,026") }, SearchDirection::Forward)) << "a year has no thousands";
}

TEST_F(Display, AnEmptyGridSaysWhetherAnythingWasAsked)
{
    const auto picture = [this] { return m_grid.viewport()->grab().toImage(); };
    EXPECT_EQ(m_grid.emptyNote(), QString());
    m_dataSet.emptyDataSet();
    EXPECT_EQ(m_grid.emptyNote(), QStringLiteral("没有符合条件的记录"));
    const QImage none = picture();
    m_dataSet.close();
    EXPECT_EQ(m_grid.emptyNote(), QStringLiteral("尚未查询，按 F9 查询"));
    QImage blank = none;
    blank.fill(m_grid.palette().color(QPalette::Base));
    EXPECT_NE(none, blank);
    EXPECT_NE(picture(), blank);
    EXPECT_NE(picture(), none);
}

TEST_F(Display, MarkupInCellsTitlesAndSearchesIsShownLetterByLetter)
{
    const QString markup = QStringLiteral("<img src='//host/share/x.png'> & <b>x</b>");
    m_grid.setColumns({ { .fieldName = QStringLiteral("SITE"), .caption = markup, .width = 60 } });
    m_dataSet.setData(packetOf("SITE:text\n" + markup.toStdString() + "\n"));
    EXPECT_EQ(tipAt(m_grid.viewport(), m_grid.cellRect(0, 0).center()), markup);
    auto *header = m_grid.findChild<GridHeader *>();
    EXPECT_EQ(tipAt(header, QPoint(m_grid.cellRect(0, 0).center().x(), header->height() / 2)), markup);

    m_grid.finder().openDialog();
    QTest::keyClicks(&m_grid, QStringLiteral("<"));
    int labels = 0;
    for (const QWidget *widget : QApplication::allWidgets()) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        const bool named = label && (label->buddy() || label->inherits("QTipLabel"));
        if (!label || named)
            continue;
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
        ++labels;
    }
    EXPECT_GE(labels, 2) << "the result of the dialog and what was typed";
}

} // namespace
