#pragma once

namespace client {

/// Style, font, palette, program icon and the toolkit's own texts in Chinese, for the whole program.
void applyTheme();

} // namespace client
