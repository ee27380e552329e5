#pragma once

#include <QMetaMethod>
#include <QObject>
#include <QVariant>

/// A list of components that the host publishes by address.
using TList = QList<QObject *>;

namespace platform {

/// The value of the property that `object` publishes under `name` (case counts); throws Exception when it publishes none.
QVariant publishedProperty(const QObject *object, const char *name);
/// The list whose address `object` publishes as the integer property `name`; throws Exception when it does not.
const TList &publishedList(const QObject *object, const char *name);

/// A method that an object publishes by name, and the object: found once, called often.
class PublishedMethod {
public:
    PublishedMethod() = default;
    /// Looks up the method `name` that takes one QObject pointer; isNull() when there is none.
    PublishedMethod(QObject *object, const char *name);

    bool isNull() const { return !m_method.isValid(); }
    QObject *object() const { return m_object; }
    /// Throws Exception when isNull().
    void call(QObject *argument) const;

private:
    QObject *m_object = nullptr;
    QMetaMethod m_method;
};

} // namespace platform
