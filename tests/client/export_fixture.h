#pragma once

#include "client/export/table_export.h"
#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/exception.h"
#include "tests/support/packets.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A grid over waybills of every kind of field, and a folder to export it to.
class ExportTest : public testing::Test {
protected:
    ExportTest()
    {
        m_dataSet.setData(packetOf("CODE:text,SITE:text,SECRET:text,SENT:time,PIECES:integer,FEE:decimal,RATE:decimal,SIZE:float,OK:text\n"
                                   "012345678901,北京,x,2026-02-28 23:59:59,12,1234.5,0.125,2.5,1\n"
                                   "268004223517,上海,y,1899-12-31 08:00:00,-3,-0.05,123456789012345678.25,1e30,0\n"
                                   "000000000000,北京,z,,,,,,\n"
                                   "=1+1,厦门,x,1900-03-01 00:00:00,9007199254740993,100,-7.5,-0.5,1\n"));
        m_source.setDataSet(&m_dataSet);
        m_grid.setDataSource(&m_source);
        m_grid.setColumns({ column(u"", u"序号", 40), column(u"CODE", u"发件|运单编号", 120), column(u"SITE", u"发件|网点"), secret(),
            column(u"SENT", u"时间", 150), column(u"PIECES", u"件数"), column(u"FEE", u"费用"), column(u"RATE", u"比率"),
            column(u"SIZE", u"体积"), ticks() });
        m_grid.onCellText = [](int row, int) { return QString::number(row + 1); };
        m_grid.setFooterRowCount(2);
        footer(u"CODE", { { platform::FooterKind::StaticText, QStringLiteral("记录数") }, { platform::FooterKind::Count } });
        footer(u"FEE", { { platform::FooterKind::StaticText, QStringLiteral("总费用") }, { platform::FooterKind::Sum } });
        footer(u"RATE", { {}, { platform::FooterKind::Sum } });
    }

    static platform::Column column(QStringView field, QStringView caption, int width = 64)
    {
        return { .fieldName = field.toString(), .caption = caption.toString(), .width = width };
    }
    static platform::Column secret()
    {
        platform::Column hidden = column(u"SECRET", u"隐藏");
        hidden.visible = false;
        return hidden;
    }
    static platform::Column ticks()
    {
        platform::Column box = column(u"OK", u"签收");
        box.checkedKey = QStringLiteral("1");
        box.uncheckedKey = QStringLiteral("0");
        return box;
    }
    void footer(QStringView field, const QList<platform::ColumnFooter> &footers)
    {
        const int index = m_grid.columnIndex(field);
        platform::Column changed = m_grid.column(index);
        changed.footers = footers;
        m_grid.setColumn(index, changed);
    }
    /// An edited row, an appended one, and an order of their own.
    void editAndSort()
    {
        m_dataSet.edit();
        m_dataSet.fieldByName(u"SITE")->setAsString(QStringLiteral("广州,白云"));
        m_dataSet.fieldByName(u"FEE")->setAsString(QStringLiteral("7.125"));
        m_dataSet.fieldByName(u"SENT")->setAsString(QStringLiteral("2026-03-01 12:30:00"));
        m_dataSet.post();
        m_dataSet.append();
        m_dataSet.fieldByName(u"CODE")->setAsString(QStringLiteral("00\"7"));
        m_dataSet.post();
        m_dataSet.addIndex({ QStringLiteral("I"), QStringLiteral("CODE"), QStringLiteral("CODE") });
        m_dataSet.setIndexName(QStringLiteral("I"));
    }
    QString path(const QString &name) const { return m_directory.filePath(name); }
    QByteArray contents(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    QByteArray written(const QString &name, const QString &encoding = {}, const QList<client::ExportNote> &notes = {})
    {
        exportGrid(m_grid, { path(name), encoding }, QStringLiteral("月发件清单"), notes);
        return contents(name);
    }
    QStringList files() const { return QDir(m_directory.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir m_directory;
    TCustomClientDataSet m_dataSet;
    TDataSource m_source;
    TDBGridEh m_grid;
};
