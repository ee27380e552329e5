#pragma once

#include <QFlags>

namespace report {

enum class PreviewButton { Zoom = 1, Load = 2, Save = 4, Print = 8, Find = 16, Exit = 32, Export = 64 };
Q_DECLARE_FLAGS(PreviewButtons, PreviewButton)
constexpr PreviewButtons allPreviewButtons { PreviewButton::Zoom, PreviewButton::Load, PreviewButton::Save, PreviewButton::Print,
    PreviewButton::Find, PreviewButton::Exit, PreviewButton::Export };

} // namespace report

// Out here they do not hide those of Qt from the namespace.
Q_DECLARE_OPERATORS_FOR_FLAGS(report::PreviewButtons)
