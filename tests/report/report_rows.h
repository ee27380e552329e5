#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/report/definition/report_file.h"
#include "platform/report/layout/prepared_report.h"
#include "tests/support/packets.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>

inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }

/// A report on paper of 100 x 100 mm with margins of 10, so that rows of 10 mm fill a page by eights.
inline report::Definition smallReport(const QByteArray &bands)
{
    return report::parseDefinition("report 1\npage\npaper = 100 100\nmargins = 10 10 10 10\n" + bands + "end\n", QStringLiteral("t.frf"));
}

inline QByteArray band(const QByteArray &kind, int height, const QByteArray &text, const QByteArray &more = {})
{
    return "band " + kind + "\nheight = " + QByteArray::number(height) + "\n" + more + "memo\nbox = 0 0 40 5\ntext = " + text + "\n";
}

/// The texts of each page, joined with "|".
inline QStringList pagesOf(report::PreparedReport &prepared)
{
    prepared.prepareAllPages();
    QStringList pages;
    for (int page = 0; page < prepared.pageCount(); ++page)
        pages.append(prepared.texts(page).join(u'|'));
    return pages;
}

template <class Work>
QString errorOf(Work &&work)
{
    try {
        work();
    } catch (const Exception &exception) {
        return exception.message();
    }
    return {};
}

/// As many rows as wanted: N counts from 1, G is the tens of N.
inline packet::PacketPtr numberedRows(int count)
{
    std::string table = "N:integer,G:text,V:decimal\n";
    for (int row = 1; row <= count; ++row)
        table += std::to_string(row) + ",g" + std::to_string(row / 10) + ",0.1\n";
    return packetOf(table);
}
