#include "client/status_line.h"

#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"
#include "tests/support/packets.h"

#include <gtest/gtest.h>

using namespace client;
using namespace platform;

namespace {

TEST(SelectionSummary, CountsCellsAndAddsOnlyNumbersThatAreSeen)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf("CODE:text,FEE:decimal,PIECE:integer,SECRET:decimal,TICK:integer\n"
                             "1001,0.1,1,99,1\n"
                             "1002,0.3,,99,1\n"
                             "1003,,3,99,0\n"));
    TDataSource source;
    source.setDataSet(&dataSet);
    TDBGridEh grid;
    grid.setDataSource(&source);
    QList<Column> columns;
    for (const char16_t *field : { u"CODE", u"FEE", u"PIECE", u"SECRET", u"TICK" })
        columns.append({ .fieldName = QString::fromUtf16(field), .caption = QString::fromUtf16(field) });
    columns[3].visible = false;
    columns[4].checkedKey = QStringLiteral("1");
    columns[4].uncheckedKey = QStringLiteral("0");
    grid.setColumns(columns);
    EXPECT_EQ(selectionSummary(grid).text, QString());
    grid.selectAll();
    EXPECT_EQ(selectionSummary(grid).text, QStringLiteral("已选 12 格  不同 8  合计 4.4  平均 1.10"));
    EXPECT_EQ(selectionSummary(grid).sum, u"4.4");
    dataSet.close();
    EXPECT_EQ(selectionSummary(grid).text, QString());
}

} // namespace
