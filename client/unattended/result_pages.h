#pragma once

#include <QList>
#include <QString>

#include <optional>

class QAbstractButton;
class TDBGridEh;
class TForm;

namespace client {

/// A page of a screen's result, and the grid on it.
struct ResultPage {
    QString caption; ///< "" when the screen has no pages
    const TDBGridEh *grid;
};
QList<ResultPage> resultPages(const TForm &screen);
/// Shows a page as a click on its tab does; throws WrongRequest when the screen does not have it.
void showResultPage(const TForm &screen, const QString &caption);

/// The captions of a grid's visible columns.
QStringList columnCaptions(const TDBGridEh &grid);

struct GridCell {
    int row;
    int column;
};
/// The row that "扫描人=张三，班次=白班" describes, as a person reads its cells, and the cell of `column`, or else of the column named
/// last. Nothing when there is none. Throws WrongRequest for columns that the grid does not have, and Exception when several rows are
/// alike.
std::optional<GridCell> findRow(const TDBGridEh &grid, const QString &description, const QString &column);

/// The buttons of a screen that print.
QList<QAbstractButton *> printButtons(const TForm &screen);
/// Like captionIndex(), but that what stands in brackets counts: "清单打印(&2)" is "清单打印2".
qsizetype buttonIndex(const QStringList &captions, const QString &given);

} // namespace client
