#include "platform/toolkit/library_loader.h"

#include "platform/toolkit/exception.h"

#include <QFileInfo>

#include <utility>

using namespace platform;

namespace {
// Filled by the library that the dynamic loader is working on; libraries are loaded on the interface thread, one at a time.
std::optional<LibraryProcedures> registered;
} // namespace

namespace platform {

LibraryRegistration::LibraryRegistration(LibraryProcedures procedures) { registered = std::move(procedures); }

} // namespace platform

TLibrary::TLibrary(const QString &path)
    : m_library(path)
{
    registered.reset();
    if (!m_library.load()) {
        registered.reset();
        throw Exception(QStringLiteral("无法加载插件“%1”：%2").arg(QFileInfo(path).fileName(), m_library.errorString()));
    }
    m_procedures = std::exchange(registered, std::nullopt).value_or(LibraryProcedures {});
    // A copy of the message is taken before unloading: exception and literal may lie in the library.
    const std::optional<QString> failure = startUp();
    if (failure) {
        detach();
        throw Exception(*failure);
    }
}

std::optional<QString> TLibrary::startUp()
{
    try {
        if (m_procedures.startUp)
            m_procedures.startUp();
        return std::nullopt;
    } catch (...) {
        const QString message = currentExceptionMessage();
        return QString(message.constData(), message.size());
    }
}

TLibrary::~TLibrary() { detach(); }

void TLibrary::detach()
{
    if (m_procedures.detach)
        m_procedures.detach();
    m_procedures = {};
    m_library.unload();
}

QFunctionPointer TLibrary::resolve(const char *symbol)
{
    const QFunctionPointer function = m_library.resolve(symbol);
    if (!function)
        throw Exception(
            QStringLiteral("插件“%1”没有函数“%2”！").arg(QFileInfo(m_library.fileName()).fileName(), QString::fromLatin1(symbol)));
    return function;
}
