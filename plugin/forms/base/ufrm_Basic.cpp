#include "plugin/forms/base/ufrm_Basic.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/plugin_interface.h"
#include "plugin/data/udm_BasicData.h"

using namespace platform;

namespace {

/// In a result Enter walks through the cells, and in a line above them it goes down to them.
bool belongsToGrid(const QWidget *focused)
{
    if (const auto *grid = qobject_cast<const TDBGridEh *>(focused))
        return grid->currentRow() >= 0;
    for (const QWidget *widget = focused; widget && !widget->isWindow(); widget = widget->parentWidget()) {
        if (qobject_cast<const TDBGridEh *>(widget))
            return true;
    }
    return false;
}

template <class Component>
QList<Component *> ownedComponents(const TComponentOwner &owner)
{
    QList<Component *> found;
    for (QObject *component : owner.components())
        if (auto *wanted = qobject_cast<Component *>(component))
            found.append(wanted);
    return found;
}

} // namespace

Tfrm_Basic::~Tfrm_Basic() { FormDestroy(); }

void Tfrm_Basic::FormCreate()
{
    notifyHost(this, hostFormCreating);
    SuppressHostNotify = false;
    CurrentView = nullptr;
    CurrentDataSet = nullptr;
    QueryButton = nullptr;
    CurrentExtra = nullptr;
    Right1 = Right2 = Right3 = false;
    ResetSearch = PublishedMethod(Application->mainForm(), published_by_host::resetSearch);
    for (TClientDataSetEx *dataSet : ownedComponents<TClientDataSetEx>(*this))
        dataSet->setRemoteServer(dm_BasicData->HostConnection);
}

void Tfrm_Basic::FormActivate()
{
    if (!SuppressHostNotify)
        notifyHost(this, hostFormActivated);
    resetSearch();
}

void Tfrm_Basic::FormClose(TCloseAction &action)
{
    const QList<TClientDataSetEx *> dataSets = ownedComponents<TClientDataSetEx>(*this);
    for (const TClientDataSetEx *dataSet : dataSets) {
        if (SuppressHostNotify || !dataSet->active() || dataSet->changeCount() == 0)
            continue;
        constexpr int flags = mbOkCancel | mbIconQuestion | mbDefaultButton2;
        if (Application->messageBox(QStringLiteral("详细：您所做的操作并未保存，确定要关闭吗？"), caption(), flags) == idCancel) {
            action = TCloseAction::None;
            return;
        }
    }
    for (TClientDataSetEx *dataSet : dataSets)
        dataSet->close();
    notifyHost(this, hostFormClosed);
    if (FormVariable)
        *FormVariable = nullptr;
    action = TCloseAction::Free;
}

void Tfrm_Basic::FormKeyDown(int key, Qt::KeyboardModifiers modifiers)
{
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && modifiers == Qt::NoModifier && !belongsToGrid(focusWidget()))
        focusNextControl();
}

void Tfrm_Basic::FormDestroy()
{
    for (TDataSet *dataSet : ownedComponents<TDataSet>(*this))
        dataSet->close();
}

void Tfrm_Basic::SetRights(const QString &text)
{
    const auto granted = [&text](qsizetype position) { return text.size() > position && text[position] == u'1'; };
    Right1 = granted(0);
    Right2 = granted(1);
    Right3 = granted(2);
}

void Tfrm_Basic::SetWorkContext(TDataView *view, TClientDataSetEx *dataSet, QAbstractButton *button, QObject *extra)
{
    SetCurrentView(view);
    CurrentDataSet = dataSet;
    QueryButton = button;
    CurrentExtra = extra;
}

void Tfrm_Basic::SetCurrentView(TDataView *view)
{
    if (view == CurrentView)
        return;
    CurrentView = view;
    resetSearch();
}

void Tfrm_Basic::resetSearch() const { ResetSearch.call(CurrentView ? CurrentView->DataViewGrid : nullptr); }
