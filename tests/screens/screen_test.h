#pragma once

#include "tests/screens/client_process.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <vector>

/// The first cell of an independent query on the database of the test clients.
QString answerOf(const QString &sql);

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
        QJsonObject command = arguments;
        command[u"do"] = what;
        const bool done = m_client.ask(command)[u"ok"].toBool();
        m_events = m_client.events();
        EXPECT_EQ(done, happened(QStringLiteral("error"), { QStringLiteral("text") }).isEmpty());
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

    void expectDefaults(const std::vector<std::pair<const char *, const char16_t *>> &defaults)
    {
        for (const auto &[control, text] : defaults)
            EXPECT_EQ(m_client.textOf(QString::fromLatin1(control)), QString::fromUtf16(text)) << control;
    }
    /// The query is refused with this message and this focus, and sends nothing.
    void expectRefusal(const QString &message, const QString &focus = {})
    {
        EXPECT_EQ(query(), QStringList());
        EXPECT_EQ(messages(), QStringList(message));
        const QStringList focused = happened(QStringLiteral("focus"), { QStringLiteral("control") });
        if (!focus.isEmpty()) {
            EXPECT_EQ(focused.value(focused.size() - 1), focus);
        }
    }
    void list(const QStringList &lines)
    {
        m_client.obey(QStringLiteral("set"),
            { { QStringLiteral("control"), QStringLiteral("Memo1") }, { QStringLiteral("lines"), QJsonArray::fromStringList(lines) } });
    }

    QJsonObject rows(const QString &view)
    {
        return m_client.obey(QStringLiteral("rows"), { { QStringLiteral("view"), view }, { QStringLiteral("exact"), true } });
    }
    int rowCount(const QString &view) { return rows(view)[u"total"].toInt(); }
    /// The texts of a field, from the first row; numbers as they are.
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
    /// The lower footer of a field; a number as it is.
    QString footer(const QString &view, const QString &field)
    {
        const QJsonArray columns = m_client.obey(QStringLiteral("columns"), { { QStringLiteral("view"), view } })[u"columns"].toArray();
        const QJsonArray footers
            = m_client.obey(QStringLiteral("footer"), { { QStringLiteral("view"), view }, { QStringLiteral("exact"), true } })[u"rows"]
                  .toArray();
        for (int index = 0; index < columns.size(); ++index)
            if (columns[index][u"field"].toString() == field)
                return footers[1][index].toString();
        return {};
    }
    /// Drills into each row of the summary by its count: the detail has as many rows, and its footers are the row's sums, to the
    /// cent. A sum names the field of the summary and that of the detail.
    void expectEveryDetailAddsUp(const QString &summary, const QString &details, const QString &count,
        const std::vector<std::pair<const char *, const char *>> &sums)
    {
        const auto cents = [](const QString &amount) { return qRound64(amount.toDouble() * 100); };
        const QStringList counts = column(summary, count);
        std::vector<QStringList> expected;
        for (const auto &sum : sums)
            expected.push_back(column(summary, QString::fromLatin1(sum.first)));
        ASSERT_GT(counts.size(), 0);
        for (int row = 0; row < int(counts.size()); ++row) {
            doubleClick(summary, row, count);
            EXPECT_EQ(rowCount(details), counts[row].toInt()) << "row " << row;
            for (std::size_t sum = 0; sum < sums.size(); ++sum)
                EXPECT_EQ(cents(footer(details, QString::fromLatin1(sums[sum].second))), cents(expected[sum][row]))
                    << "row " << row << ' ' << sums[sum].first;
            page(QStringLiteral("TabSheet1"));
        }
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
