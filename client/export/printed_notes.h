#pragma once

#include "client/export/export_table.h"

namespace client {

/// Notes about a table in one text for paper: empty ones are left out, and of a long list stands the beginning and the number.
QString printedNotes(const QList<ExportNote> &notes);

} // namespace client
