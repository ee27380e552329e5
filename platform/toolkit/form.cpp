#include "platform/toolkit/form.h"

#include "platform/toolkit/handler.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMdiArea>

using namespace platform;

TForm::TForm(TComponentOwner *owner, const QString &name, const QString &caption)
    : TComponentOwner(this)
{
    setWindowTitle(caption);
    owner->own(this, name.toLatin1().constData());
    QCoreApplication::instance()->installEventFilter(this);
}

TForm::~TForm() = default;

void TForm::showForm()
{
    if (!m_window) {
        constexpr Qt::WindowFlags borderIcons = Qt::SubWindow | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
            | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint;
        m_window = Application->mainForm()->mdiArea()->addSubWindow(this, borderIcons);
        FormShow();
        m_window->showMaximized();
    }
    Application->mainForm()->mdiArea()->setActiveSubWindow(m_window);
}

void TForm::FormKeyDown(int, Qt::KeyboardModifiers) { }

void TForm::focusNextControl() { focusNextPrevChild(true); }

void TForm::closeEvent(QCloseEvent *event)
{
    TCloseAction action = TCloseAction::None;
    guarded([&] { FormClose(action); });
    event->setAccepted(action == TCloseAction::Free);
}

bool TForm::eventFilter(QObject *watched, QEvent *event)
{
    const QWidget *focused = focusWidget() ? focusWidget() : this;
    if (event->type() == QEvent::KeyPress && watched == focused && !m_composing) {
        const auto *key = static_cast<QKeyEvent *>(event);
        guarded([&] { FormKeyDown(key->key(), key->modifiers() & ~Qt::KeypadModifier); });
    } else if (event->type() == QEvent::InputMethod && watched == focused) {
        m_composing = !static_cast<QInputMethodEvent *>(event)->preeditString().isEmpty();
    } else if (event->type() == QEvent::FocusOut) {
        m_composing = false;
    }
    return QWidget::eventFilter(watched, event);
}

TFrame::TFrame(QWidget *parent)
    : QWidget(parent)
    , TComponentOwner(this)
{
}

TDataModule::TDataModule()
    : TComponentOwner(this)
{
}

TMainForm::TMainForm()
    : TComponentOwner(this)
    , m_mdiArea(new QMdiArea(this))
{
    setCentralWidget(m_mdiArea);
    handle(m_mdiArea, &QMdiArea::subWindowActivated, this, &TMainForm::announceActivation);
}

TMainForm::~TMainForm()
{
    // Closing children would announce activations to a window that is no longer there.
    m_mdiArea->disconnect(this);
}

TForm *TMainForm::activeForm() const
{
    const QMdiSubWindow *window = m_mdiArea->activeSubWindow() ? m_mdiArea->activeSubWindow() : m_mdiArea->currentSubWindow();
    return window ? qobject_cast<TForm *>(window->widget()) : nullptr;
}

QList<TForm *> TMainForm::forms() const
{
    QList<TForm *> forms;
    for (const QMdiSubWindow *window : m_mdiArea->subWindowList(QMdiArea::CreationOrder))
        if (auto *form = qobject_cast<TForm *>(window->widget()))
            forms.append(form);
    return forms;
}

qintptr TMainForm::perform(int, quintptr, qintptr) { return 0; }

void TMainForm::announceActivation(QMdiSubWindow *window)
{
    // The area also reports the return to the program; a form is activated only when it was not the last one.
    auto *form = window ? qobject_cast<TForm *>(window->widget()) : nullptr;
    if (!form || form == m_lastActivated)
        return;
    m_lastActivated = form;
    form->FormActivate();
}
