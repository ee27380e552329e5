#pragma once

#include "platform/connection/remote_server.h"
#include "platform/toolkit/library_loader.h"

#include <QLineEdit>

#include <memory>

class TDBGridEh;

namespace client {

/// The command that opens the tracks of a grid's waybills.
inline constexpr QStringView trackCommand = u"查看跟踪";

/// The customer query of any waybills, opened by the host itself.
class WaybillTracks {
public:
    /// Opens one window for all of them, which asks `connections` as far as they are needed. Throws Exception when the library of the
    /// customer query cannot be loaded; what else goes wrong is shown to the person.
    void open(const QStringList &numbers, const QList<TCustomRemoteServer *> &connections);

private:
    std::unique_ptr<TLibrary> m_guest; ///< loaded when it is first needed
};

/// The waybills of the selected rows, else of the current one, each once; none when the grid shows no waybills. Throws Exception when
/// there are more than a window can show.
QStringList waybillsOf(const TDBGridEh &grid);

/// A box for a waybill number, typed, pasted or scanned. Enter wants its track and leaves the number selected, so that the next scan
/// replaces it.
class WaybillBox : public QLineEdit {
    Q_OBJECT

public:
    WaybillBox();
    /// Takes the keyboard; `proposal` stands in the box then, unless it is empty.
    void enter(const QString &proposal);

Q_SIGNALS:
    void wanted(const QStringList &numbers);
    void left(); ///< with Esc

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace client
