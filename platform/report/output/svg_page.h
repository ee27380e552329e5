#pragma once

#include "platform/report/layout/page.h"

#include <QByteArray>
#include <QSize>

namespace report {

/// A page as an SVG picture of that size, in hundredths of a millimetre. Pictures on the page are left out.
QByteArray svgOf(const Resources &resources, const Page &page, QSize size);

} // namespace report
