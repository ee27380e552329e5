#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/editors/editors.h"

namespace plugin {

/// What every query screen uses while it reads its conditions and composes its statement.

/// The first entry of every drop-down list: no condition.
inline const QString allItems = QStringLiteral("全部");

} // namespace plugin

/// True when the range is NOT acceptable: unreadable, reversed, or longer than MaxDays days; with ShowMessage the user is told.
bool CheckDateRange(const QString &StartText, const QString &EndText, int MaxDays, bool ShowMessage);
/// The table that holds scans of a kind, "到件" for example.
QString GetScanTableName(const QString &ScanType);
/// The values of one field in dataset order with Separator between them, taken as they are; the current row stays.
void DataSetFieldToText(TDataSet *DataSet, const QString &FieldName, const QString &Separator, QString &Text);
/// Completes a combo that is being left: a code, key or listed value that exists becomes the key; anything else empties the
/// box and keeps the user in it.
void LookupComboTextExit(TDBLookupComboboxEh *Combo);

namespace plugin {

/// A text as the date and time of a statement.
QString toDate(const QString &text);
/// "where a.scan_date between ... and ..." for `column`, from the texts of two editors.
QString whereBetween(QStringView column, const TDBDateTimeEditEh *start, const TDBDateTimeEditEh *end);
/// `before` + value + `after` unless the value is empty, "" otherwise; `before` ends with the opening quote.
QString unlessEmpty(QStringView before, const QLineEdit *edit, QStringView after = u"'");
/// The same unless the list shows "全部".
QString unlessAll(QStringView before, const TDBComboBoxEh *list, QStringView after = u"'");
/// The site names of a dataset as the list of an IN condition.
QString siteList(TDataSet *sites);

/// Closes the dataset, gives it the statement and the tag and opens it.
void openStatement(TClientDataSetEx *dataSet, const QString &statement, int tag = 0);

} // namespace plugin
