#pragma once

#include "client/bills/bill_list_line.h"
#include "packet/packet.h"

#include <QHash>
#include <QObject>
#include <QPointer>

class QAbstractButton;
class TDataSet;
class TForm;

namespace client {

/// The lists of waybill numbers of the screens: a line under each, what an answer did not say of its numbers, and lists that are too
/// long for one query.
class BillLists : public QObject {
    Q_OBJECT

public:
    /// `pattern` tells what looks like a number, see BillPattern.
    explicit BillLists(const QString &pattern);

    /// Puts the line under the list of a screen that has one. `splits`: its result has a row for each number, so that the results of
    /// several queries can be put together. To be called again when the screen comes to the front.
    void watch(TForm *screen, QAbstractButton *queryButton, bool splits);
    /// Pastes into the list of a screen, wherever the focus is on it. False when the screen has none that can be used.
    [[nodiscard]] bool paste(TForm *screen);
    /// A query of the screen was answered with these rows (null: by none that are shown).
    void showAnswer(TForm *screen, TDataSet *rows);

Q_SIGNALS:
    /// Something to say without a box.
    void said(const QString &text);
    /// All parts of a long list have been asked; the screen shows the last one.
    void joined(TForm *screen, packet::PacketPtr rows, int batches);

private:
    struct Watched {
        BillListLine *line;
        QPointer<QAbstractButton> queryButton;
        QPointer<TDataSet> rows; ///< of the last answer
        bool wasAnswered = false; ///< since the last batch was asked
    };

    void offerUnanswered(TForm *screen);
    void askAgain(TForm *screen);
    void askInBatches(TForm *screen);
    void askBatches(TForm *screen, const QStringList &numbers);
    static void compare(const Watched &watched, const TDataSet &rows);

    BillPattern m_pattern;
    QHash<TForm *, Watched> m_lists;
    bool m_batching = false;
};

} // namespace client
