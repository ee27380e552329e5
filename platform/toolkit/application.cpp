#include "platform/toolkit/application.h"

#include "platform/toolkit/exception.h"
#include "platform/toolkit/foreign_words.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/long_work.h"

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

using namespace platform;

namespace {

TApplication ownApplication;

QMessageBox::Icon iconOf(int flags)
{
    switch (flags & 0x70) {
    case mbIconError:
        return QMessageBox::Critical;
    case mbIconQuestion:
        return QMessageBox::Question;
    case mbIconWarning:
        return QMessageBox::Warning;
    default:
        return QMessageBox::NoIcon;
    }
}

int askPerson(const MessageRequest &request, QWidget *parent)
{
    const SplitMessage message = withoutForeignWords(request.text);
    QMessageBox box(iconOf(request.flags), request.title, message.text, QMessageBox::NoButton, parent);
    box.setDetailedText(message.foreignWords);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse); // for whoever asks the support
    QPushButton *ok = box.addButton(QStringLiteral("确定"), QMessageBox::AcceptRole);
    QPushButton *cancel = request.flags & mbOkCancel ? box.addButton(QStringLiteral("取消"), QMessageBox::RejectRole) : nullptr;
    box.setDefaultButton(request.defaultAnswer() == idCancel ? cancel : ok);
    box.setEscapeButton(cancel ? cancel : ok);
    box.exec();
    return cancel && box.clickedButton() == cancel ? idCancel : idOk;
}

} // namespace

TApplication *Application = &ownApplication;

TApplication::TApplication(QObject *parent)
    : QObject(parent)
    , TComponentOwner(this)
{
}

TMainForm *TApplication::mainForm() const { return static_cast<TMainForm *>(m_mainForm.data()); }

void TApplication::setMainForm(TMainForm *form) { m_mainForm = form; }

int TApplication::messageBox(const QString &text, const QString &title, int flags)
{
    const MessageRequest request { text, title, flags };
    const int answer = m_responder ? m_responder(request) : askPerson(request, QApplication::activeWindow());
    record(QStringLiteral("message"),
        { { QStringLiteral("text"), text }, { QStringLiteral("title"), title }, { QStringLiteral("flags"), flags },
            { QStringLiteral("answer"), answer } });
    return answer;
}

void TApplication::messageLater(const QString &text, const QString &title, int flags)
{
    if (m_shown.contains(text))
        return;
    m_shown.insert(text);
    QMetaObject::invokeMethod(
        this, [this, text, title, flags] { messageBox(text, title, flags); }, Qt::QueuedConnection);
}

void TApplication::setMessageResponder(std::function<int(const MessageRequest &)> responder) { m_responder = std::move(responder); }

void TApplication::handleException(std::exception_ptr exception)
{
    const auto recordText = [this](const QString &kind, const QString &text) { record(kind, { { QStringLiteral("text"), text } }); };
    try {
        std::rethrow_exception(exception);
    } catch (const Abort &abort) {
        recordText(QStringLiteral("cancelled"), abort.message());
    } catch (...) {
        const QString message = currentExceptionMessage();
        recordText(QStringLiteral("error"), message);
        if (!m_responder)
            askPerson({ message, QApplication::applicationDisplayName(), mbIconError }, QApplication::activeWindow());
    }
}

QString TApplication::directory() const { return QApplication::applicationDirPath(); }

QString TApplication::settingsDirectory() const { return m_settingsDirectory.isEmpty() ? directory() : m_settingsDirectory; }

void TApplication::setSettingsDirectory(const QString &directory) { m_settingsDirectory = QFileInfo(directory).absoluteFilePath(); }

QString TApplication::pluginDirectory() const { return m_pluginDirectory.isEmpty() ? directory() : m_pluginDirectory; }

void TApplication::setPluginDirectory(const QString &directory) { m_pluginDirectory = QFileInfo(directory).absoluteFilePath(); }

void TApplication::record(const QString &kind, const QVariantMap &particulars) { Q_EMIT happened(kind, particulars); }
