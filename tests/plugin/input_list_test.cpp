#include "plugin/view/frame_InputList.h"

#include "platform/toolkit/application.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace platform;

namespace {

class InputList : public testing::Test {
protected:
    InputList()
    {
        Application->setMessageResponder([this](const MessageRequest &request) {
            m_messages.append(request.text + u'|' + request.title + u'|' + QString::number(request.flags));
            return idOk;
        });
    }
    ~InputList() override { Application->setMessageResponder({}); }

    QString list(const QString &text)
    {
        m_frame.Memo1->setPlainText(text);
        QString result = QStringLiteral("left over");
        m_frame.GetBillList(result);
        return result;
    }
    static QString numbered(int lines)
    {
        QStringList numbers;
        for (int line = 1; line <= lines; ++line)
            numbers.append(QString::number(line));
        return numbers.join(u'\n');
    }

    TInputList m_frame;
    QStringList m_messages;
};

TEST_F(InputList, TheLastLineComesFirstAndNoneIsSkipped)
{
    const std::pair<const char16_t *, const char16_t *> cases[] = {
        { u"1001\n1002\n1003", u"('1003','1002','1001')" },
        { u"  123\t", u"('123')" },
        { u"a\n\nb", u"('b','','a')" },
        { u"a\r\nb\rc", u"('c','b','a')" },
        { u"a\nb\n", u"('b','a')" }, // what a scanner leaves behind its last Enter is no line
        { u"\na", u"('a','')" },
        { u"O'Neill", u"('O'Neill')" },
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(list(QString::fromUtf16(text)), QString::fromUtf16(expected));
    EXPECT_EQ(m_messages, QStringList());
    list(QStringLiteral("1\r2\r\n3"));
    EXPECT_EQ(m_frame.Memo1->toPlainText(), QStringLiteral("1\n2\n3"));
}

TEST_F(InputList, EmptyAndOverlongListsAreRefusedAndKept)
{
    EXPECT_EQ(list(QStringLiteral(" \n\t\n ")), QString());
    EXPECT_EQ(m_messages.takeLast(), QStringLiteral("详细：没有输入任何运单编号！|详细：|48"));
    EXPECT_EQ(list(numbered(801)), QString());
    EXPECT_EQ(m_messages.takeLast(), QStringLiteral("详细：您输入了\"801\"个单号，最多只能输入\"800\"个单号！|详细：|48"));
    EXPECT_EQ(m_frame.Memo1->lines().size(), 801);
    EXPECT_TRUE(list(numbered(800)).startsWith(u"('800','799',"));
    EXPECT_EQ(m_messages, QStringList());
    m_frame.SpeedButton1->click();
    EXPECT_EQ(m_frame.Memo1->toPlainText(), QString());
}

TEST_F(InputList, WhatIsPastedFallsIntoLinesAndEnterStaysInTheBox)
{
    const std::pair<const char16_t *, const char16_t *> pasted[] = {
        { u"1\t2\t3\r\n4\t5\r\n", u"1\n2\n3\n4\n5\n" },
        { u"1，2；3、4, 5　6", u"1\n2\n3\n4\n5\n6" },
        { u"\uFEFF１２３\u200B４", u"1234" },
        { u"AB-12 \u00A0 34\r5", u"AB-12\n34\n5" },
        { u"a\n\nb", u"a\n\nb" },
    };
    for (const auto &[text, expected] : pasted) {
        m_frame.Memo1->clear();
        QGuiApplication::clipboard()->setText(QString::fromUtf16(text));
        m_frame.Memo1->paste();
        EXPECT_EQ(m_frame.Memo1->toPlainText(), QString::fromUtf16(expected));
    }
    m_frame.show();
    m_frame.Memo1->clear();
    m_frame.Memo1->setFocus();
    QTest::keyClicks(m_frame.Memo1, QStringLiteral("268"));
    QTest::keyClick(m_frame.Memo1, Qt::Key_Return);
    QTest::keyClicks(m_frame.Memo1, QStringLiteral("269"));
    EXPECT_EQ(m_frame.Memo1->lines(), QStringList({ QStringLiteral("268"), QStringLiteral("269") }));
}

} // namespace
