#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/dataset/data_source.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"

#include <QDateTime>
#include <QLabel>

namespace client {

/// A window of the host's own that shows rows to read: they ask no server, and stay whatever happens to the screen that they came from.
/// Commands on grids work on it as on a screen.
class ResultWindow : public TForm {
    Q_OBJECT

public:
    ResultWindow(TComponentOwner *owner, const QString &name, const QString &caption, const QString &description);

    /// Takes over the columns of a grid, their order, its font and its footers.
    void showColumns(const TDBGridEh &original);

    PUBLISHED(QLabel, descriptionLabel);
    PUBLISHED(TDBGridEh, resultGrid);
    PUBLISHED(TDataSource, DS);
    PUBLISHED(TClientDataSetEx, cds);

protected:
    void FormActivate() override;
    void FormClose(TCloseAction &action) override;
};

/// A result that a person has pinned.
class PinnedResult : public ResultWindow {
    Q_OBJECT

public:
    /// Takes over what a grid shows now, its columns, order and filter included; the rows are shared, not copied. `source`: the screen
    /// and the page that it came from; only results of the same source can be compared. `conditions`: in words.
    PinnedResult(
        TComponentOwner *owner, const TDBGridEh &original, const QString &source, const QString &conditions, const QDateTime &time);

    const QString &source() const { return m_source; }
    const QDateTime &time() const { return m_time; }

private:
    const QString m_source;
    const QDateTime m_time;
};

} // namespace client
