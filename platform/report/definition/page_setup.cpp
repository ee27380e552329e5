#include "platform/report/definition/page_setup.h"

#include <algorithm>

namespace report {

namespace {

constexpr qreal holes = 13;

constexpr qreal leastRoom = 30; ///< millimetres

template <class Choice>
Choice choice(const QVariant &kept, Choice last, Choice otherwise)
{
    bool ok = false;
    const int number = kept.toInt(&ok);
    return ok && number >= 0 && number <= int(last) ? Choice(number) : otherwise;
}

} // namespace

const QList<NamedPaper> &namedPapers()
{
    static const QList<NamedPaper> papers {
        { u"A4", { 21000, 29700 }, 0 },
        { u"A5", { 14800, 21000 }, 0 },
        { u"241 连续纸", { 24100, 27940 }, holes },
        { u"241 连续纸 二等分", { 24100, 13970 }, holes },
        { u"241 连续纸 三等分", { 24100, 9313 }, holes },
    };
    return papers;
}

bool PageSetup::makesSense() const
{
    const auto [least, most] = std::minmax({ paper.width(), paper.height() });
    const qreal sides[] { margins.left(), margins.top(), margins.right(), margins.bottom() };
    return least >= leastSide && most <= mostSide && std::ranges::all_of(sides, [](qreal side) { return side >= 0; })
        && std::max(margins.left() + margins.right(), margins.top() + margins.bottom()) + leastRoom <= least / qreal(millimetre);
}

QVariantMap PageSetup::toMap() const
{
    return {
        { QStringLiteral("paper"), paper },
        { QStringLiteral("turn"), int(turn) },
        { QStringLiteral("left"), margins.left() },
        { QStringLiteral("top"), margins.top() },
        { QStringLiteral("right"), margins.right() },
        { QStringLiteral("bottom"), margins.bottom() },
        { QStringLiteral("wideColumns"), int(wideColumns) },
    };
}

PageSetup PageSetup::fromMap(const QVariantMap &map, const PageSetup &otherwise)
{
    PageSetup setup = otherwise;
    setup.paper = map.value(QStringLiteral("paper"), otherwise.paper).toSize();
    setup.turn = choice(map[QStringLiteral("turn")], Turn::Across, otherwise.turn);
    setup.wideColumns = choice(map[QStringLiteral("wideColumns")], WideColumns::Split, otherwise.wideColumns);
    const auto margin = [&map](const char *name, qreal unset) { return map.value(QLatin1String(name), unset).toDouble(); };
    setup.margins = QMarginsF(margin("left", otherwise.margins.left()), margin("top", otherwise.margins.top()),
        margin("right", otherwise.margins.right()), margin("bottom", otherwise.margins.bottom()));
    return setup.makesSense() ? setup : otherwise;
}

} // namespace report
