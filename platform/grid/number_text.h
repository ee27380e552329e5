#pragma once

#include <QString>

namespace platform {

enum class ThousandsMarks { Off, On };

/// Whether grids and their prints part the thousands of numbers. One setting for the whole program; On until somebody changes it.
/// Who changes it repaints what is shown.
ThousandsMarks thousandsMarks();
void setThousandsMarks(ThousandsMarks marks);

/// A number as a person reads it: with at least `decimals` digits behind the point, and thousands marks if wanted. Never rounds; a text
/// that is no plain decimal number stays as it is.
QString shownNumber(const QString &number, int decimals);

/// The same as a format of the report engine, such as "#,##0.00##########".
QString numberFormat(int decimals);

} // namespace platform
