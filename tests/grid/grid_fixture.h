#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"
#include "tests/support/packets.h"

#include <gtest/gtest.h>

#include <QTest>

/// A shown grid over three rows; the titles of SITE and FEE share an upper one.
class Grid : public testing::Test {
protected:
    Grid()
    {
        m_dataSet.setData(packetOf("CODE:text,SITE:text,FEE:decimal,PIECE:integer\n"
                                   "007,北京,1.50,1\n"
                                   "008,上海,0.25,2\n"
                                   "009,,12.30,\n"));
        m_source.setDataSet(&m_dataSet);
        m_grid.setDataSource(&m_source);
        m_grid.setFooterRowCount(2);
        const QList<platform::ColumnFooter> sum { { platform::FooterKind::StaticText, QStringLiteral("合计") },
            { platform::FooterKind::Sum } };
        m_grid.setColumns({
            { .fieldName = QStringLiteral("CODE"), .caption = QStringLiteral("编号"), .width = 80, .titleButton = true },
            { .fieldName = QStringLiteral("SITE"), .caption = QStringLiteral("寄件|网点"), .width = 80, .titleButton = true },
            { .fieldName = QStringLiteral("FEE"),
                .caption = QStringLiteral("寄件|费用"),
                .width = 60,
                .footers = sum,
                .titleButton = true },
            { .fieldName = QStringLiteral("PIECE"), .caption = QStringLiteral("件数"), .width = 50, .footers = sum },
        });
        m_grid.resize(500, 300);
        m_grid.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_grid));
    }
    QStringList order() const
    {
        QStringList fields;
        for (int index = 0; index < m_grid.columnCount(); ++index)
            fields.append(m_grid.column(index).fieldName);
        return fields;
    }
    void click(int row, int column, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(m_grid.viewport(), Qt::LeftButton, modifiers, m_grid.cellRect(row, column).center());
    }

    TCustomClientDataSet m_dataSet;
    TDataSource m_source;
    TDBGridEh m_grid;
};
