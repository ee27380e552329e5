#pragma once

#include "platform/dataset/data_source.h"
#include "platform/editors/drop_down_edit.h"

#include <memory>

namespace platform {

class LookupIndex;
class LookupList;

/// A column of a lookup's drop-down list.
struct LookupColumn {
    QString fieldName;
    QString caption;
    int width; ///< pixels
};

} // namespace platform

/// A line of text in which one looks up a row of another dataset: free typing, a drop-down list with columns that narrows while
/// one types, an ellipsis button. Its value is its text; what code assigns opens no list. It never moves the list dataset's current row.
class TDBLookupComboboxEh : public platform::DropDownEdit {
    Q_OBJECT

public:
    /// What becomes of the list's current row, if there is one: it is taken into the text, or nothing is.
    enum class Choice { Take, Leave };

    explicit TDBLookupComboboxEh(QWidget *parent = nullptr);
    ~TDBLookupComboboxEh() override;

    TDataSource *listSource() const { return m_listSource; }
    void setListSource(TDataSource *source) { m_listSource = source; }
    /// Null on query screens: nothing is edited through them.
    TDataSource *dataSource() const { return m_dataSource; }
    void setDataSource(TDataSource *source) { m_dataSource = source; }

    /// The field whose value the text becomes, the one that is listed, and the code by which it can also be typed ("" when none).
    void setFields(const QString &keyField, const QString &listField, const QString &indexField);
    const QString &keyField() const { return m_keyField; }
    const QString &listField() const { return m_listField; }
    const QString &indexField() const { return m_indexField; }
    void setDropDownColumns(const QList<platform::LookupColumn> &columns);

    bool isListOpen() const;
    /// Opens the list on the rows that the text means, or on all rows when it means none or exactly one that is there already.
    /// Does nothing while the list dataset is closed.
    void openList();
    void closeList(Choice choice);

Q_SIGNALS:
    void keyPressed(int key); ///< before the key acts; not for keys of the open list, not while an input method composes

protected:
    void dropDown() override { openList(); }
    void finishEntry() override { closeList(Choice::Leave); }
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    TDataSet *listDataSet() const; ///< null unless it is open
    const platform::LookupIndex &index(const TDataSet &dataSet);
    void openWholeList();
    void narrowList();
    void showList(TDataSet *dataSet, std::vector<int> rows, int currentRow);
    bool actBeforeKey(QEvent *event);
    bool actOnList(QKeyEvent *event);

    QPointer<TDataSource> m_listSource;
    QPointer<TDataSource> m_dataSource;
    QString m_keyField;
    QString m_listField;
    QString m_indexField;
    QList<platform::LookupColumn> m_columns;
    platform::LookupList *m_list = nullptr; ///< a child, made when first needed
    std::unique_ptr<platform::LookupIndex> m_index; ///< of the list dataset's rows, made when first needed
};
