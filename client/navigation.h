#pragma once

class QWidget;
class TDBGridEh;
class TForm;

namespace client {

// How the keyboard gets about on a screen: from its conditions to its list of waybills and to its result, and between result pages.

/// Moves the focus from the result to the conditions, from there to the list where the screen has one, and from that to the result
/// (null: there is none).
void switchFocus(TForm &form, TDBGridEh *grid);
/// Collapses or expands the conditions, where the screen can.
void toggleConditions(const TForm &form);
/// Whether a person could have come to a widget with the Tab key.
bool isTabStop(const QWidget &widget);

/// Shows a result page by its number from 1 among those that have a tab; false when there is none.
bool showPage(TForm &form, int number);
/// Shows the next (1) or the previous (-1) page, after the last one the first.
bool turnPage(TForm &form, int step);
/// The number of the page that is shown, from 1; 0: the screen has none.
int pageNumber(const TForm &form);

} // namespace client
