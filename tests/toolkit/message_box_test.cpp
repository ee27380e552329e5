#include "platform/toolkit/application.h"
#include "platform/toolkit/long_work.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace platform;

namespace {

TEST(MessageBox, TheResponderAnswersAndEveryBoxIsRecorded)
{
    TApplication application;
    QList<QVariantMap> recorded;
    QObject::connect(
        &application, &TApplication::happened, [&](const QString &, const QVariantMap &particulars) { recorded.append(particulars); });
    application.setMessageResponder([](const MessageRequest &request) { return request.defaultAnswer(); });

    EXPECT_EQ(application.messageBox(QStringLiteral("关闭吗？"), QStringLiteral("标题"), 289), idCancel);
    EXPECT_EQ(application.messageBox(QStringLiteral("关闭吗？"), QStringLiteral("标题"), mbOkCancel), idOk);
    EXPECT_EQ(application.messageBox(QStringLiteral("不存在！"), QStringLiteral("标题"), 16), idOk);
    ASSERT_EQ(recorded.size(), 3);
    EXPECT_EQ(recorded[0][QStringLiteral("flags")], 289);
    EXPECT_EQ(recorded[0][QStringLiteral("answer")], int(idCancel));
}

TEST(MessageBox, MarkupIsShownLetterByLetter)
{
    const QString markup = QStringLiteral("<img src='//host/share/x.png'>");
    QStringList shown;
    const auto lookAtBox = [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        for (const QLabel *label : box->findChildren<QLabel *>()) {
            if (!label->text().isEmpty())
                shown.append(label->textFormat() == Qt::PlainText ? label->text() : QStringLiteral("markup"));
        }
        box->defaultButton()->click();
    };
    TApplication application;
    QTimer::singleShot(0, &application, lookAtBox);
    application.messageBox(markup, QStringLiteral("标题"), mbOk);
    QTimer::singleShot(0, &application, lookAtBox);
    application.handleException(std::make_exception_ptr(Exception(markup)));
    EXPECT_EQ(shown, QStringList({ markup, markup }));
}

TEST(HandleException, WhatSystemsSayStandsBehindTheChineseText)
{
    const struct {
        const char16_t *message;
        const char16_t *text;
        const char16_t *behind;
    } cases[] = {
        { u"与服务器 https://center:8866 的连接不通或已断开（Connection refused）。请检查网络后再试。",
            u"与服务器 https://center:8866 的连接不通或已断开。请检查网络后再试。", u"Connection refused" },
        { u"无法打开数据库 /a/b c.db：unable to open database file；请检查路径。", u"无法打开数据库 /a/b c.db；请检查路径。",
            u"unable to open database file" },
        { u"数据库拒绝了这个查询：near \"x\": syntax error", u"数据库拒绝了这个查询。", u"near \"x\": syntax error" },
        { u"语句里不能用 order by，只能用：SELECT。", u"语句里不能用 order by，只能用：SELECT。", u"" },
    };
    TApplication application;
    for (const auto &[message, text, behind] : cases) {
        QString shown;
        QString detailed;
        QTimer::singleShot(0, &application, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            shown = box->text();
            detailed = box->detailedText();
            box->defaultButton()->click();
        });
        application.handleException(std::make_exception_ptr(Exception(QString::fromUtf16(message))));
        EXPECT_EQ(shown, QString::fromUtf16(text));
        EXPECT_EQ(detailed, QString::fromUtf16(behind));
    }
}

TEST(HandleException, EveryKindOfExceptionBecomesAMessage)
{
    TApplication application;
    QStringList texts;
    QObject::connect(&application, &TApplication::happened,
        [&](const QString &, const QVariantMap &particulars) { texts.append(particulars[QStringLiteral("text")].toString()); });
    application.setMessageResponder([](const MessageRequest &request) { return request.defaultAnswer(); });
    application.handleException(std::make_exception_ptr(Abort(QStringLiteral("查询已取消"))));
    application.handleException(std::make_exception_ptr(std::runtime_error("磁盘已满")));
    application.handleException(std::make_exception_ptr(3));
    EXPECT_EQ(texts, QStringList({ QStringLiteral("查询已取消"), QStringLiteral("磁盘已满"), QStringLiteral("未知错误") }));
}

} // namespace
