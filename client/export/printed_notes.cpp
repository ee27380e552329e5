#include "client/export/printed_notes.h"

#include <QStringList>

#include <algorithm>

namespace client {

namespace {

constexpr qsizetype mostListed = 3;

QString shortened(const QString &value)
{
    const QStringList lines = value.split(u'\n', Qt::SkipEmptyParts);
    const QString beginning = lines.first(std::min(mostListed, lines.size())).join(u'、');
    return lines.size() <= mostListed ? beginning : beginning + QStringLiteral(" 等 %1 个").arg(lines.size());
}

} // namespace

QString printedNotes(const QList<ExportNote> &notes)
{
    QStringList told;
    for (const ExportNote &note : notes) {
        if (const QString value = shortened(note.value); !value.isEmpty())
            told.append(note.caption + u'：' + value);
    }
    return told.join(u'　');
}

} // namespace client
