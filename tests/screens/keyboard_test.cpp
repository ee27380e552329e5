// Keys and clicks as the window system sends them: the client runs on a display of its own.

#include "tests/screens/client_process.h"
#include "tests/screens/display.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QThread>

namespace {

const QString man = QStringLiteral("DBLookupComboboxEh3"); ///< completes when Enter is pressed
const QString shift = QStringLiteral("DBComboBoxEh4"); ///< the condition behind it
const QString site = QStringLiteral("DBLookupComboboxEh5"); ///< completes when it is left

class Keyboard : public testing::Test {
protected:
    Keyboard()
        : m_client({}, m_display.environment())
    {
        m_client.obey(QStringLiteral("open"), { { QStringLiteral("screen"), QStringLiteral("frm_ScanContrast111") } });
        m_display.focusWindow(QStringLiteral("."));
    }

    /// Empties a condition, stays in it and types, presses keys.
    void type(const QString &control, const QString &text, const QStringList &keys)
    {
        m_client.obey(QStringLiteral("set"),
            { { QStringLiteral("control"), control }, { QStringLiteral("text"), QString() }, { QStringLiteral("leave"), false } });
        m_display.type(text);
        expectSoon(control, QStringLiteral("text"), text);
        m_display.press(keys);
    }
    /// A control comes to have the value: keys take their time.
    void expectSoon(const QString &control, const QString &what, const QJsonValue &value)
    {
        QJsonValue last;
        for (int waited = 0; waited < patience && last != value; waited += 20) {
            if (waited > 0)
                QThread::msleep(20);
            last = m_client.obey(QStringLiteral("get"), { { QStringLiteral("control"), control } })[what];
        }
        EXPECT_EQ(last.toVariant().toString(), value.toVariant().toString()) << control.toStdString();
    }

    VirtualDisplay m_display;
    ClientProcess m_client;
};

TEST_F(Keyboard, EnterAndTabCompleteAndMoveOnAndKeepThePersonWhereTheTextIsUnknown)
{
    const QString enter = QStringLiteral("Return");
    const QString tab = QStringLiteral("Tab");
    const struct {
        const char *why;
        QString control;
        QString typed;
        QStringList keys;
        QString text;
        bool stays;
    } cases[] = {
        { "Enter takes the marked row and moves on in one press", site, QStringLiteral("cq"), { enter }, QStringLiteral("重庆"), false },
        { "so does Tab", site, QStringLiteral("cq"), { tab }, QStringLiteral("重庆"), false },
        { "a row that is walked to is taken", site, QStringLiteral("bjcy"), { QStringLiteral("Down"), QStringLiteral("Up"), tab },
            QStringLiteral("北京朝阳"), false },
        { "an unknown text is emptied and the person stays", site, QStringLiteral("zzz"), { enter }, {}, true },
        { "also where Enter completes", man, QStringLiteral("zzz"), { enter }, {}, true },
        { "where only Enter completes, Tab leaves an unknown text", man, QStringLiteral("zzz"), { tab }, QStringLiteral("zzz"), false },
    };
    for (const auto &[why, control, typed, keys, text, stays] : cases) {
        SCOPED_TRACE(why);
        type(control, typed, keys);
        expectSoon(control, QStringLiteral("text"), text);
        expectSoon(control, QStringLiteral("focused"), stays);
        if (control == man && !stays)
            expectSoon(shift, QStringLiteral("focused"), true);
    }
}

} // namespace
