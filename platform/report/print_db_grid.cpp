#include "platform/report/print_db_grid.h"

namespace {

/// A height of 14 pixels, as the screen has it.
QFont bandFont(QFont::Weight weight)
{
    QFont font(QStringLiteral("宋体"));
    font.setPixelSize(14);
    font.setWeight(weight);
    return font;
}

} // namespace

TPrintDBGridEh::TPrintDBGridEh(QObject *parent)
    : QObject(parent)
    , m_header { .font = bandFont(QFont::Bold) }
    , m_footer { .font = bandFont(QFont::Normal) }
{
}
