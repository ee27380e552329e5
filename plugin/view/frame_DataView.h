#pragma once

#include "platform/dataset/data_source.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_columns.h"
#include "platform/report/print_db_grid.h"
#include "platform/toolkit/form.h"

#include <QLabel>

class LayoutFile;

/// The result grid of every screen: striped rows, row numbers, a record count, titles that sort, and a column layout that
/// survives in the plug-in's INI file.
class TDataView : public TFrame {
    Q_OBJECT

public:
    TDataView();
    /// Saves the layout, if the frame was ever shown.
    ~TDataView() override;

    PUBLISHED(TDBGridEh, DataViewGrid);
    PUBLISHED(QLabel, Panel1); ///< a line about the table below it; hidden by design
    PUBLISHED(TPrintDBGridEh, DataViewPrint); ///< screens set its page header: the report's title
    PUBLISHED(TDataSource, DS);
    bool Striped = true;

    /// Gives the frame its columns and its dataset; the first `frozen` columns stay in sight.
    void design(const GridColumns &columns, TDataSet *dataSet, int frozen = 0);
    void LoadLayout(const QString &iniFileName);
    void SaveLayout(const QString &iniFileName) const;

    void DataViewGridGetCellParams(int row, CellParameters &parameters) const;

protected:
    bool event(QEvent *event) override;

private:
    void InitColumns();
    void loadArrangement(const LayoutFile &file);
    void saveArrangement(LayoutFile &file) const;
    void DSStateChange();
    QString DataViewGridDrawColumnCell(int row, int column) const;

    QString m_section; ///< of the layout file; empty until the columns are initialised
};
