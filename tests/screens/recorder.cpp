// Writes down everything that the screens do under many settings: two builds behave alike when their records are equal.
//   KELVARA_BIN=<folder of the programs> screens_recorder record.txt

#include "client/screen_list.h"
#include "tests/screens/client_process.h"
#include "tests/screens/screen_test.h"

#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <cstdio>

using namespace client;

namespace {

QFile record;

void write(const QString &what, const QJsonObject &said)
{
    record.write(what.toUtf8() + ' ' + QJsonDocument(said).toJson(QJsonDocument::Compact) + '\n');
}

/// The name of a control, or of a view, as an argument.
QJsonObject named(const char *kind, const QString &name) { return { { QString::fromLatin1(kind), name } }; }

/// One screen in a client of its own.
class Recorder {
public:
    Recorder(const QString &screen, const QString &site)
        : m_client({ QStringLiteral("--login-site"), site })
    {
        record.write("\n== " + screen.toUtf8() + ' ' + site.toUtf8() + '\n');
        act(QStringLiteral("open"), { { QStringLiteral("screen"), QString(screen + u"111") } });
        for (const QJsonValue &control : m_client.obey(QStringLiteral("controls"))[u"controls"].toArray())
            m_controls.append(control.toObject());
        // Where a component is declared does not count.
        std::sort(m_controls.begin(), m_controls.end(),
            [](const QJsonObject &one, const QJsonObject &other) { return one[u"name"].toString() < other[u"name"].toString(); });
    }

    void recordAll()
    {
        for (const QJsonObject &control : m_controls)
            write(QStringLiteral("control"), control);
        for (const QString &view : all(u"TDataView"))
            act(QStringLiteral("columns"), named("view", view));
        queryAndDrill();
        for (const QJsonObject &control : m_controls)
            tryControl(control);
        if (!all(u"BillMemo").isEmpty())
            queryByList();
        for (const QString &button : all(u"QPushButton"))
            if (state(button)[u"visible"].toBool())
                act(QStringLiteral("print"), named("control", button));
        act(QStringLiteral("close"), {});
    }

private:
    QStringList all(QStringView className) const
    {
        QStringList names;
        for (const QJsonObject &control : m_controls)
            if (control[u"class"].toString() == className)
                names.append(control[u"name"].toString());
        return names;
    }
    QJsonObject state(const QString &control) { return m_client.obey(QStringLiteral("get"), named("control", control)); }

    /// Obeys, and writes down the reply and what happened.
    void act(const QString &what, QJsonObject command)
    {
        command[u"do"] = what;
        write(QStringLiteral("do"), command);
        write(QStringLiteral("  reply"), m_client.ask(command));
        for (const QJsonValue &event : m_client.events()) {
            QJsonObject said = event.toObject();
            if (QJsonObject memos = said.value(u"memos").toObject(); !memos.isEmpty()) {
                memos.remove(u"PrintDateTime"); // the clock runs
                said[u"memos"] = memos;
            }
            write(QStringLiteral("  event"), said);
        }
    }

    void query()
    {
        act(QStringLiteral("query"), {});
        for (const QString &view : all(u"TDataView")) {
            QJsonObject some = named("view", view);
            act(QStringLiteral("footer"), some);
            some[u"count"] = 2;
            act(QStringLiteral("rows"), some);
        }
    }

    void queryAndDrill()
    {
        query();
        const QStringList sheets = all(u"TTabSheet");
        const QStringList views = all(u"TDataView");
        for (const QString &view : views) {
            const QJsonArray columns = m_client.obey(QStringLiteral("columns"), named("view", view))[u"columns"].toArray();
            for (const QJsonValue &column : columns) {
                if (!column[u"visible"].toBool() || !state(view)[u"visible"].toBool())
                    continue;
                act(QStringLiteral("cell"),
                    { { QStringLiteral("view"), view }, { QStringLiteral("row"), 0 }, { QStringLiteral("field"), column[u"field"] },
                        { QStringLiteral("doubleClick"), true } });
                for (const QString &shown : views)
                    act(QStringLiteral("footer"), named("view", shown));
                if (!sheets.isEmpty())
                    act(QStringLiteral("page"), named("control", sheets.first()));
            }
        }
        for (const QString &sheet : sheets)
            act(QStringLiteral("page"), named("control", sheet));
    }

    void trySetting(const QString &control, const QString &kind, const QJsonValue &value)
    {
        act(QStringLiteral("set"), { { QStringLiteral("control"), control }, { kind, value } });
        write(QStringLiteral("  shows"), state(control));
        query();
    }

    void tryControl(const QJsonObject &control)
    {
        const QString name = control[u"name"].toString();
        const QJsonObject before = state(name);
        if (!before[u"visible"].toBool() || !before[u"enabled"].toBool())
            return;
        for (const QString &text : textsFor(before))
            trySetting(name, QStringLiteral("text"), text);
        if (before.contains(u"text"))
            act(QStringLiteral("set"), { { QStringLiteral("control"), name }, { QStringLiteral("text"), before[u"text"] } });
        if (control[u"class"].toString() == u"TRadioGroup") {
            for (const int item : { 0, 1, before[u"itemIndex"].toInt() })
                trySetting(name, QStringLiteral("itemIndex"), item);
        } else if (before.contains(u"checked")) {
            act(QStringLiteral("set"),
                { { QStringLiteral("control"), name }, { QStringLiteral("checked"), !before[u"checked"].toBool() } });
            queryAndDrill();
            if (control[u"class"].toString() != u"QRadioButton")
                trySetting(name, QStringLiteral("checked"), before[u"checked"]);
        }
    }

    static QStringList textsFor(const QJsonObject &control)
    {
        const QString kind = control[u"class"].toString();
        if (kind == u"TDBComboBoxEh")
            return { control[u"items"][1].toString(), control[u"items"].toArray().last().toString(), QString(), QStringLiteral("别的") };
        if (kind == u"TDBDateTimeEditEh")
            return { QStringLiteral("2026-03-01 00:00:00"), QStringLiteral("2026-03-17"), QStringLiteral("昨天"), QString(),
                QStringLiteral("2025-01-01 00:00:00") };
        if (kind == u"TDBNumberEditEh")
            return { QStringLiteral("1.5") };
        if (kind != u"TDBLookupComboboxEh")
            return {};
        static const QString person = answerOf(QStringLiteral("select min(scan_man) from tab_scan_come where scan_site='北京'"));
        static const QString code = answerOf(u"select employee_code from tab_employee where employee_name='" + person + u'\'');
        static const QString siteCode = answerOf(QStringLiteral("select site_code from tab_site where site_name='上海静安'"));
        return { person, code, siteCode, QStringLiteral("上海中心"), QStringLiteral("发件"), QStringLiteral("留仓"),
            QStringLiteral("没有这个"), QStringLiteral(" "), QString() };
    }

    void queryByList()
    {
        const QString bills
            = answerOf(QStringLiteral("select min(bill_code)||' '||max(bill_code) from tab_scan_come where scan_site='北京'"));
        for (const QString &lines : { QString(bills + u" x"), QString(), QStringLiteral("1 ").repeated(801) }) {
            act(QStringLiteral("set"),
                { { QStringLiteral("control"), all(u"BillMemo").first() },
                    { QStringLiteral("lines"), QJsonArray::fromStringList(lines.simplified().split(u' ')) } });
            const QString choice = QStringLiteral("InputList1.CheckBox1");
            if (state(choice)[u"enabled"].toBool())
                act(QStringLiteral("set"), { { QStringLiteral("control"), choice }, { QStringLiteral("checked"), true } });
            queryAndDrill();
        }
    }

    ClientProcess m_client;
    QList<QJsonObject> m_controls;
};

} // namespace

int main(int argc, char **argv)
{
    record.setFileName(QString::fromLocal8Bit(argv[argc - 1]));
    if (argc != 2 || !record.open(QIODevice::WriteOnly)) {
        std::fputs("usage: screens_recorder <file>\n", stderr);
        return 2;
    }
    for (const char16_t *site : { u"北京", u"北京市内部", u"北京海淀", u"广东中心" })
        for (const ScreenGroup &group : screenGroups)
            for (const ScreenItem &screen : group.screens)
                Recorder(screen.name.toString(), QString::fromUtf16(site)).recordAll();
}
