#pragma once

#include <QString>

class TDBGridEh;

namespace plugin {

class LayoutFile;

/// Arranges a grid's columns as a section of the layout file says; columns that it does not name stay.
void loadGridLayout(TDBGridEh &grid, const LayoutFile &file, const QString &section);
/// Puts order, widths and what a person arranged beyond them into a section.
void storeGridLayout(const TDBGridEh &grid, LayoutFile &file, const QString &section);
/// Takes away what storeGridLayout() put there.
void removeGridLayout(LayoutFile &file, const QString &section);

} // namespace plugin
