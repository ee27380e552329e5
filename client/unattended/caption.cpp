#include "client/unattended/caption.h"

#include <QRegularExpression>

#include <algorithm>
#include <numeric>
#include <vector>

namespace client {
namespace {

constexpr qsizetype mostNamed = 8; ///< in one message
constexpr qsizetype fewEnough = 20; ///< to name all

/// How many characters must be put in, left out or exchanged.
int distance(const QString &from, const QString &to)
{
    std::vector<int> row(std::size_t(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype at = 0; at < from.size(); ++at) {
        int diagonal = row[0]++;
        for (qsizetype other = 0; other < to.size(); ++other) {
            const auto index = std::size_t(other);
            const int exchanged = diagonal + (from[at] == to[other] ? 0 : 1);
            diagonal = row[index + 1];
            row[index + 1] = std::min({ exchanged, row[index] + 1, diagonal + 1 });
        }
    }
    return row.back();
}

bool isNear(const QString &given, const QString &known)
{
    if (given.isEmpty() || known.isEmpty())
        return false;
    const qsizetype longer = std::max(given.size(), known.size());
    return known.contains(given, Qt::CaseInsensitive) || given.contains(known, Qt::CaseInsensitive)
        || distance(given.toLower(), known.toLower()) <= longer / 2;
}

} // namespace

QString plainCaption(QString caption)
{
    static const QRegularExpression unimportant(QStringLiteral("\\([^)]*\\)|（[^）]*）|&|[:：\\s]"));
    return caption.remove(unimportant);
}

qsizetype captionIndex(const QStringList &captions, const QString &given)
{
    if (const qsizetype exact = captions.indexOf(given); exact >= 0)
        return exact;
    const auto found = std::ranges::find(captions, plainCaption(given), plainCaption);
    return found == captions.end() ? -1 : found - captions.begin();
}

WrongRequest notAmong(const QString &what, const QString &given, const QStringList &known)
{
    QStringList similar;
    for (const QString &candidate : known) {
        if (isNear(plainCaption(given), plainCaption(candidate)) && !similar.contains(candidate))
            similar.append(candidate);
    }
    std::ranges::stable_sort(similar, {}, [&given](const QString &candidate) { return distance(given, candidate); });
    const QString missing = QStringLiteral("没有%1“%2”").arg(what, given);
    if (!similar.isEmpty())
        return WrongRequest(
            missing + QStringLiteral("，相近的有：") + similar.first(std::min(similar.size(), mostNamed)).join(u'、') + u"。");
    if (known.isEmpty() || known.size() > fewEnough)
        return WrongRequest(missing + u"。");
    return WrongRequest(missing + QStringLiteral("，可以写：") + known.join(u'、') + u"。");
}

} // namespace client
