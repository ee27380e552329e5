#pragma once

#include <QFont>
#include <QGlyphRun>
#include <QHash>

#include <vector>

class QPainter;
class QRect;

namespace platform {

/// Draws texts of one line. What was laid out once is kept, up to a bound, since a grid paints the same texts again and again;
/// a text that is too wide ends with "…".
class TextPainter {
public:
    void draw(QPainter &painter, const QRect &box, Qt::Alignment alignment, const QFont &font, const QString &text);
    /// In pixels, without elision.
    int width(const QFont &font, const QString &text);

private:
    struct Line {
        QList<QGlyphRun> runs;
        qreal width = 0;
        qreal ascent = 0;
    };
    struct Key {
        QString text;
        int width; ///< the room it was elided to, or -1
        friend bool operator==(const Key &left, const Key &right) { return left.width == right.width && left.text == right.text; }
        friend size_t qHash(const Key &key, size_t seed) { return qHash(key.text, seed) ^ size_t(key.width); }
    };
    /// The lines of one font in two generations: when the young one is full it replaces the old one.
    struct Face {
        QFont font;
        qreal middle; ///< from the baseline up to the middle of the line
        QHash<Key, Line> young;
        QHash<Key, Line> old;
    };

    Face &face(const QFont &font);
    static const Line &line(Face &face, const QString &text, int room);
    static Line layOut(const Face &face, const QString &text, int room);

    std::vector<Face> m_faces;
};

} // namespace platform
