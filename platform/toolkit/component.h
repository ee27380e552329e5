#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

/// Whoever owns named components: a form, a frame, a data module, the application object. Keeps them in the order in which
/// they were declared; a component's owner is the form or frame that declares it, whatever widget it is placed in.
class TComponentOwner {
public:
    virtual ~TComponentOwner() = default;

    /// Takes `component` in under `name` and gives it `self` as parent until a layout places it elsewhere. Returns it.
    template <class T>
    T *own(T *component, const char *name)
    {
        adopt(component, QString::fromLatin1(name));
        return component;
    }
    /// The components that still exist, in the order of declaration.
    QList<QObject *> components() const;
    /// The component of that name (ASCII case ignored), or null; frames' own components are not searched.
    QObject *findComponent(QStringView name) const;

protected:
    explicit TComponentOwner(QObject *self)
        : m_self(self)
    {
    }
    void adopt(QObject *component, const QString &name);

private:
    QObject *m_self;
    mutable QList<QPointer<QObject>> m_components;
};
namespace platform {

/// The object that owns a component, or null.
QObject *ownerOf(const QObject *component);
/// The names of a component's owners and of itself, outermost first, joined with "."; owners above the form are left out.
QString componentPath(const QObject *component);

} // namespace platform

/// Declares a component under the name that designs, automation and layout files know it by.
#define PUBLISHED(Type, Name) Type *Name = own(new Type, #Name)
