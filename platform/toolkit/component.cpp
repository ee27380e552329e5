#include "platform/toolkit/component.h"

#include "platform/toolkit/form.h"

#include <QVariant>

#include <algorithm>

using namespace platform;

namespace {
constexpr char ownerProperty[] = "_owner";
}

void TComponentOwner::adopt(QObject *component, const QString &name)
{
    component->setObjectName(name);
    component->setProperty(ownerProperty, QVariant::fromValue(m_self));
    if (!component->isWidgetType())
        component->setParent(m_self);
    else if (auto *widget = qobject_cast<QWidget *>(m_self); widget && !qobject_cast<TForm *>(component))
        static_cast<QWidget *>(component)->setParent(widget);
    m_components.append(component);
}

QList<QObject *> TComponentOwner::components() const
{
    m_components.removeAll(nullptr);
    return { m_components.begin(), m_components.end() };
}

QObject *TComponentOwner::findComponent(QStringView name) const
{
    const auto found = std::find_if(m_components.begin(), m_components.end(), [name](const QPointer<QObject> &component) {
        return component && name.compare(component->objectName(), Qt::CaseInsensitive) == 0;
    });
    return found == m_components.end() ? nullptr : found->data();
}

namespace platform {

QObject *ownerOf(const QObject *component) { return component->property(ownerProperty).value<QObject *>(); }

QString componentPath(const QObject *component)
{
    const QObject *owner = qobject_cast<const TForm *>(component) ? nullptr : ownerOf(component);
    return owner ? QString(componentPath(owner) + u'.' + component->objectName()) : component->objectName();
}

} // namespace platform
