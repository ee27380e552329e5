#pragma once

#include "platform/report/definition/definition.h"

#include <QFont>
#include <QFontDatabase>
#include <QHash>
#include <QRawFont>

#include <unordered_map>

class QPainter;

namespace report {

/// Between a text and the sides of its box.
constexpr int textPadding = 60;

/// From one line to the next.
int lineHeight(const Style &style);

/// The font of a style. One pixel of the font is one unit of length, a hundredth of a millimetre, so a text takes the same room on
/// every device. Chinese and Latin texts need no shaping: each character has a glyph of its own, which is much faster to draw.
class TextFace {
public:
    explicit TextFace(const Style &style);

    const QFont &font() const { return m_font; }
    int lineHeight() const { return m_lineHeight; }
    qreal width(const QString &line) const;
    void draw(QPainter &painter, QPointF baseline, const QString &line) const;
    /// The text with line separators where it must go on below to fit a box of this width.
    QString wrapped(const QString &text, int boxWidth) const;
    /// The height of the box that a text needs.
    int boxHeight(const QString &text) const;
    /// The beginning of the line that fits `room`, ending with "…".
    QString elided(const QString &line, qreal room) const;

private:
    struct Glyph {
        quint32 index = 0;
        qreal advance = 0;
    };
    /// Null for a character that takes part in shaping or that another font must draw.
    const Glyph *glyph(QChar character) const;
    bool isSimple(const QString &line) const;
    void wrapParagraph(const QString &paragraph, qreal room, QString &result) const;

    QFont m_font;
    int m_lineHeight;
    QRawFont m_raw;
    mutable QHash<QChar, Glyph> m_glyphs;
};

/// The faces of a report's styles, made when they are needed.
class TextFaces {
public:
    const TextFace &face(quint16 number, const Style &style);

private:
    std::unordered_map<quint16, TextFace> m_faces;
};

} // namespace report
