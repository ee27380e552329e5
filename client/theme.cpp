#include "client/theme.h"

#include "client/icons.h"
#include "client/toolkit_texts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QLocale>
#include <QPalette>
#include <QStyleFactory>

namespace client {
namespace {

constexpr QStringView families[]
    = { u"Microsoft YaHei UI", u"PingFang SC", u"Noto Sans CJK SC", u"Source Han Sans SC", u"WenQuanYi Micro Hei" };
constexpr int fontPoints = 9;

void setFont()
{
    // Result grids ask for this family, in which a digit is half as wide as a Han character.
    QFont::insertSubstitutions(QStringLiteral("宋体"),
        { QStringLiteral("SimSun"), QStringLiteral("NSimSun"), QStringLiteral("Noto Sans Mono CJK SC"),
            QStringLiteral("WenQuanYi Zen Hei Mono") });
    for (const QStringView family : families) {
        if (QFontDatabase::hasFamily(family.toString())) {
            QApplication::setFont(QFont(family.toString(), fontPoints));
            return;
        }
    }
}

QPalette quietPalette()
{
    QPalette palette(QColor(0xf0, 0xf1, 0xf3), QColor(0xf0, 0xf1, 0xf3));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf6, 0xf7, 0xf9));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xb7));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x2f, 0x6f, 0xb7));
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xe8));
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText }) {
        palette.setColor(role, QColor(0x20, 0x24, 0x2a));
        palette.setColor(QPalette::Disabled, role, QColor(0x9a, 0xa0, 0xa8));
    }
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0xa0, 0xa8));
    return palette;
}

} // namespace

void applyTheme()
{
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(quietPalette());
    setFont();
    QApplication::installTranslator(new ToolkitTexts(qApp));
    QApplication::setWindowIcon(programIcon());
}

} // namespace client
