#include "platform/grid/grid_colors.h"

#include <QPalette>

#include <algorithm>

namespace platform {

namespace {

// Of a colour on a dark palette: how light a background is at least and at most and how far light ones
// lie apart, how much of its saturation stays, how light a text is.
constexpr float darkest = 0.12F;
constexpr float lightest = 0.40F;
constexpr float spread = 0.8F;
constexpr float saturation = 0.30F;
constexpr float textLightness = 0.70F;

QColor lightened(const QColor &text)
{
    return QColor::fromHslF(std::max(0.0F, text.hslHueF()), text.hslSaturationF(), std::max(text.lightnessF(), textLightness));
}

} // namespace

GridColors::GridColors(const QPalette &palette)
    : base(palette.color(QPalette::Base))
    , text(palette.color(QPalette::Text))
    , line(blend(base, palette.color(QPalette::Mid), 0.55))
    , title(blend(base, palette.color(QPalette::Button), 0.7))
    , titleHover(blend(title, palette.color(QPalette::Highlight), 0.10))
    , titlePressed(blend(title, palette.color(QPalette::Highlight), 0.22))
    , titleText(palette.color(QPalette::ButtonText))
    , mark(blend(titleText, title, 0.35))
    , frozenLine(blend(base, palette.color(QPalette::Dark), 0.9))
    , found(blend(base, QColor(255, 196, 0), 0.6))
    , accent(palette.color(QPalette::Highlight))
{
}

QColor GridColors::currentRow(const QColor &background) const { return blend(background, accent, 0.16); }

QColor GridColors::selected(const QColor &background) const { return blend(background, accent, 0.38); }

QColor GridColors::background(const QColor &designed) const
{
    if (base.lightnessF() > 0.5F || designed == base)
        return designed;
    const float lightness = std::min(lightest, darkest + (1 - designed.lightnessF()) * spread);
    return QColor::fromHslF(std::max(0.0F, designed.hslHueF()), designed.hslSaturationF() * saturation, lightness);
}

QColor GridColors::textColor(const QColor &designed) const
{
    return base.lightnessF() > 0.5F || designed == text ? designed : lightened(designed);
}

QColor alarmColorOn(const QPalette &palette) { return isDark(palette) ? lightened(alarmColor) : alarmColor; }

bool isDark(const QPalette &palette) { return palette.color(QPalette::Window).lightnessF() < 0.5F; }

QColor rowStripe(int number) { return QColor::fromRgb(number % 2 == 1 ? 0xc4c4ff : 0xddddff); }

QColor blend(const QColor &under, const QColor &over, qreal share)
{
    const auto mixed = [share](int low, int high) { return qRound(low + (high - low) * share); };
    return QColor(mixed(under.red(), over.red()), mixed(under.green(), over.green()), mixed(under.blue(), over.blue()));
}

QColor readableOn(const QColor &background) { return qGray(background.rgb()) > 128 ? QColor(Qt::black) : QColor(Qt::white); }

} // namespace platform
