#pragma once

namespace client {

/// Which colours the program has: those of the system's taste, or always the same.
enum class Tone { System, Light, Dark };

/// How a person wants the program to look.
struct Appearance {
    Tone tone = Tone::System;
    int textPercent = 100; ///< size of all texts
};

/// Style, program icon, the toolkit's own texts in Chinese, and the usual appearance, for the whole program; once.
void applyTheme();
/// Changes every window at once.
void applyAppearance(const Appearance &appearance);
struct Options;
/// Takes what files of settings and the command line say of the look; a person's choice overrides the files.
void offerAppearance(const Options &options);
/// What the person chose last; keepAppearance() keeps a choice.
Appearance keptAppearance();
void keepAppearance(const Appearance &appearance);

} // namespace client
