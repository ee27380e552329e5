#pragma once

#include "tests/screens/client_process.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

/// One screen in a client of its own, driven as a person drives it.
class ScreenTest : public testing::Test {
protected:
    explicit ScreenTest(const QString &screen, const QStringList &options = {})
        : m_client(options)
    {
        const QJsonObject opened = m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QString(screen + u"101") } });
        EXPECT_EQ(opened[u"form"].toString(), screen);
    }

    /// Runs the query and returns the statements that it sent.
    QStringList query() { return sentBy(QStringLiteral("query")); }
    /// Shows a page as a click on its tab does, and returns the statements that this sent.
    QStringList page(const QString &sheet) { return sentBy(QStringLiteral("page"), { { QStringLiteral("control"), sheet } }); }
    QStringList doubleClick(const QString &view, int row, const QString &field)
    {
        return sentBy(QStringLiteral("cell"),
            { { QStringLiteral("view"), view }, { QStringLiteral("row"), row }, { QStringLiteral("field"), field },
                { QStringLiteral("doubleClick"), true } });
    }
    QStringList sentBy(const QString &what, const QJsonObject &arguments = {})
    {
        m_client.events();
        m_client.obey(what, arguments);
        m_events = m_client.events();
        return happened(QStringLiteral("statement"), { QStringLiteral("sql") });
    }
    /// The particulars of the last command's events of a kind, joined.
    QStringList happened(const QString &kind, const QStringList &particulars) const
    {
        QStringList lines;
        for (const QJsonValue &event : m_events) {
            if (event[u"event"].toString() != kind)
                continue;
            QStringList values;
            for (const QString &particular : particulars)
                values.append(event[particular].toVariant().toString());
            lines.append(values.join(u'|'));
        }
        return lines;
    }
    QStringList messages() const
    {
        return happened(QStringLiteral("message"), { QStringLiteral("text"), QStringLiteral("title"), QStringLiteral("flags") });
    }

    QJsonObject rows(const QString &view) { return m_client.obey(QStringLiteral("rows"), { { QStringLiteral("view"), view } }); }
    int rowCount(const QString &view) { return rows(view)[u"total"].toInt(); }
    /// The displayed texts of a field, from the first row.
    QStringList column(const QString &view, const QString &field)
    {
        const QJsonArray columns = m_client.obey(QStringLiteral("columns"), { { QStringLiteral("view"), view } })[u"columns"].toArray();
        int wanted = 0;
        while (wanted < columns.size() && columns[wanted][u"field"].toString() != field)
            ++wanted;
        QStringList texts;
        for (const QJsonValue &row : rows(view)[u"rows"].toArray())
            texts.append(row[wanted].toString());
        return texts;
    }
    /// The lower footer of a field.
    QString footer(const QString &view, const QString &field)
    {
        const QJsonArray columns = m_client.obey(QStringLiteral("columns"), { { QStringLiteral("view"), view } })[u"columns"].toArray();
        const QJsonArray footers = m_client.obey(QStringLiteral("footer"), { { QStringLiteral("view"), view } })[u"rows"].toArray();
        for (int index = 0; index < columns.size(); ++index)
            if (columns[index][u"field"].toString() == field)
                return footers[1][index].toString();
        return {};
    }
    void tick(const QString &control, bool checked)
    {
        m_client.obey(QStringLiteral("set"), { { QStringLiteral("control"), control }, { QStringLiteral("checked"), checked } });
    }
    int pageIndex()
    {
        return m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), QStringLiteral("PageControl1") } })[u"itemIndex"]
            .toInt();
    }

    ClientProcess m_client;
    QJsonArray m_events;
};
