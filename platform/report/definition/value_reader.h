#pragma once

#include "platform/report/definition/definition.h"

#include <QStringList>

#include <span>

namespace report {

/// What is wrong, and where in the line.
struct ValueError {
    QString what;
    int offset = 0;
};

/// Reads the value of one property, word by word. Throws ValueError.
class ValueReader {
public:
    explicit ValueReader(QStringView value)
        : m_value(value)
    {
    }

    bool atEnd();
    int offset() const { return int(m_position); }
    /// The next word, or what stands in quotes.
    QString word();
    qreal number(qreal least, qreal greatest);
    /// A length in millimetres, as hundredths.
    int length(qreal least, qreal greatest);
    QColor color(); ///< "none" is invalid
    bool yesOrNo();
    /// The number of the next word among `choices`.
    int choice(std::span<const char *const> choices);
    /// All that is left as one text; in quotes, \n is a line's end, and \" and \\ stand for themselves.
    QString text();
    /// Where each character of the last text() stood.
    int offsetInText(int index) const { return index < m_offsets.size() ? m_offsets[index] : int(m_value.size()); }
    void requireEnd();

private:
    [[noreturn]] void fail(const QString &what, int offset) const { throw ValueError { what, offset }; }
    QString quoted();

    QStringView m_value;
    qsizetype m_position = 0;
    QList<int> m_offsets;
};

} // namespace report
