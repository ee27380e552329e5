// A clerk's work without the mouse, with keys as the window system sends them.

#include "tests/screens/client_process.h"
#include "tests/screens/display.h"

#include <QDir>
#include <QThread>

namespace {

const QString summary = QStringLiteral("DataView2.DataViewGrid");
const QString detail = QStringLiteral("DataView1.DataViewGrid");

class Shift : public testing::Test {
protected:
    Shift()
        : m_client({}, m_display.environment())
    {
        m_client.obey(QStringLiteral("forms"));
        m_display.focusWindow(QStringLiteral("."));
    }

    void press(const QStringList &keys) const { m_display.press(keys); }
    QString activeForm() { return m_client.obey(QStringLiteral("forms"))[u"active"].toString(); }
    bool isFocused(const QString &control) { return described(control)[u"focused"].toBool(); }
    QJsonObject described(const QString &control)
    {
        return m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), control } });
    }
    QJsonArray firstRow(const QString &view)
    {
        return m_client.obey(QStringLiteral("rows"), { { QStringLiteral("view"), view }, { QStringLiteral("count"), 1 } })[u"rows"][0]
            .toArray();
    }
    int rowCount(const QString &view)
    {
        return m_client.obey(QStringLiteral("rows"), { { QStringLiteral("view"), view }, { QStringLiteral("count"), 0 } })[u"total"]
            .toInt();
    }
    void expectForm(const QString &form)
    {
        EXPECT_TRUE(comesTrue([&] { return activeForm() == form; })) << form.toStdString() << ", not " << activeForm().toStdString();
    }
    void expectFocus(const QString &control)
    {
        EXPECT_TRUE(comesTrue([&] { return isFocused(control); })) << control.toStdString();
    }
    template <class Condition>
    static bool comesTrue(Condition condition)
    {
        for (int waited = 0; waited < patience; waited += 50) {
            if (condition())
                return true;
            QThread::msleep(50);
        }
        return false;
    }

    VirtualDisplay m_display;
    ClientProcess m_client;
};

TEST_F(Shift, QueryDrillTrackBackSortPrintExportNextScreen)
{
    press({ QStringLiteral("alt+s"), QStringLiteral("Down"), QStringLiteral("Down"), QStringLiteral("Return") });
    expectForm(QStringLiteral("frm_ManCome"));

    press({ QStringLiteral("F9") });
    expectFocus(summary);
    ASSERT_GT(rowCount(QStringLiteral("DataView2")), 1);

    press({ QStringLiteral("Down"), QStringLiteral("F8") });
    expectFocus(detail);
    ASSERT_GT(rowCount(QStringLiteral("DataView1")), 0);

    press({ QStringLiteral("ctrl+t") });
    expectForm(QStringLiteral("frm_QuestQuery"));
    EXPECT_GT(rowCount(QStringLiteral("trackGrid")), 0);

    press({ QStringLiteral("alt+Left") });
    expectForm(QStringLiteral("frm_ManCome"));
    press({ QStringLiteral("alt+Left") });
    expectFocus(summary);
    press({ QStringLiteral("ctrl+2") });
    expectFocus(detail);
    press({ QStringLiteral("ctrl+Next") });
    expectFocus(summary);

    const QJsonArray before = firstRow(QStringLiteral("DataView2"));
    press({ QStringLiteral("ctrl+Right"), QStringLiteral("F7"), QStringLiteral("F7") });
    EXPECT_TRUE(comesTrue([&] { return firstRow(QStringLiteral("DataView2")) != before; }));

    m_client.events();
    press({ QStringLiteral("ctrl+shift+p"), QStringLiteral("ctrl+p") });
    int shown = 0;
    EXPECT_TRUE(comesTrue([&] { return (shown += int(m_client.events(QStringLiteral("preview")).size())) == 2; })) << shown;

    QTemporaryDir folder;
    press({ QStringLiteral("ctrl+shift+e") });
    m_display.focusWindow(QStringLiteral("导出"));
    press({ QStringLiteral("ctrl+a") });
    m_display.type(folder.filePath(QStringLiteral("first")));
    press({ QStringLiteral("Return") });
    EXPECT_TRUE(comesTrue([&] { return QFile::exists(folder.filePath(QStringLiteral("first.xlsx"))); }));
    m_display.focusWindow(QStringLiteral("Kelvara"));
    press({ QStringLiteral("ctrl+e") });
    EXPECT_TRUE(comesTrue([&] { return QDir(folder.path()).entryList({ QStringLiteral("*.xlsx") }).size() == 2; }));

    press({ QStringLiteral("alt+s"), QStringLiteral("Down"), QStringLiteral("Down"), QStringLiteral("Down"), QStringLiteral("Return") });
    expectForm(QStringLiteral("frm_ManSend"));
    press({ QStringLiteral("ctrl+F4") });
    expectForm(QStringLiteral("frm_ManCome"));
    expectFocus(summary);
}

TEST_F(Shift, ACollapsedPanelKeepsTheKeyboardOutAndF6OpensIt)
{
    m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ManCome111") } });
    const auto focused = [this] {
        for (const QJsonValue &control : m_client.obey(QStringLiteral("controls"))[u"controls"].toArray()) {
            if (control[u"focused"].toBool())
                return control[u"name"].toString();
        }
        return QString();
    };
    press({ QStringLiteral("F9"), QStringLiteral("F6") });
    EXPECT_TRUE(comesTrue([&] { return focused().startsWith(u"DB"); })) << focused().toStdString();
    const QString first = focused();

    press({ QStringLiteral("shift+F6") });
    for (int stop = 0; stop < 12; ++stop) {
        press({ QStringLiteral("ctrl+End"), QStringLiteral("Tab") }); // Tab leaves a grid at its end
        EXPECT_FALSE(focused().startsWith(u"DB")) << focused().toStdString();
    }
    press({ QStringLiteral("F6"), QStringLiteral("F6") });
    EXPECT_TRUE(comesTrue([&] { return focused() == first || isFocused(summary); }));
}

TEST_F(Shift, ScannedNumbersOpenTheirTracksOneInPlaceOfTheOther)
{
    m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ManCome111") } });
    m_client.obey(QStringLiteral("query"));
    m_client.obey(QStringLiteral("cell"),
        { { QStringLiteral("view"), QStringLiteral("DataView2") }, { QStringLiteral("row"), 0 },
            { QStringLiteral("field"), QStringLiteral("BILLCOUNT") }, { QStringLiteral("doubleClick"), true } });
    const QJsonArray columns
        = m_client.obey(QStringLiteral("columns"), { { QStringLiteral("view"), QStringLiteral("DataView1") } })[u"columns"].toArray();
    int waybill = 0;
    while (columns[waybill][u"field"].toString().compare(u"BILL_CODE", Qt::CaseInsensitive) != 0)
        ++waybill;
    const QJsonArray rows
        = m_client.obey(QStringLiteral("rows"), { { QStringLiteral("view"), QStringLiteral("DataView1") } })[u"rows"].toArray();
    press({ QStringLiteral("ctrl+g") });
    for (const int row : { 0, int(rows.size()) - 1 }) {
        const QString number = rows[row][waybill].toString();
        m_display.act({ QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("8"), number });
        press({ QStringLiteral("Return") });
        expectForm(QStringLiteral("frm_QuestQuery"));
        EXPECT_TRUE(comesTrue([&] { return m_client.obey(QStringLiteral("forms"))[u"caption"].toString().contains(number); }))
            << number.toStdString();
    }
    EXPECT_EQ(m_client.obey(QStringLiteral("forms"))[u"forms"].toArray().size(), 2);
    press({ QStringLiteral("Escape"), QStringLiteral("ctrl+w") });
    expectForm(QStringLiteral("frm_ManCome"));
    expectFocus(detail);
}

} // namespace
