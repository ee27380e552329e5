#include "platform/toolkit/published.h"

#include "platform/toolkit/exception.h"

namespace platform {

namespace {

QString className(const QObject *object)
{
    return object ? QString::fromLatin1(object->metaObject()->className()) : QStringLiteral("主窗口");
}

} // namespace

QVariant publishedProperty(const QObject *object, const char *name)
{
    if (!object || object->metaObject()->indexOfProperty(name) < 0)
        throw Exception(QStringLiteral("“%1”没有发布属性“%2”！").arg(className(object), QString::fromLatin1(name)));
    return object->property(name);
}

const TList &publishedList(const QObject *object, const char *name)
{
    // The address may come as a number or as its text, as run-time type information gives it.
    bool isNumber = false;
    const qulonglong address = publishedProperty(object, name).toString().toULongLong(&isNumber);
    if (!isNumber || address == 0)
        throw Exception(QStringLiteral("属性“%1”的值不是列表地址！").arg(QString::fromLatin1(name)));
    return *reinterpret_cast<const TList *>(quintptr(address));
}

PublishedMethod::PublishedMethod(QObject *object, const char *name)
    : m_object(object)
{
    if (object)
        m_method = object->metaObject()->method(object->metaObject()->indexOfMethod(QByteArray(name).append("(QObject*)").constData()));
}

void PublishedMethod::call(QObject *argument) const
{
    if (isNull())
        throw Exception(QStringLiteral("主窗口没有发布所需的方法！"));
    m_method.invoke(m_object, Qt::DirectConnection, Q_ARG(QObject *, argument));
}

} // namespace platform
