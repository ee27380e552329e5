#pragma once

#include <QString>

#include <functional>

class TDBGridEh;

/// Writes what the grid shows (visible columns, shown rows, both in shown order, titles in one line) to a file in the form that
/// its ending names. Calls `progress` with the rows written so far now and then; it may throw to break off. Returns the number of
/// rows. Writes beside the file and renames at the end: a failure throws Exception and leaves what was there before.
int exportGrid(const TDBGridEh &grid, const QString &fileName, const std::function<void(int rows)> &progress = {});

/// The forms, for a file dialog.
QString exportFilters();
