#include "tests/report/report_rows.h"

#include "platform/toolkit/clock.h"

namespace {

using namespace report;

/// What a template comes to on the first row, or the error.
class Expressions : public testing::Test {
protected:
    Expressions()
    {
        m_rows.setData(packetOf("CODE:text,FEE:decimal,PIECE:integer,AT:time,NONE:decimal\n007,12.345,3,2026-10-31 08:05:09,\n"));
    }

    QString shown(const QByteArray &text, const QByteArray &format = {})
    {
        return errorOf([&] {
            PreparedReport prepared(
                smallReport(band("master", 10, text) + (format.isEmpty() ? format : "format = " + format + "\n")), &m_rows);
            m_shown = pagesOf(prepared).value(0);
        }) + m_shown;
    }

    TCustomClientDataSet m_rows;
    QString m_shown;
};

TEST_F(Expressions, ComeToExactValues)
{
    Clock::set(QDateTime(QDate(2026, 11, 23), QTime(14, 30, 5)));
    const std::pair<QByteArray, QString> cases[] {
        { "[CODE]", QStringLiteral("007") },
        { "[code]号", QStringLiteral("007号") },
        { "[[CODE]", QStringLiteral("[CODE]") },
        { "[FEE + PIECE * 2]", QStringLiteral("18.345") },
        { "[(FEE + PIECE) * 2]", QStringLiteral("30.69") },
        { "[0.1 + 0.2]", QStringLiteral("0.3") },
        { "[1 - -1]", QStringLiteral("2") },
        { "[PIECE - NONE]", QStringLiteral("3") },
        { "[10 / 4]", QStringLiteral("2.5") },
        { "[2 / 3]", QStringLiteral("0.6666666667") },
        { "[-2 / 3]", QStringLiteral("-0.6666666667") },
        { "['单号' + CODE]", QStringLiteral("单号007") },
        { "[CODE & PIECE]", QStringLiteral("0073") },
        { "['a]b']", QStringLiteral("a]b") },
        { "[IF(PIECE > 2 and not FEE > 20, '多', '少')]", QStringLiteral("多") },
        { "[not 1 = 2 and not not 1]", QStringLiteral("1") },
        { "[IF(CODE = '007' or 1/0, 1, 2)]", QStringLiteral("1") },
        { "[NVL(NONE, '无')]", QStringLiteral("无") },
        { "[ROUND(FEE, 2)]", QStringLiteral("12.35") },
        { "[COPY('快件清单', 3, 2)]", QStringLiteral("清单") },
        { "[FORMAT(FEE * 1000, '¥#,##0.00 元')]", QStringLiteral("¥12,345.00 元") },
        { "[LINE#]/[PAGE#]/[TOTALPAGES]", QStringLiteral("1/1/1") },
        { "[DATE] [TIME]", QStringLiteral("2026-11-23 14:30:05") },
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(shown(text), expected) << text.constData();
    Clock::set({});
}

TEST_F(Expressions, AreFormatted)
{
    const struct {
        QByteArray text, format;
        QString shown;
    } cases[] {
        { "[FEE]", "0.0", QStringLiteral("12.3") },
        { "[FEE * 100000]", "#,##0.##", QStringLiteral("1,234,500") },
        { "[-FEE * 100]", "#,##0", QStringLiteral("-1,235") },
        { "[-FEE * 10]", "#,##0", QStringLiteral("-123") },
        { "[AT]", "yyyy-mm-dd", QStringLiteral("2026-10-31") },
        { "[AT]", "mm/dd hh:nn", QStringLiteral("10/31 08:05") },
        { "共 [FEE] 元", "0.00", QStringLiteral("共 12.35 元") },
        { "[CODE]", "0.00", QStringLiteral("007") },
        { "[NONE]", "0.00", QString() },
    };
    for (const auto &[text, format, expected] : cases)
        EXPECT_EQ(shown(text, format), expected) << text.constData() << ' ' << format.constData();
}

TEST_F(Expressions, FailWithTheRowAndTheReason)
{
    EXPECT_EQ(shown("[1 / NONE]"), QStringLiteral("报表不能排版：“[1 / NONE]”，第 1 行数据：除数为 0。"));
    EXPECT_EQ(shown("[AT * 2]"), QStringLiteral("报表不能排版：“[AT * 2]”，第 1 行数据：“2026-10-31 08:05:09”不是数字。"));
    EXPECT_EQ(shown("[99999999999999999999 * 99999999999999999999]"),
        QStringLiteral("报表不能排版：“[99999999999999999999 * 99999999999999999999]”，第 1 行数据：乘积的位数太多。"));
    EXPECT_TRUE(shown("[" + QByteArray(500, '(') + "1]").contains(QStringLiteral("表达式嵌套太深")));
    EXPECT_TRUE(shown("[1" + QByteArray("+1").repeated(400) + "]").contains(QStringLiteral("表达式太长")));
}

} // namespace
