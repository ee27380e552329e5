#include "tests/guest/fake_server.h"

#include "platform/toolkit/exception.h"
#include "tests/support/packets.h"

QString tableOf(const QString &statement) { return statement.section(QStringLiteral(" from "), 1).section(u' ', 0, 0); }

packet::PacketPtr FakeServer::runStatement(const QString &statement)
{
    statements.append(statement);
    if (!failure.isEmpty())
        throw Exception(failure);
    const QStringList rows = m_rows.value(tableOf(statement));
    QStringList head;
    for (qsizetype column = 0; column <= (rows.isEmpty() ? 0 : rows.first().count(u',')); ++column)
        head.append(QStringLiteral("C%1:text").arg(column));
    QString table = head.join(u',') + u'\n';
    for (const QString &row : rows) {
        if (statement.contains(u'\'' + row.section(u',', 0, 0) + u'\''))
            table += row + u'\n';
    }
    return packetOf(table.toStdString());
}
