#pragma once

#include "platform/dataset/data_set.h"
#include "platform/editors/lookup_combobox.h"

#include <QAbstractTableModel>
#include <QFrame>

class QTableView;

namespace platform {

/// Rows of an open dataset in a chosen order, read where they are.
class LookupRows : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    void setColumns(const QList<LookupColumn> &columns);
    void show(TDataSet *dataSet, std::vector<int> rows);
    void clear() { show(nullptr, {}); }
    /// Of the dataset.
    int recordAt(int row) const { return m_rows[std::size_t(row)]; }
    int indexOf(int record) const; ///< -1 when it is not among the rows

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QPointer<TDataSet> m_dataSet;
    QList<LookupColumn> m_columns;
    QList<int> m_fields; ///< one for each column, -1 where the dataset has none
    std::vector<int> m_rows;
};

/// The list that drops down from a lookup. The focus stays in the lookup: what is typed over the list goes there.
class LookupList : public QFrame {
    Q_OBJECT

public:
    explicit LookupList(QWidget *edit);

    void setColumns(const QList<LookupColumn> &columns);
    /// Shows the rows, with `currentRecord` (-1: none) as current. The list closes as soon as the dataset's rows change.
    void showRows(TDataSet *dataSet, std::vector<int> rows, int currentRecord);
    QSize contentSize() const;
    int currentRecord() const; ///< -1 when there is none
    /// Moves the current row with the keys.
    void walk(QKeyEvent *event);

Q_SIGNALS:
    void rowClicked();
    /// A key that goes on from the lookup was pressed; it comes to the lookup afterwards.
    void goesOn();

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *m_edit;
    LookupRows *m_rows;
    QTableView *m_table;
    QMetaObject::Connection m_watching;
    bool m_walking = false;
};

} // namespace platform
