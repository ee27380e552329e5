#include "client/appearance_menu.h"

#include "client/theme.h"
#include "platform/toolkit/handler.h"

#include <QActionGroup>
#include <QMenu>

using namespace platform;

namespace client {
namespace {

struct TextSize {
    QStringView caption;
    int percent;
};
constexpr TextSize textSizes[] = { { u"小", 90 }, { u"标准", 100 }, { u"大", 115 }, { u"较大", 130 }, { u"特大", 150 } };

struct ToneChoice {
    QStringView caption;
    Tone tone;
};
constexpr ToneChoice tones[] = { { u"跟随系统", Tone::System }, { u"浅色", Tone::Light }, { u"深色", Tone::Dark } };

/// A menu of which one entry is ticked.
template <class Choice, class Value>
void addChoices(QMenu *menu, const QString &caption, const Choice &choices, Value Appearance::*member, auto valueOf)
{
    QMenu *choicesMenu = menu->addMenu(caption);
    auto *group = new QActionGroup(choicesMenu);
    for (const auto &choice : choices) {
        QAction *action = group->addAction(choicesMenu->addAction(choice.caption.toString()));
        action->setCheckable(true);
        action->setChecked(valueOf(choice) == keptAppearance().*member);
        handle(action, &QAction::triggered, choicesMenu, [member, value = valueOf(choice)] {
            Appearance appearance = keptAppearance();
            appearance.*member = value;
            applyAppearance(appearance);
            keepAppearance(appearance);
        });
    }
}

} // namespace

void addAppearanceMenus(QMenu *menu)
{
    addChoices(menu, QStringLiteral("字体大小"), textSizes, &Appearance::textPercent, [](const TextSize &size) { return size.percent; });
    addChoices(menu, QStringLiteral("颜色"), tones, &Appearance::tone, [](const ToneChoice &choice) { return choice.tone; });
}

} // namespace client
