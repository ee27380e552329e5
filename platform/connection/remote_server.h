#pragma once

#include "packet/packet.h"

#include <QObject>
#include <QString>

/// A connection that runs statements for client datasets.
class TCustomRemoteServer : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    /// Runs one SELECT and returns its whole result; the interface stays painted and the user can cancel meanwhile. Throws
    /// Exception with the server's words, or Abort.
    virtual packet::PacketPtr runStatement(const QString &statement) = 0;
};
