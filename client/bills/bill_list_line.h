#pragma once

#include "client/bills/bill_count.h"

#include <QLabel>
#include <QTimer>

class QPlainTextEdit;

namespace client {

/// The line under a list of waybill numbers: counts it while a person types or pastes, marks the lines that are no numbers, and offers
/// what can be done about the numbers of an answer.
class BillListLine : public QLabel {
    Q_OBJECT

public:
    /// Stands below the memo, in its layout.
    BillListLine(QPlainTextEdit *memo, const BillPattern &pattern);

    QPlainTextEdit *memo() const { return m_memo; }
    /// The list as it stands now.
    BillCount count() const;
    /// What an answer did not say, until the list changes: how many, and why ("没有任何记录").
    void showUnanswered(const QStringList &numbers, const QString &why);
    const QStringList &unanswered() const { return m_unanswered; }
    /// Whether a list that is too long can be asked in parts.
    void setCanSplit(bool can) { m_canSplit = can; }
    /// Marks the lines that hold one of these numbers and shows the first.
    void markNumbers(const QStringList &numbers);

Q_SIGNALS:
    void batchesWanted();
    void unansweredClicked();

private:
    void recount();
    void showText();
    void markLines(const QList<int> &lines, const QColor &colour);

    QPlainTextEdit *m_memo;
    BillPattern m_pattern;
    QTimer m_pause; ///< until the typing stops
    BillCount m_count;
    QStringList m_unanswered;
    QString m_why;
    bool m_canSplit = false;
};

} // namespace client
