#pragma once

#include "platform/connection/remote_server.h"

#include <QList>

/// Opens the customer query of a waybill, which the library Guest shows over the given connections. Throws Exception when the
/// library cannot be loaded.
void ShowQuestQuery(const QString &billCode, const QList<TCustomRemoteServer *> &connections);

namespace plugin {

/// Unloads the library if it was loaded; its windows close.
void unloadGuest();

} // namespace plugin
