#pragma once

#include <QFlags>

enum class PreviewButton { Zoom = 1, Load = 2, Save = 4, Print = 8, Find = 16, Exit = 32, Export = 64 };
Q_DECLARE_FLAGS(PreviewButtons, PreviewButton)
Q_DECLARE_OPERATORS_FOR_FLAGS(PreviewButtons)
constexpr PreviewButtons allPreviewButtons { PreviewButton::Zoom, PreviewButton::Load, PreviewButton::Save, PreviewButton::Print,
    PreviewButton::Find, PreviewButton::Exit, PreviewButton::Export };
