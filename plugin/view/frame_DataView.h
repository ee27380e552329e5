#pragma once

#include "platform/dataset/data_source.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_columns.h"
#include "platform/report/print_db_grid.h"
#include "platform/toolkit/form.h"

#include <QLabel>

namespace plugin {

/// Whether what is said of rows needs a person's attention.
enum class Attention { None, Wanted };

} // namespace plugin

/// The result grid of every screen: striped rows, row numbers, a record count, titles that sort, and a column layout that
/// survives in the plug-in's INI file.
class TDataView : public TFrame {
    Q_OBJECT

public:
    TDataView();
    /// Saves the layout, if the frame was ever shown.
    ~TDataView() override;

    PUBLISHED(TDBGridEh, DataViewGrid);
    PUBLISHED(QLabel, Panel1); ///< a line about the rows below it; hidden while there is nothing to say
    PUBLISHED(TPrintDBGridEh, DataViewPrint); ///< screens set its page header: the report's title
    PUBLISHED(TDataSource, DS);
    bool Striped = true;

    /// Gives the frame its columns and its dataset; the first `frozen` columns stay in sight.
    void design(const platform::GridColumns &columns, TDataSet *dataSet, int frozen = 0);
    /// Says above the rows what they are; in red when it wants attention. That a limit has cut them is said by itself.
    void describeRows(const QString &text, plugin::Attention attention);
    void LoadLayout(const QString &iniFileName);
    void SaveLayout(const QString &iniFileName) const;

    void DataViewGridGetCellParams(int row, platform::CellParameters &parameters) const;

protected:
    bool event(QEvent *event) override;

private:
    void InitColumns();
    void showDescription();
    void DSStateChange();
    QString DataViewGridDrawColumnCell(int row, int column) const;

    QString m_description; ///< of the rows, as long as the dataset is open
    plugin::Attention m_attention = plugin::Attention::None;
    QString m_section; ///< of the layout file; empty until the columns are initialised
};
