#pragma once

#include "platform/dataset/data_set.h"
#include "platform/editors/editors.h"

/// What every query screen uses while it reads its conditions and composes its statement.

/// True when the range is NOT acceptable: unreadable, reversed, or longer than MaxDays days; with ShowMessage the user is told.
bool CheckDateRange(const QString &StartText, const QString &EndText, int MaxDays, bool ShowMessage);
/// The table that holds scans of a kind, "到件" for example.
QString GetScanTableName(const QString &ScanType);
/// The values of one field in dataset order with Separator between them, taken as they are; the current row stays.
void DataSetFieldToText(TDataSet *DataSet, const QString &FieldName, const QString &Separator, QString &Text);
/// Completes a combo that is being left: a code, key or listed value that exists becomes the key; anything else empties the
/// box and keeps the user in it.
void LookupComboTextExit(TDBLookupComboboxEh *Combo);
