#pragma once

#include <gtest/gtest.h>

#include <QHBoxLayout>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>
#include <QWindow>

inline void PrintTo(const QString &text, std::ostream *out) { *out << text.toStdString(); }

/// A window with one editor and a plain line beside it; the editor has the focus. Keys come in through the window, as a
/// person's do, so that an open popup gets them first.
template <class Editor>
class EntryForm : public QWidget {
public:
    EntryForm()
    {
        auto *layout = new QHBoxLayout(this);
        layout->addWidget(editor);
        layout->addWidget(other);
        show();
        activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
        editor->setFocus();
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(windowHandle(), key, modifiers); }
    void type(const char *latin)
    {
        for (; *latin; ++latin)
            QTest::keyClick(windowHandle(), *latin);
    }
    void type(const QString &text) { commit({}, text); }
    /// What an input method sends: the text it is composing, and the one that is finished.
    void commit(const QString &composing, const QString &finished = {})
    {
        QInputMethodEvent event(composing, {});
        event.setCommitString(finished);
        QCoreApplication::sendEvent(editor, &event);
    }

    Editor *editor = new Editor;
    QLineEdit *other = new QLineEdit;
    QList<int> keys; ///< key presses that came as far as the form

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() != Qt::Key_Alt)
            keys.append(event->key());
    }
};
