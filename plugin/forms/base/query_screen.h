#pragma once

#include "plugin/forms/base/condition_layout.h"
#include "plugin/forms/base/frame_Panel.h"
#include "plugin/forms/base/ufrm_BasicBoot.h"

#include "platform/editors/editors.h"
#include "platform/toolkit/handler.h"

#include <QCheckBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QPushButton>

/// The first entry of every drop-down list: no condition.
inline const QString allItems = QStringLiteral("全部");

/// What the query screens share: a condition panel above the results, and a hidden query button that the host's query command
/// presses. A screen names its conditions, results and statements, and nothing else.
class QueryScreen : public Tfrm_BasicBoot {
    Q_OBJECT

public:
    QueryScreen(TComponentOwner *owner, const QString &name, QStringView caption);

    PUBLISHED(QFrame, Panel1);
    PUBLISHED(TWorkPanel, WorkPanel1);
    PUBLISHED(QPushButton, Button1);

protected:
    /// Lays the condition panel out.
    void arrange(const QList<ConditionLine> &lines) { ::arrange(Panel1, WorkPanel1, lines); }
    /// Shows the one result of the screen below the conditions.
    void result(TDataView *view, TClientDataSetEx *dataSet, const GridColumns &columns, int frozen = 0);
    /// Puts a widget below the conditions, or at the screen's left edge.
    void placeBelow(QWidget *widget) { m_column->addWidget(widget, 1); }
    void placeLeft(QWidget *widget) { m_row->insertWidget(0, widget); }
    /// The query: what the host's query command runs.
    virtual void Button1Click() = 0;
    void FormShow() override;

    /// Tells the user why the query is refused and moves the focus to the condition at fault (null: nowhere); always true.
    bool refuse(const QString &text, QWidget *control = nullptr);
    /// LookupComboTextExit when the user leaves the combo, or when Enter is pressed in it.
    void completeOnExit(const QList<TDBLookupComboboxEh *> &combos);
    void completeOnEnter(const QList<TDBLookupComboboxEh *> &combos);
    /// The login site comes back when the user leaves the combo without a text.
    void loginSiteOnExit(TDBLookupComboboxEh *combo);

private:
    friend class QueryRun;
    virtual void showFirstPage() { }

    QHBoxLayout *m_row;
    QVBoxLayout *m_column;
    TDataView *m_view = nullptr; ///< the one result
    TClientDataSetEx *m_dataSet = nullptr;
};

/// The frame of a query: the busy cursor and the focus on the work panel, so that the exit handler of the control that is being
/// edited has run; at the end, whatever happens, the first page and the default cursor.
class QueryRun {
public:
    explicit QueryRun(QueryScreen *screen);
    QueryRun(const QueryRun &) = delete;
    ~QueryRun();

private:
    QueryScreen *m_screen;
};

/// Fills drop-down lists with "全部" and the values of a field of a dataset, or of the host's of that name, and selects the former.
void fillFrom(const QList<TDBComboBoxEh *> &combos, TDataSet *dataSet, const QString &field);
void fillFromHost(const QList<TDBComboBoxEh *> &combos, const QString &hostDataSet, const QString &field);
/// The lists by which scans are chosen: the kinds of goods, the express types and the shifts.
void fillScanLists(TDBComboBoxEh *goodsType, TDBComboBoxEh *fastType, TDBComboBoxEh *shift);

/// The whole of yesterday, or of today.
void setYesterday(TDBDateTimeEditEh *start, TDBDateTimeEditEh *end);
void setToday(TDBDateTimeEditEh *start, TDBDateTimeEditEh *end);

/// The list sources, fields and drop-down columns of lookup combos.
void setSiteLookup(const QList<TDBLookupComboboxEh *> &combos, TDataSource *source);
void setScanTypeLookup(const QList<TDBLookupComboboxEh *> &combos, TDataSource *source);
void setEmployeeLookup(const QList<TDBLookupComboboxEh *> &combos, TDataSource *source);

/// The site names of a dataset as the list of an IN condition.
QString siteList(TDataSet *sites);
/// The field of the cell that is current in a result.
QString selectedField(const TDataView *view);

/// Closes the dataset, gives it the statement and the tag and opens it.
void openStatement(TClientDataSetEx *dataSet, const QString &statement, int tag = 0);

/// `condition` + value + "'" unless the value is empty, "" otherwise; the condition ends with its opening quote.
QString unlessEmpty(QStringView condition, const TDBLookupComboboxEh *combo);
/// The same unless the list shows "全部".
QString unlessAll(QStringView condition, const TDBComboBoxEh *combo);
/// "where a.scan_date between ... and ..." for `column`, from the texts of two editors.
QString whereBetween(QStringView column, const TDBDateTimeEditEh *start, const TDBDateTimeEditEh *end);
