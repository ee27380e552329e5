#include "platform/toolkit/foreign_words.h"

#include <QRegularExpression>
#include <QStringList>

namespace platform {

SplitMessage withoutForeignWords(const QString &message)
{
    static const QRegularExpression clause(QStringLiteral("([：（])\\s*([!-~][ -~\\n]*[!-~])\\s*([；）。]|$)"));
    static const QRegularExpression words(QStringLiteral("\\b[A-Za-z']{2,} [A-Za-z']{2,}\\b"));
    SplitMessage split;
    QStringList foreign;
    qsizetype done = 0;
    for (auto matches = clause.globalMatch(message); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        if (!words.match(match.capturedView(2)).hasMatch())
            continue;
        foreign.append(match.captured(2));
        split.text += message.mid(done, match.capturedStart() - done);
        const QString end = match.captured(3);
        split.text += end.isEmpty() ? QStringLiteral("。") : end == u"）" ? QString() : end;
        done = match.capturedEnd();
    }
    split.text += message.mid(done);
    split.foreignWords = foreign.join(u'\n');
    return split;
}

} // namespace platform
