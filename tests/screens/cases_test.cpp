// What the screens ask and say, as plain texts under tests/cases: lines of what a person does, each followed by what came of it.
// With KELVARA_WRITE_CASES set the texts are written anew, to be read before they are committed.

#include "tests/screens/screen_test.h"

#include <QDir>
#include <QFile>

#include <memory>

namespace {

/// Obeys the lines of one file and tells what came of each:
///   open <screen> [<login site>]      set <control> <text>        tick, untick <control>     choose <control> <item>
///   list <number>|<number>...         query                       page <sheet>               drill <view> <row> <field>
/// A statement comes as "= «text»", with '{FIELD}' for a value of the row that was drilled into; a message as "! text|title|flags";
/// a focus that code moved as "@ control"; a filter as "f text|on"; an error of the database as "x".
class Player {
public:
    QStringList play(const QStringList &lines)
    {
        QStringList played;
        for (const QString &line : lines) {
            if (isOutcome(line))
                continue;
            played.append(line);
            if (line.isEmpty() || line.startsWith(u'#'))
                continue;
            obey(line.section(u' ', 0, 0), line.section(u' ', 1));
            for (const QJsonValue &event : m_client->events())
                tell(event.toObject(), played);
            m_row.clear();
        }
        return played;
    }

private:
    static bool isOutcome(const QString &line) { return line.size() > 1 && QStringView(u"=!@fx").contains(line[0]) && line[1] == u' '; }

    void obey(const QString &what, const QString &rest)
    {
        const QString name = rest.section(u' ', 0, 0);
        const QString value = rest.section(u' ', 1);
        if (what == u"open") {
            m_client
                = std::make_unique<ClientProcess>(value.isEmpty() ? QStringList() : QStringList { QStringLiteral("--login-site"), value });
            m_client->obey(what, { { QStringLiteral("screen"), QString(name + u"111") } });
        } else if (what == u"set") {
            m_client->set(name, value);
        } else if (what == u"tick" || what == u"untick") {
            set(name, QStringLiteral("checked"), what == u"tick");
        } else if (what == u"choose") {
            set(name, QStringLiteral("itemIndex"), value.toInt());
        } else if (what == u"list") {
            set(QStringLiteral("Memo1"), QStringLiteral("lines"), QJsonArray::fromStringList(rest.split(u'|')));
        } else if (what == u"drill") {
            drill(name, value.section(u' ', 0, 0).toInt(), value.section(u' ', 1));
        } else {
            m_client->ask({ { QStringLiteral("do"), what }, { QStringLiteral("control"), name } }); // a failure is told as an event
        }
    }
    void set(const QString &control, const QString &kind, const QJsonValue &value)
    {
        m_client->obey(QStringLiteral("set"), { { QStringLiteral("control"), control }, { kind, value } });
    }
    void drill(const QString &view, int row, const QString &field)
    {
        QJsonObject place { { QStringLiteral("view"), view } };
        const QJsonArray columns = m_client->obey(QStringLiteral("columns"), place)[u"columns"].toArray();
        place[u"from"] = row;
        place[u"exact"] = true;
        const QJsonArray cells = m_client->obey(QStringLiteral("rows"), place)[u"rows"][0].toArray();
        for (int column = 0; column < columns.size(); ++column)
            m_row.append({ columns[column][u"field"].toString(), cells[column].toString() });
        place.remove(u"from");
        place.remove(u"exact");
        place[u"row"] = row;
        place[u"field"] = field;
        place[u"doubleClick"] = true;
        m_client->obey(QStringLiteral("cell"), place);
    }

    void tell(const QJsonObject &event, QStringList &played) const
    {
        const QString kind = event[u"event"].toString();
        if (kind == u"statement")
            played.append(u"= «" + withFields(event[u"sql"].toString()) + u'»');
        else if (kind == u"message")
            played.append(
                u"! " + event[u"text"].toString() + u'|' + event[u"title"].toString() + u'|' + QString::number(event[u"flags"].toInt()));
        else if (kind == u"focus" && event[u"control"].toString() != u"WorkPanel1")
            played.append(u"@ " + event[u"control"].toString());
        else if (kind == u"filter")
            played.append(u"f " + event[u"text"].toString() + u'|' + event[u"on"].toVariant().toString());
        else if (kind == u"error")
            played.append(QStringLiteral("x the database refuses it"));
    }
    /// The values of the row, which come from the network, by the names of their fields.
    QString withFields(QString sql) const
    {
        for (const auto &[field, value] : m_row)
            if (!value.isEmpty())
                sql.replace(u'\'' + value + u'\'', u"'{" + field + u"}'");
        return sql;
    }

    std::unique_ptr<ClientProcess> m_client;
    QList<std::pair<QString, QString>> m_row; ///< that is drilled into
};

class Cases : public testing::TestWithParam<QString> { };

TEST_P(Cases, ComeOutAsWritten)
{
    QFile file(QStringLiteral(KELVARA_CASES "/") + GetParam());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList written = QString::fromUtf8(file.readAll()).split(u'\n');
    file.close();
    const QStringList played = Player().play(written);
    if (qEnvironmentVariableIsSet("KELVARA_WRITE_CASES")) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(played.join(u'\n').toUtf8());
        return;
    }
    for (qsizetype line = 0; line < written.size() || line < played.size(); ++line)
        ASSERT_EQ(played.value(line), written.value(line)) << GetParam().toStdString() << ", line " << line + 1;
}

INSTANTIATE_TEST_SUITE_P(Screens, Cases, testing::ValuesIn(QDir(QStringLiteral(KELVARA_CASES)).entryList(QDir::Files)),
    [](const testing::TestParamInfo<QString> &file) { return file.param.section(u'.', 0, 0).toStdString(); });

} // namespace
