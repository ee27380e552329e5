#include "platform/toolkit/exception.h"

namespace platform {

QString exceptionMessage(const std::exception &exception)
{
    if (const auto *own = dynamic_cast<const Exception *>(&exception))
        return own->message();
    return QString::fromUtf8(exception.what());
}

QString currentExceptionMessage()
{
    try {
        throw;
    } catch (const std::exception &exception) {
        return exceptionMessage(exception);
    } catch (...) {
        return QStringLiteral("未知错误");
    }
}

} // namespace platform
