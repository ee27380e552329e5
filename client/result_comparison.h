#pragma once

#include <QString>

#include <memory>

class TComponentOwner;
class TDBGridEh;

namespace client {

class ResultWindow;

/// One of two results to compare: its grid and what a person calls it.
struct ComparedResult {
    const TDBGridEh &grid;
    QString name;
};

/// A window with what has changed between two results of the same screen: the rows that only one of them has, and those that both
/// have under one waybill number with other values, as "old → new". Where there are no waybill numbers the columns without sums tell
/// which rows belong together. The columns are those that `after` shows. Linear in the number of rows; long comparisons show the wait
/// window and throw Abort when the person cancels.
std::unique_ptr<ResultWindow> compareResults(TComponentOwner *owner, const ComparedResult &before, const ComparedResult &after);

} // namespace client
