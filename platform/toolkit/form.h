#pragma once

#include "platform/toolkit/component.h"

#include <QMainWindow>
#include <QMdiSubWindow>

class QMdiArea;

enum class TCloseAction { None, Free };

/// A screen: a child window of the host's main window, owned by the application object and freed when closed.
/// Its events are the virtual functions named as in the form designer; none lets an exception out.
class TForm : public QWidget, public TComponentOwner {
    Q_OBJECT

public:
    /// `name` is the form's component name, `caption` its window title.
    TForm(TComponentOwner *owner, const QString &name, const QString &caption);
    ~TForm() override;

    QString caption() const { return windowTitle(); }
    /// Shows the form maximised in the main window (FormShow runs before its first appearance), or brings it to the front.
    void showForm();

protected:
    virtual void FormShow() { }
    virtual void FormActivate() { }
    virtual void FormClose(TCloseAction &action) { action = TCloseAction::Free; }
    /// Sees a key before the control that has the focus, which gets it afterwards wherever the focus is then; not while an input
    /// method composes, whose keys these are.
    virtual void FormKeyDown(int key, Qt::KeyboardModifiers modifiers);
    /// Moves the focus to the next control of the form.
    void focusNextControl();

    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    friend class TMainForm;
    QPointer<QMdiSubWindow> m_window;
    bool m_composing = false; ///< an input method, in the control that has the focus
};

/// A part of a form with components of its own.
class TFrame : public QWidget, public TComponentOwner {
    Q_OBJECT

public:
    explicit TFrame(QWidget *parent = nullptr);
};

/// A form without a window.
class TDataModule : public QObject, public TComponentOwner {
    Q_OBJECT

public:
    TDataModule();
};

/// The host's main window.
class TMainForm : public QMainWindow, public TComponentOwner {
    Q_OBJECT

public:
    TMainForm();
    ~TMainForm() override;

    QMdiArea *mdiArea() const { return m_mdiArea; }
    /// The form in front, or null.
    TForm *activeForm() const;
    /// The open forms in the order in which they were opened.
    QList<TForm *> forms() const;
    /// Handles a message that a form sends synchronously.
    virtual qintptr perform(int message, quintptr firstParameter, qintptr secondParameter);

private:
    void announceActivation(QMdiSubWindow *window);

    QMdiArea *m_mdiArea;
    QPointer<TForm> m_lastActivated;
};
