#pragma once

/// Style, font, palette, program icon and the toolkit's own texts in Chinese, for the whole program.
void setLook();
