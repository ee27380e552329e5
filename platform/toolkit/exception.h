#pragma once

#include <QString>

#include <exception>

/// What a screen or the platform throws; the message is for the user.
class Exception : public std::exception {
public:
    explicit Exception(const QString &message)
        : m_message(message)
        , m_utf8(message.toUtf8())
    {
    }
    const QString &message() const { return m_message; }
    const char *what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_message;
    QByteArray m_utf8;
};

namespace platform {

/// The message of any exception, as text.
QString exceptionMessage(const std::exception &exception);
/// The message of the exception that is being handled; call only inside a catch block.
QString currentExceptionMessage();

} // namespace platform
