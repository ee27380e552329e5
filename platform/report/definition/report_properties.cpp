#include "platform/report/definition/report_properties.h"

#include "platform/report/definition/template.h"

#include <QHash>

#include <algorithm>

namespace report {

namespace {

constexpr int longestText = 10'000;
constexpr qreal longestLength = 2000;

/// Reads a text that holds expressions, and refuses it here when one of them is wrong.
QString readTemplate(const Property &property, FilePosition &place)
{
    const QString text = property.value.text();
    if (text.size() > longestText)
        throw ValueError { QStringLiteral("文字超过 %1 个字").arg(longestText), 0 };
    try {
        Template::parse(text);
    } catch (const SyntaxError &error) {
        throw ValueError { error.what, property.value.offsetInText(error.offset) };
    }
    place = { property.place.line, property.place.column + property.value.offsetInText(0) };
    return text;
}

/// Reads one expression, with or without its brackets.
QString readExpression(const Property &property, FilePosition &place)
{
    const QString text = property.value.text();
    const bool bracketed = text.startsWith(u'[') && text.endsWith(u']');
    const QString whole = bracketed ? text : QString(u'[' + text + u']');
    place = { property.place.line, property.place.column + property.value.offsetInText(0) - (bracketed ? 0 : 1) };
    try {
        Template::parse(whole);
    } catch (const SyntaxError &error) {
        throw ValueError { error.what, property.value.offsetInText(std::max(0, error.offset - (bracketed ? 0 : 1))) };
    }
    return whole;
}

template <class Target>
using Setters = QHash<QStringView, void (*)(Target &, const Property &)>;

void readPaper(Definition &report, const Property &property)
{
    static const QHash<QString, QSize> sizes {
        { QStringLiteral("A3"), { 29700, 42000 } },
        { QStringLiteral("A4"), { 21000, 29700 } },
        { QStringLiteral("A5"), { 14800, 21000 } },
        { QStringLiteral("Letter"), { 21590, 27940 } },
    };
    const QString first = property.value.word();
    if (const auto named = sizes.constFind(first); named != sizes.cend()) {
        report.paper = *named;
        return;
    }
    ValueReader width(first);
    try {
        report.paper.setWidth(width.length(50, longestLength));
    } catch (const ValueError &) {
        throw ValueError { QStringLiteral("纸张应是 A3、A4、A5、Letter 或“宽 高”（毫米，50 至 2000）"), 0 };
    }
    report.paper.setHeight(property.value.length(50, longestLength));
}

void readOrientation(Definition &report, const Property &property)
{
    static constexpr const char *choices[] { "portrait", "landscape" };
    const bool landscape = property.value.choice(choices) == 1;
    if (landscape != (report.paper.width() > report.paper.height()))
        report.paper.transpose();
}

void readMargins(Definition &report, const Property &property)
{
    int sides[4];
    for (int &side : sides)
        side = property.value.length(0, 500);
    report.margins = { sides[0], sides[1], sides[2], sides[3] };
}

const Setters<Definition> pageSetters {
    { u"title", [](Definition &report, const Property &property) { report.title = property.value.text().left(200); } },
    { u"paper", readPaper },
    { u"orientation", readOrientation },
    { u"margins", readMargins },
    { u"fit-width", [](Definition &report, const Property &property) { report.fitWidth = property.value.yesOrNo(); } },
};

const Setters<Band> bandSetters {
    { u"height", [](Band &band, const Property &property) { band.height = property.value.length(0, longestLength); } },
    { u"by", [](Band &band, const Property &property) { band.groupBy = readExpression(property, band.groupByPlace); } },
    { u"new-page", [](Band &band, const Property &property) { band.newPage = property.value.yesOrNo(); } },
    { u"repeat", [](Band &band, const Property &property) { band.repeat = property.value.yesOrNo(); } },
    { u"stripe", [](Band &band, const Property &property) { band.stripe = property.value.color(); } },
};

void readBox(Object &object, const Property &property)
{
    const int left = property.value.length(0, longestLength);
    const int top = property.value.length(0, longestLength);
    const int width = property.value.length(0, longestLength);
    object.box = QRect(left, top, width, property.value.length(0, longestLength));
}

void readFont(Object &object, const Property &property)
{
    object.style.family = property.value.word().left(100);
    object.style.points = property.value.number(1, 200);
    object.style.bold = object.style.italic = object.style.underline = false;
    static constexpr const char *choices[] { "bold", "italic", "underline" };
    while (!property.value.atEnd()) {
        const int choice = property.value.choice(choices);
        (choice == 0 ? object.style.bold : choice == 1 ? object.style.italic : object.style.underline) = true;
    }
}

void readFrame(Object &object, const Property &property)
{
    static constexpr const char *choices[] { "none", "left", "top", "right", "bottom", "all" };
    static constexpr quint8 sides[] { NoSide, LeftSide, TopSide, RightSide, BottomSide, AllSides };
    object.style.sides = NoSide;
    do
        object.style.sides |= sides[property.value.choice(choices)];
    while (!property.value.atEnd());
}

void readAlignment(Object &object, const Property &property)
{
    static constexpr const char *choices[] { "left", "center", "right", "top", "middle", "bottom" };
    static constexpr Qt::AlignmentFlag flags[]
        = { Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight, Qt::AlignTop, Qt::AlignVCenter, Qt::AlignBottom };
    Qt::Alignment &alignment = object.style.alignment;
    do {
        const int choice = property.value.choice(choices);
        alignment &= choice < 3 ? Qt::AlignVertical_Mask : Qt::AlignHorizontal_Mask;
        alignment |= flags[choice];
    } while (!property.value.atEnd());
}

void readLineStyle(Object &object, const Property &property)
{
    static constexpr const char *choices[] { "solid", "dash", "dot" };
    static constexpr Qt::PenStyle styles[] { Qt::SolidLine, Qt::DashLine, Qt::DotLine };
    object.style.lineStyle = styles[property.value.choice(choices)];
}

void readChartKind(Object &object, const Property &property)
{
    static constexpr const char *choices[] { "bars", "lines", "pie" };
    object.chart = ChartKind(property.value.choice(choices));
}

void readSymbology(Object &object, const Property &property)
{
    static constexpr const char *choices[] { "code128", "code39", "ean13", "qr" };
    object.symbology = QString::fromLatin1(choices[property.value.choice(choices)]);
}

const Setters<Object> commonSetters {
    { u"box", readBox },
    { u"color", [](Object &object, const Property &property) { object.style.color = property.value.color(); } },
    { u"line-width", [](Object &object, const Property &property) { object.style.lineWidth = property.value.length(0, 10); } },
    { u"line-color", [](Object &object, const Property &property) { object.style.lineColor = property.value.color(); } },
    { u"line-style", readLineStyle },
};
const Setters<Object> fillSetters {
    { u"fill", [](Object &object, const Property &property) { object.style.fill = property.value.color(); } },
    { u"frame", readFrame },
};
const Setters<Object> fontSetters {
    { u"font", readFont },
};
const Setters<Object> templateSetters {
    { u"text", [](Object &object, const Property &property) { object.text = readTemplate(property, object.textPlace); } },
};
const Setters<Object> memoSetters {
    { u"align", readAlignment },
    { u"wrap", [](Object &object, const Property &property) { object.wrap = property.value.yesOrNo(); } },
    { u"grow", [](Object &object, const Property &property) { object.grow = object.wrap = property.value.yesOrNo(); } },
    { u"format", [](Object &object, const Property &property) { object.style.format = property.value.text().left(100); } },
    { u"hide-zero", [](Object &object, const Property &property) { object.hideZero = property.value.yesOrNo(); } },
};
const Setters<Object> pictureSetters {
    { u"file", [](Object &object, const Property &property) { object.text = property.value.text().left(250); } },
};
const Setters<Object> barCodeSetters {
    { u"code", readSymbology },
    { u"show-text", [](Object &object, const Property &property) { object.showText = property.value.yesOrNo(); } },
};
const Setters<Object> chartSetters {
    { u"kind", readChartKind },
    { u"title", [](Object &object, const Property &property) { object.text = property.value.text().left(200); } },
    { u"label", [](Object &object, const Property &property) { object.label = readExpression(property, object.labelPlace); } },
    { u"value", [](Object &object, const Property &property) { object.value = readExpression(property, object.valuePlace); } },
};

/// What each kind of object understands.
const QHash<ObjectKind, QList<const Setters<Object> *>> objectSetters {
    { ObjectKind::Memo, { &commonSetters, &fillSetters, &fontSetters, &templateSetters, &memoSetters } },
    { ObjectKind::Line, { &commonSetters } },
    { ObjectKind::Rectangle, { &commonSetters, &fillSetters } },
    { ObjectKind::Picture, { &commonSetters, &pictureSetters } },
    { ObjectKind::BarCode, { &commonSetters, &fontSetters, &templateSetters, &barCodeSetters } },
    { ObjectKind::Chart, { &commonSetters, &fontSetters, &chartSetters } },
};

template <class Target>
bool apply(const Setters<Target> &setters, Target &target, QStringView key, const Property &property)
{
    const auto setter = setters.constFind(key);
    if (setter == setters.cend())
        return false;
    (*setter)(target, property);
    return true;
}

} // namespace

bool setProperty(Definition &report, QStringView key, const Property &property) { return apply(pageSetters, report, key, property); }

bool setProperty(Band &band, QStringView key, const Property &property) { return apply(bandSetters, band, key, property); }

bool setProperty(Object &object, QStringView key, const Property &property)
{
    const auto &setters = *objectSetters.constFind(object.kind);
    return std::any_of(
        setters.begin(), setters.end(), [&](const Setters<Object> *candidates) { return apply(*candidates, object, key, property); });
}

} // namespace report
