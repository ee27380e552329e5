#pragma once

#include "platform/report/layout/bound_report.h"
#include "platform/report/layout/text_face.h"

#include <functional>

namespace report {

/// A band with its texts filled in. Positions count from its own top left corner.
struct RenderedBand {
    int height = 0;
    Page primitives {};
};

/// Called for every memo of a row before it is set, when somebody wants rows to look different.
using StyleEvent = std::function<void(int row, const Object &object, Style &style)>;

/// Turns bands into primitives.
class BandRenderer {
public:
    BandRenderer(const BoundReport &report, Resources &resources, StyleEvent styleEvent);

    /// A band that grows stays below `highest`. Throws Exception naming the object that cannot be evaluated.
    RenderedBand render(const BoundBand &band, const Context &context, int highest) const;

private:
    struct Growth {
        int below; ///< a memo's designed bottom
        int by;
    };
    void renderObject(const BoundObject &bound, const Context &context, Page &page) const;
    void renderMemo(const BoundObject &bound, const Context &context, Page &page) const;
    void renderAddIn(const BoundObject &bound, const Context &context, Page &page) const;
    void grow(const BoundBand &band, RenderedBand &piece, int highest) const;
    QList<std::pair<QString, double>> chartPoints(const BoundObject &bound, Context context) const;

    const BoundReport &m_report;
    Resources &m_resources;
    StyleEvent m_styleEvent;
    mutable TextFaces m_faces;
};

} // namespace report
