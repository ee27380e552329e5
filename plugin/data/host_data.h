#pragma once

#include "platform/dataset/client_data_set.h"

/// What the host's main window publishes for all its modules. The objects are the host's: read them, never free them.

/// The host's dataset of that name, ASCII case ignored; throws Exception when there is none.
TClientDataSetEx *GlobalCdsAddr(const QString &Name);
/// The text of the host's value of that name, ASCII case ignored; "" when there is none.
QString GlobalValueAddr(const QString &Name);
/// The server's date, hour and minute with the seconds of the local clock.
QDateTime GetServerDateTime();
