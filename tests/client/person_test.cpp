#include "client/conditions/person.h"

#include "platform/editors/editors.h"
#include "platform/toolkit/exception.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QVBoxLayout>

using namespace client;
using namespace platform;

namespace {

class PersonTest : public testing::Test {
protected:
    PersonTest()
    {
        auto *layout = new QVBoxLayout(&m_window);
        for (QWidget *widget : std::initializer_list<QWidget *> { &m_line, &m_date, &m_combo, &m_memo, &m_check })
            layout->addWidget(widget);
        m_combo.setItemsText(QStringLiteral("全部\n文件\n包裹"));
        m_window.show();
        m_window.activateWindow();
        QApplication::processEvents();
    }

    QWidget m_window;
    QLineEdit m_line { &m_window };
    TDBDateTimeEditEh m_date { &m_window };
    TDBComboBoxEh m_combo { &m_window };
    QPlainTextEdit m_memo { &m_window };
    QCheckBox m_check { &m_window };
};

TEST_F(PersonTest, TypingReplacesTheTextAndCountsAsAnEdit)
{
    m_line.setText(QStringLiteral("old"));
    const QSignalSpy edited(&m_line, &QLineEdit::textEdited);
    person::type(&m_line, QStringLiteral("new"));
    EXPECT_EQ(m_line.text(), QStringLiteral("new"));
    person::type(&m_line, {});
    EXPECT_EQ(m_line.text(), QString());
    EXPECT_EQ(edited.count(), 2);
    person::type(&m_memo, QStringLiteral("1\n2"));
    EXPECT_EQ(m_memo.toPlainText(), QStringLiteral("1\n2"));
    person::type(&m_combo, QStringLiteral("包裹"));
    EXPECT_EQ(m_combo.itemIndex(), 2);
    EXPECT_THROW(person::type(&m_check, QStringLiteral("x")), Exception);
}

TEST_F(PersonTest, LeavingRunsTheExitHandlerAndGoesToTheNextControl)
{
    const QSignalSpy exited(&m_date, &DropDownEdit::exited);
    person::enter(&m_date);
    EXPECT_TRUE(m_date.hasFocus());
    person::type(&m_date, QStringLiteral("2026-3-5 7:00"));
    person::leave(&m_date);
    EXPECT_EQ(exited.count(), 1);
    EXPECT_EQ(m_date.text(), QStringLiteral("2026-03-05 07:00:00"));
    EXPECT_TRUE(m_combo.hasFocus());
    person::leave(&m_combo);
    EXPECT_TRUE(m_memo.hasFocus());
}

TEST_F(PersonTest, WhatAPersonCannotReachIsRefused)
{
    m_line.setEnabled(false);
    m_check.hide();
    EXPECT_THROW(person::enter(&m_line), Exception);
    EXPECT_THROW(person::enter(&m_check), Exception);
    EXPECT_THROW(person::choose(&m_combo, 3), Exception);
    EXPECT_THROW(person::choose(&m_line, 0), Exception);
    person::choose(&m_combo, 1);
    EXPECT_EQ(m_combo.text(), QStringLiteral("文件"));
}

TEST_F(PersonTest, AKeyGoesToTheControlUnlessItIsACommand)
{
    QAction command(&m_window);
    command.setShortcuts({ QKeySequence(Qt::Key_F9), QKeySequence(Qt::CTRL | Qt::Key_A) });
    m_window.addAction(&command);
    const QSignalSpy triggered(&command, &QAction::triggered);
    person::enter(&m_line);
    person::pressKey(&m_line, Qt::Key_B);
    person::pressKey(&m_line, Qt::SHIFT | Qt::Key_C);
    EXPECT_EQ(m_line.text(), QStringLiteral("bC"));
    person::pressKey(&m_line, Qt::Key_F9);
    EXPECT_EQ(triggered.count(), 1);
    person::pressKey(&m_line, Qt::CTRL | Qt::Key_A); // the line wants this one
    EXPECT_EQ(triggered.count(), 1);
    EXPECT_EQ(m_line.selectedText(), QStringLiteral("bC"));
    command.setEnabled(false);
    person::pressKey(&m_line, Qt::Key_F9);
    EXPECT_EQ(triggered.count(), 1);
}

} // namespace
