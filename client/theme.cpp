#include "client/theme.h"

#include "client/icons.h"
#include "client/options.h"
#include "client/toolkit_texts.h"
#include "platform/grid/grid_colors.h"
#include "platform/grid/grid_zoom.h"
#include "platform/toolkit/user_settings.h"

#include <QApplication>
#include <QFontDatabase>
#include <QLocale>
#include <QPalette>
#include <QProxyStyle>
#include <QWidget>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

constexpr QStringView families[]
    = { u"Microsoft YaHei UI", u"PingFang SC", u"Noto Sans CJK SC", u"Source Han Sans SC", u"WenQuanYi Micro Hei" };
constexpr int fontPoints = 9;
const QString toneSetting = QStringLiteral("Window/Tone");
const QString textSetting = QStringLiteral("Window/TextPercent");

bool systemIsDark = false;

/// The toolkit paints the frame of a child window anew whenever the focus moves in it, and all that lies above the frame. A maximised one
/// shows none.
class FramelessMaximised : public QProxyStyle {
public:
    FramelessMaximised()
        : QProxyStyle(QStringLiteral("Fusion"))
    {
    }

    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override
    {
        if (metric == PM_MdiSubWindowFrameWidth && widget && widget->isMaximized())
            return 0;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
};

void substituteFonts()
{
    // Result grids ask for this family, in which a digit is half as wide as a Han character.
    QFont::insertSubstitutions(QStringLiteral("宋体"),
        { QStringLiteral("SimSun"), QStringLiteral("NSimSun"), QStringLiteral("Noto Sans Mono CJK SC"),
            QStringLiteral("WenQuanYi Zen Hei Mono") });
}

void setFont(int percent)
{
    for (const QStringView family : families) {
        if (QFontDatabase::hasFamily(family.toString())) {
            QFont font(family.toString());
            font.setPointSizeF(fontPoints * percent / 100.0);
            return QApplication::setFont(font);
        }
    }
}

/// The colours of a tone; everything else follows from them.
struct Colors {
    QRgb window;
    QRgb base;
    QRgb otherBase;
    QRgb highlight;
    QRgb link;
    QRgb tip;
    QRgb text;
    QRgb faintText;
};

constexpr Colors lightColors { 0xf0f1f3, 0xffffff, 0xf6f7f9, 0x2f6fb7, 0x2f6fb7, 0xffffe8, 0x20242a, 0x9aa0a8 };
constexpr Colors darkColors { 0x2b2e33, 0x1d1f23, 0x24272b, 0x3a78bf, 0x7ab4f0, 0x3a3d42, 0xdde1e6, 0x82888f };

QPalette paletteOf(const Colors &colors)
{
    QPalette palette(QColor::fromRgb(colors.window), QColor::fromRgb(colors.window));
    palette.setColor(QPalette::Base, QColor::fromRgb(colors.base));
    palette.setColor(QPalette::AlternateBase, QColor::fromRgb(colors.otherBase));
    palette.setColor(QPalette::Highlight, QColor::fromRgb(colors.highlight));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor::fromRgb(colors.link));
    palette.setColor(QPalette::ToolTipBase, QColor::fromRgb(colors.tip));
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText }) {
        palette.setColor(role, QColor::fromRgb(colors.text));
        palette.setColor(QPalette::Disabled, role, QColor::fromRgb(colors.faintText));
    }
    palette.setColor(QPalette::PlaceholderText, QColor::fromRgb(colors.faintText));
    return palette;
}

} // namespace

void applyTheme()
{
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    systemIsDark = platform::isDark(QApplication::palette());
    QApplication::setStyle(new FramelessMaximised);
    substituteFonts();
    applyAppearance({});
    installToolkitTexts();
    QApplication::setWindowIcon(programIcon());
}

void applyAppearance(const Appearance &appearance)
{
    const bool dark = appearance.tone == Tone::Dark || (appearance.tone == Tone::System && systemIsDark);
    QPalette palette = paletteOf(dark ? darkColors : lightColors);
    if (dark)
        palette.setColor(QPalette::Mid, QColor(0x60, 0x65, 0x6c)); // lines must be lighter than what they part
    QApplication::setPalette(palette);
    platform::setTextScale(appearance.textPercent); // first: who hears of the other font asks for it
    setFont(appearance.textPercent);
}

void offerAppearance(const Options &options)
{
    const auto offer = [](const Preferences &preferences, Offer kind) {
        static const QMap<QString, Tone> tones { { QStringLiteral("system"), Tone::System }, { QStringLiteral("light"), Tone::Light },
            { QStringLiteral("dark"), Tone::Dark } };
        offerUserSetting(toneSetting, tones.contains(preferences.tone) ? QVariant(int(tones[preferences.tone])) : QVariant(), kind);
        offerUserSetting(textSetting, preferences.textPercent > 0 ? QVariant(preferences.textPercent) : QVariant(), kind);
    };
    offer(options.offered, Offer::WhileNothingIsChosen);
    offer(options.wanted, Offer::WhateverWasChosen);
}

Appearance keptAppearance()
{
    const int tone = userSetting(toneSetting, int(Tone::System)).toInt();
    const int percent = userSetting(textSetting, 100).toInt();
    return { Tone(std::clamp(tone, int(Tone::System), int(Tone::Dark))), std::clamp(percent, 75, 200) };
}

void keepAppearance(const Appearance &appearance)
{
    keepUserSetting(toneSetting, int(appearance.tone));
    keepUserSetting(textSetting, appearance.textPercent);
}

} // namespace client
