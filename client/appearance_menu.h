#pragma once

class QMenu;

namespace client {

/// Adds the choices of text size and colours; each is applied at once and kept.
void addAppearanceMenus(QMenu *menu);

} // namespace client
