// What a screen shows around its rows, and what of it comes back when the screen is opened again.

#include "tests/screens/screen_test.h"

#include <QFile>
#include <QRegularExpression>

namespace {

class DestinationLayout : public ScreenTest {
protected:
    DestinationLayout()
        : ScreenTest(QStringLiteral("frm_DestQry"))
    {
    }
    QJsonArray columns() { return m_client.obey(QStringLiteral("columns"), m_view)[u"columns"].toArray(); }
    /// The first fields of the summary; a hidden one in brackets.
    QString firstColumns()
    {
        QStringList fields;
        const QJsonArray all = columns();
        for (int index = 0; index < 4; ++index) {
            const QString field = all[index][u"field"].toString();
            fields.append(all[index][u"visible"].toBool() ? field : QString(u'(' + field + u')'));
        }
        return fields.join(u' ');
    }
    /// The kind of a field's lower footer.
    QString footerKind(const QString &field)
    {
        for (const QJsonValue &column : columns()) {
            if (column[u"field"].toString() == field)
                return column[u"footers"].toArray()[1][u"kind"].toString();
        }
        return {};
    }
    void reopen()
    {
        m_client.obey(QStringLiteral("close"));
        m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_DestQry101") } });
    }
    QString layoutFile() const { return m_client.settingsDirectory() + QStringLiteral("/WindowsIni/Kelvara1.ini"); }

    const QString m_designed = QStringLiteral("area_name65 PRE_OR_NEXT_STATION65 DISPATCH_SITE65 bill_count64");
    const QJsonObject m_view { { QStringLiteral("view"), QStringLiteral("DataView2") } };
};

TEST_F(DestinationLayout, WhatTheScreenHidesIsBackAtTheNextOpening)
{
    EXPECT_EQ(firstColumns(), m_designed);
    tick(QStringLiteral("RadioButton2"), true);
    EXPECT_EQ(firstColumns(), QStringLiteral("(area_name65) (PRE_OR_NEXT_STATION65) DISPATCH_SITE65 bill_count64"));
    reopen();
    EXPECT_EQ(firstColumns(), m_designed) << "the screen opens by station again";
    QFile file(layoutFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(file.readAll().contains("Hidden="));

    tick(QStringLiteral("RadioButton2"), true);
    tick(QStringLiteral("RadioButton1"), true);
    EXPECT_EQ(footerKind(QStringLiteral("area_name65")), QStringLiteral("count"));
    query();
    const QString station = QStringLiteral("PRE_OR_NEXT_STATION65");
    m_client.obey(
        QStringLiteral("title"), { { QStringLiteral("view"), QStringLiteral("DataView2") }, { QStringLiteral("field"), station } });
    EXPECT_EQ(columns()[1][u"sort"].toString(), QStringLiteral("ascending")) << "a column that was shown later sorts too";
}

TEST_F(DestinationLayout, WhatThePersonHidesStaysHiddenWhateverTheScreenShows)
{
    m_client.obey(QStringLiteral("close"));
    QFile file(layoutFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[frm_DestQry.DataView2.DataViewGrid.Arrangement]\nFrozen=0\nHidden=area_name65;\nShown=\n");
    file.close();
    m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_DestQry101") } });
    const QString chosen = QStringLiteral("(area_name65) PRE_OR_NEXT_STATION65 DISPATCH_SITE65 bill_count64");
    EXPECT_EQ(firstColumns(), chosen);
    tick(QStringLiteral("RadioButton2"), true);
    tick(QStringLiteral("RadioButton1"), true);
    EXPECT_EQ(firstColumns(), chosen);
    reopen();
    EXPECT_EQ(firstColumns(), QStringLiteral("PRE_OR_NEXT_STATION65 DISPATCH_SITE65 bill_count64 WEIGHT64"));
    const QJsonArray all = columns();
    EXPECT_EQ(all.last()[u"field"].toString(), QStringLiteral("area_name65")) << "behind the columns of the stored order";
    EXPECT_FALSE(all.last()[u"visible"].toBool());
}

TEST_F(DestinationLayout, AnAmountThatWasMovedToTheFrontKeepsItsSum)
{
    m_client.obey(QStringLiteral("close"));
    QFile file(layoutFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[frm_DestQry.DataView2.DataViewGrid]\nFieldIndex=sum_bill65;area_name65;\nsum_bill65=70\narea_name65=100\n");
    file.close();
    m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_DestQry101") } });
    EXPECT_EQ(columns()[0][u"field"].toString(), QStringLiteral("sum_bill65"));
    EXPECT_EQ(footerKind(QStringLiteral("sum_bill65")), QStringLiteral("sum"));
    EXPECT_EQ(footerKind(QStringLiteral("area_name65")), QStringLiteral("count"));
}

TEST_F(DestinationLayout, NumbersStandInLineAndAnEmptyGridSaysWhy)
{
    const auto displayed = [this] { return m_client.obey(QStringLiteral("rows"), m_view); };
    EXPECT_EQ(displayed()[u"note"].toString(), QStringLiteral("尚未查询，按 F9 查询"));
    ASSERT_EQ(query().size(), 1);
    EXPECT_FALSE(displayed().contains(u"note"));
    int fee = 0;
    while (columns()[fee][u"field"].toString() != u"sum_fee65")
        ++fee;
    const QRegularExpression money(QStringLiteral("^-?\\d{1,3}(,\\d{3})*\\.\\d{2}$"));
    const QJsonArray shown = displayed()[u"rows"].toArray();
    const QStringList exact = column(QStringLiteral("DataView2"), QStringLiteral("sum_fee65"));
    ASSERT_GT(shown.size(), 0);
    bool filledUp = false;
    for (int row = 0; row < shown.size(); ++row) {
        QString text = shown[row][fee].toString();
        EXPECT_TRUE(money.match(text).hasMatch()) << text.toStdString();
        EXPECT_EQ(text.remove(u',').toDouble(), exact[row].toDouble());
        filledUp = filledUp || text != exact[row];
    }
    EXPECT_TRUE(filledUp) << "no amount of the demo ends with a zero";
    const QJsonArray footers = m_client.obey(QStringLiteral("footer"), m_view)[u"rows"].toArray();
    EXPECT_TRUE(money.match(footers[1][fee].toString()).hasMatch()) << footers[1][fee].toString().toStdString();

    m_client.set(QStringLiteral("DBNumberEditEh1"), QStringLiteral("9999999"));
    ASSERT_EQ(query().size(), 1);
    EXPECT_EQ(displayed()[u"note"].toString(), QStringLiteral("没有符合条件的记录"));
}

} // namespace
