#pragma once

#include <QList>
#include <QRegularExpression>
#include <QStringList>

namespace client {

/// The most numbers that a screen asks for at once.
constexpr int mostBills = 800;

/// Tells waybill numbers from what else gets into a list.
class BillPattern {
public:
    /// `pattern` is the network's own, for main waybills; a blank or broken one is replaced by six letters and digits or more.
    explicit BillPattern(const QString &pattern);

    bool fits(const QString &text) const;
    /// Whether a spreadsheet has shortened the number to something like 1.2E+11: its end is lost.
    static bool isShortened(const QString &text);

private:
    QRegularExpression m_pattern;
};

/// What a list of waybill numbers holds.
struct BillCount {
    QStringList numbers; ///< each once, in the list's order, without blanks at its ends
    int lines = 0; ///< that are not blank
    int duplicates = 0; ///< further lines with a number that stands above
    QList<int> oddLines; ///< lines, from 0, that do not look like a number; not among `numbers`
    QStringList shortened; ///< the odd ones that a spreadsheet has made

    /// "779 个单号，20 个重复，1 行不像单号"; "" for an empty list.
    QString text() const;
};

/// Costs one look at each character.
BillCount countBills(const QStringList &lines, const BillPattern &pattern);

} // namespace client
